"""The hooks' health in Settings: a hook is tried out for real, and what is broken is told and repaired."""

import json
import os
import shutil
import socket
import subprocess
import tempfile
import unittest
from pathlib import Path

from harness import HOME, DesktopTest, Kestro, hook_input, run_as_agent, wait_for

CLAUDE, CODEX = HOME / ".claude/settings.json", HOME / ".codex/hooks.json"
SOCKET = HOME / "Library/Application Support/Kestro/agents.sock"


class Test(DesktopTest):
    def start(self, environment=None):
        self.kestro = self.using(Kestro({"agentsEnabled": True}, environment))
        self.tree = self.kestro.tree
        subprocess.run([os.environ["KESTRO"]], check=True, timeout=5)
        self.tree.wait("page tab", "Agents").press()
        self.tree.wait("heading", "Hooks")

    def press(self, name):
        found = self.tree.find_all("button", name, showing=False)
        self.assertEqual(1, len(found), f"{name} in\n{self.tree}")
        found[0].press()

    def lines(self):
        return [node.name for node in self.tree.find_all("label", showing=False)]

    def expect(self, *parts):
        """One line holds them all."""
        wait_for(lambda: any(all(part in line for part in parts) for line in self.lines()), 8,
                 lambda: f"{parts} in\n{self.tree}")

    def only(self, *programs):
        """A PATH that has these alone; a pair is a name and what stands behind it."""
        folder = Path(tempfile.mkdtemp(dir=HOME))
        for program in programs:
            name, target = program if isinstance(program, tuple) else (program, program)
            (folder / name).symlink_to(shutil.which(target))
        return {"PATH": str(folder)}

    def test_a_hook_is_tried_edited_and_repaired(self):
        self.start()
        self.expect("Hook installed · No event yet")
        self.assertFalse(self.tree.find_all("button", "Repair", showing=False)[0].enabled)
        self.press("Test Claude Code")
        self.expect("Answered in", " ms.")
        self.expect("Hook installed · No event yet")
        CLAUDE.write_text(CLAUDE.read_text().replace("-w1", "-w2"))
        self.press("Test Claude Code")
        self.expect("Answered in", "but the command was edited.")
        self.expect("Hook edited")
        self.press("Repair")
        self.expect("Answered in", " ms.")
        self.assertNotIn("-w2", CLAUDE.read_text())
        self.assertFalse([line for line in self.lines() if "edited" in line])

    def test_an_event_is_told_and_codex_that_sends_nothing(self):
        self.start()
        log = HOME / ".codex/sessions/2026/01/02/rollout-1.jsonl"
        log.parent.mkdir(parents=True)
        log.write_text("{}\n")
        self.press("Test Codex")
        self.expect("Answered in", "trust the hook when Codex asks.")
        command = json.loads(CODEX.read_text())["hooks"]["Stop"][0]["hooks"][0]["command"]
        run_as_agent(command, json.dumps(hook_input("Stop")))
        self.expect("Last event now")
        self.press("Test Codex")
        self.expect("Answered in", " ms.")

    def test_a_socket_that_is_gone_or_hung_is_opened_anew(self):
        self.start()
        SOCKET.unlink()
        self.press("Test Claude Code")
        self.expect("The socket is gone: nothing listens.")
        self.press("Repair")
        self.expect("Answered in", " ms.")
        SOCKET.unlink()
        with socket.socket(socket.AF_UNIX) as hung:
            hung.bind(str(SOCKET))
            hung.listen()
            self.press("Test Claude Code")
            self.expect("The socket does not answer.")
        self.press("Test Claude Code")
        self.expect("The socket is gone: nothing listens.")
        self.press("Repair")
        self.expect("Answered in", " ms.")

    def test_a_netcat_of_another_make(self):
        self.start(self.only("sh", "cat", ("nc", "busybox")))
        self.press("Test Claude Code")
        self.expect("nc cannot reach sockets (-U): install netcat-openbsd.")

    def test_no_netcat_at_all(self):
        self.start(self.only("sh", "cat"))
        self.press("Test Claude Code")
        self.expect("nc is missing: install netcat-openbsd.")


if __name__ == "__main__":
    unittest.main()
