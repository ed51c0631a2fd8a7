"""From a session's row back to the window in which its agent runs: terminals, tmux, other desktops."""

# Each test runs under these window managers: openbox xfwm4

import json
import os
import shutil
import signal
import subprocess
import time
import unittest

from Xlib import X, display

from harness import HOME, DesktopTest, Kestro, holds_for, hook_input, wait_for

CLAUDE = HOME / ".claude" / "settings.json"

# An agent that hands every line it is given to its hook. The kernel names a script after its file.
AGENT = """#!/bin/bash
exec 3<>"$1"
echo $$ >"$1.pid"
while IFS= read -r line <&3; do printf '%s' "$line" | sh -c "$(cat "$2")"; done
"""


def property_of(window, name):
    connection = display.Display()
    try:
        target = connection.create_resource_object("window", window) if window else connection.screen().root
        found = target.get_full_property(connection.intern_atom(name), X.AnyPropertyType)
        return list(found.value) if found else []
    finally:
        connection.close()


def active():
    return (property_of(None, "_NET_ACTIVE_WINDOW") or [0])[0]


def xdotool(*words):
    return subprocess.run(["xdotool", *map(str, words)], check=True, capture_output=True, text=True).stdout.split()


class Agent:
    """An agent in a terminal. `start` is the terminal's command, to which the agent's own is added."""

    def __init__(self, test, name, start, inside=None):
        self.name = name
        self._pipe = HOME / f"{name}.pipe"
        os.mkfifo(self._pipe)
        command = [str(HOME / "bin" / "claude"), str(self._pipe), str(HOME / "command")]
        environment = {key: value for key, value in os.environ.items() if not key.startswith("TMUX")}
        self._process = subprocess.Popen([*start, *(inside(command) if inside else command)], env=environment,
                                         stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, start_new_session=True)
        test.addCleanup(self.end)

    def tell(self, event):
        with open(self._pipe, "w", encoding="utf8") as pipe:
            pipe.write(json.dumps(hook_input(event, session=self.name, cwd=f"/home/u/{self.name}")) + "\n")

    @property
    def pid(self):
        return int((HOME / f"{self.name}.pipe.pid").read_text())

    def end(self):
        if self._process.poll() is None:
            os.killpg(self._process.pid, signal.SIGKILL)
            self._process.wait()


class Test(DesktopTest):
    def setUp(self):
        super().setUp()
        script = HOME / "bin" / "claude"
        script.parent.mkdir()
        script.write_text(AGENT)
        script.chmod(0o755)
        self.kestro = self.using(Kestro({"agentsEnabled": True, "dockVisibility": "always"}))
        self.tree = self.kestro.tree
        settings = wait_for(lambda: CLAUDE.exists() and json.loads(CLAUDE.read_text()))
        (HOME / "command").write_text(settings["hooks"]["Stop"][0]["hooks"][0]["command"])

    def window(self, title):
        """The window of this title, once it is managed and mapped."""
        def find():
            for window in property_of(None, "_NET_CLIENT_LIST"):
                name = bytes(property_of(window, "WM_NAME")).decode()
                if name == title and property_of(window, "WM_STATE")[:1] == [1]:
                    return window
            raise LookupError(title)
        return wait_for(find, 10)

    def xterm(self, name, inside=None):
        agent = Agent(self, name, ["xterm", "-T", name, "-e"], inside)
        return agent, self.window(name)

    def row(self, agent, state="Done"):
        return self.tree.wait(name=f"{agent.name}, {state}, now", limit=5)

    def open_card(self):
        self.pointer.glide(*self.tree.find("button", "AI").frame.middle)

    def go(self, agent, window):
        """Presses the agent's row, which must bring its window to the front, whatever its state was."""
        self.row(agent).press()
        wait_for(lambda: active() == window, 5,
                 lambda: f"{agent.name}'s window {window:#x} to be active instead of {active():#x}:\n{self.tree}")
        self.assertEqual(1, property_of(window, "WM_STATE")[0], "un-minimised")

    def test_each_terminal_is_found_again(self):
        xdotool("set_num_desktops", 2)
        terminals = [self.xterm(name) for name in ("alpha", "beta", "gamma")]
        for agent, _ in terminals:
            agent.tell("Stop")
        xdotool("windowminimize", "--sync", terminals[0][1])
        xdotool("set_desktop_for_window", terminals[1][1], 1)
        self.open_card()
        for agent, window in terminals:
            self.go(agent, window)
            xdotool("set_desktop", 0)
            self.open_card()

    def test_two_windows_of_one_terminal_process(self):
        socket = HOME / "urxvtd"
        os.environ["RXVT_SOCKET"] = str(socket)
        daemon = subprocess.Popen(["urxvtd", "-q"], stderr=subprocess.DEVNULL)
        self.addCleanup(daemon.wait)
        self.addCleanup(daemon.kill)
        wait_for(socket.exists)
        pairs = []
        for name in ("delta", "epsilon"):
            agent = Agent(self, name, ["urxvtc", "-title", name, "-e"])
            pairs.append((agent, self.window(name)))
        self.assertEqual(1, len({property_of(window, "_NET_WM_PID")[0] for _, window in pairs}), "one process")
        for agent, _ in pairs:
            agent.tell("Stop")
        self.open_card()
        for agent, window in [*pairs, *pairs]:
            self.go(agent, window)

    def test_a_pane_of_tmux(self):
        server = ["tmux", "-L", "elsewhere", "-f", "/dev/null"]
        self.addCleanup(subprocess.run, [*server, "kill-server"], check=False, capture_output=True)
        agent = Agent(self, "zeta", [*server, "new-session", "-d", "-x", "80", "-y", "24"])
        other, other_window = self.xterm("eta")
        # A client that attaches to no session ends at once, and its window with it.
        wait_for(lambda: subprocess.run([*server, "has-session"], capture_output=True, check=False).returncode == 0)
        client = subprocess.Popen(["xterm", "-T", "theta", "-e", *server, "attach"], start_new_session=True)
        self.addCleanup(client.wait)
        self.addCleanup(client.kill)
        window = self.window("theta")
        wait_for(lambda: subprocess.run([*server, "list-clients"], capture_output=True, check=False).stdout)
        subprocess.run([*server, "new-window"], check=True)  # the client shows another pane now
        agent.tell("Stop")
        other.tell("Stop")
        self.open_card()
        self.go(other, other_window)
        self.go(agent, window)
        shown = subprocess.run([*server, "display-message", "-p", "#{window_index}"], capture_output=True, check=True)
        self.assertEqual(b"0\n", shown.stdout, "and its pane is shown")

        client.kill()
        wait_for(lambda: not subprocess.run([*server, "list-clients"], capture_output=True, check=False).stdout)
        self.open_card()
        self.row(agent).press()
        wait_for(lambda: "detached" in self.row(agent).description, 3, lambda: f"the row to say so:\n{self.tree}")

    def test_a_killed_agent_takes_its_row_along(self):
        (agent, _), (namesake, _) = self.xterm("iota"), self.xterm("kappa")
        agent.tell("UserPromptSubmit")
        self.open_card()
        row = self.row(agent, "Working").name
        os.kill(namesake.pid, signal.SIGKILL)
        holds_for(lambda: self.tree.shows(name=row), 2.2, "the row while its agent lives, for longer than it takes to know it")
        killed = time.monotonic()
        os.kill(agent.pid, signal.SIGKILL)
        self.tree.wait(name="No active sessions", limit=1)
        self.assertLess(time.monotonic() - killed, 0.5, "it is told, and not found out by the next tick")


if __name__ == "__main__":
    unittest.main()
