"""The program under test, started as a user's session would start it."""

import ctypes
import json
import os
import signal
import subprocess
import tempfile
from pathlib import Path

from .screen import windows
from .tree import Tree
from .waiting import wait_for

HOME = Path(os.environ["HOME"])
PREFERENCES = HOME / "Library" / "Preferences" / "com.lumbra.ombrel.json"
PR_SET_PDEATHSIG = 1


def read_preferences():
    return json.loads(PREFERENCES.read_text())


def write_preferences(**changes):
    """Changes the file as another program would: whole, by renaming. None removes a key."""
    PREFERENCES.parent.mkdir(parents=True, exist_ok=True)
    values = read_preferences() if PREFERENCES.exists() else {}
    values.update(changes)
    with tempfile.NamedTemporaryFile("w", dir=PREFERENCES.parent, delete=False) as file:
        json.dump({key: value for key, value in values.items() if value is not None}, file)
    os.replace(file.name, PREFERENCES)


class Kestro:
    """with Kestro({"agentsEnabled": True}) as kestro: kestro.tree.wait("button", "AI")"""

    def __init__(self, preferences=None, environment=None, arguments=()):
        if preferences is not None:
            write_preferences(**preferences)
        self._environment = {**os.environ, **(environment or {})}
        self._command = [os.environ["KESTRO"], *arguments]
        self._log = Path(os.environ.get("DESK_FOLDER", HOME)) / "kestro.log"
        self.process = None

    @property
    def pid(self):
        return self.process.pid

    @property
    def tree(self):
        return Tree("Kestro", self.pid)

    def log(self):
        return self._log.read_text(errors="replace")

    def start(self):
        libc = ctypes.CDLL(None)
        with self._log.open("a") as log:
            self.process = subprocess.Popen(
                self._command, env={key: value for key, value in self._environment.items() if value is not None},
                stdin=subprocess.DEVNULL, stdout=log, stderr=log,
                preexec_fn=lambda: libc.prctl(PR_SET_PDEATHSIG, signal.SIGKILL))
        return self

    def wait_up(self, limit=10.0):
        """Until the dock stands: its first tile shows, in a window that the window manager has put on the screen.
        The tree knows of a window before that; a press would fall on what is still below it."""
        self._wait(lambda: windows(self.pid) and self.tree.shows("button"), limit)
        return self

    def wait_on_bus(self, limit=10.0):
        """Until it can be asked, though nothing of it shows."""
        return self._wait(self.tree.root, limit)

    def _wait(self, condition, limit):
        def up():
            if self.process.poll() is not None:
                raise AssertionError(f"kestro ended with {self.process.returncode}:\n{self.log()}")
            return condition()
        wait_for(up, limit, lambda: f"kestro to be up:\n{self.tree}\n{self.log()}")
        return self

    def wait_end(self, limit=5.0):
        """Its exit code."""
        return self.process.wait(timeout=limit)

    def stop(self):
        """Ends it as a session does; its exit code."""
        if self.process.poll() is None:
            self.process.send_signal(signal.SIGTERM)
            try:
                self.process.wait(timeout=5)
            except subprocess.TimeoutExpired:
                self.process.kill()
                self.process.wait()
                raise AssertionError(f"kestro did not end on SIGTERM:\n{self.log()}") from None
        return self.process.returncode

    def __enter__(self):
        return self.start().wait_up()

    def __exit__(self, kind, error, trace):
        try:
            self.stop()
        except AssertionError:
            if kind is None:
                raise
