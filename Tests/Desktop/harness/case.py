"""A test that leaves a picture and the tree behind when it fails."""

import os
import subprocess
import unittest

from .screen import Keys, Pointer, picture
from .tree import Tree


class DesktopTest(unittest.TestCase):
    maxDiff = None

    def setUp(self):
        self.pointer = Pointer()
        self.keys = Keys()
        # The middle of nowhere: the X server starts with the pointer in the middle, which may be somebody's edge.
        self.pointer.move(600, 200)

    def run(self, result=None):
        self._result = result
        return super().run(result)

    def using(self, kestro, shows=True):
        """Starts a Kestro for the length of the test; it is ended after the picture of a failure was taken."""
        kestro.start()
        self.addCleanup(kestro.stop)
        self.addCleanup(self._keep_picture)
        return kestro.wait_up() if shows else kestro.wait_on_bus()

    def _keep_picture(self):
        errors = [*self._result.failures, *self._result.errors]
        outcome = getattr(self, "_outcome", None)
        if not errors and (outcome is None or outcome.success):
            return
        try:
            path = picture(self.id().replace(".", "-"))
        except (subprocess.CalledProcessError, OSError) as error:
            path = f"no picture: {error}"
        print(f"\n{self.id()}: {path}\n{Tree()}", flush=True)


def hook_input(event, session="s-1", cwd="/home/u/kestro", **more):
    """What an agent writes to its hook's standard input."""
    return {"session_id": session, "hook_event_name": event, "cwd": cwd, **more}


def run_as_agent(command, text):
    """Runs a hook's command as an agent does: by /bin/sh, its input on standard input."""
    return subprocess.run(["/bin/sh", "-c", command], input=text, text=True, capture_output=True, timeout=5,
                          env={"HOME": os.environ["HOME"], "PATH": "/usr/bin:/bin"}, check=False)
