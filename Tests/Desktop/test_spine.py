"""An agent's hook lights the dock: the whole way from the configuration file to the row on the card."""

import json
import time
import unittest

from harness import DesktopTest, HOME, Kestro, hook_input, holds_for, run_as_agent, wait_for

CLAUDE = HOME / ".claude" / "settings.json"
EVENTS = ["SessionStart", "UserPromptSubmit", "PostToolUse", "PermissionRequest", "Stop", "SessionEnd"]
MARKER = "# kestro-hook"


def hooks(path=CLAUDE):
    """The commands by event, as the file tells them."""
    entries = json.loads(path.read_text())["hooks"]
    return {event: [hook["command"] for entry in entries[event] for hook in entry["hooks"]] for event in entries}


class Test(DesktopTest):
    def setUp(self):
        super().setUp()
        self.kestro = self.using(Kestro({"agentsEnabled": True, "cursorEnabled": False}))
        self.tree = self.kestro.tree
        self.tile = self.tree.wait("button", "AI")
        self.command = wait_for(lambda: CLAUDE.exists() and hooks()["UserPromptSubmit"][0])

    def tell(self, event, **more):
        done = run_as_agent(self.command, json.dumps(hook_input(event, **more)))
        self.assertEqual((0, "", ""), (done.returncode, done.stdout, done.stderr))

    def expect_tile(self, description):
        wait_for(lambda: self.tree.find("button", "AI").description == description, 2,
                 lambda: f'the tile to say "{description}":\n{self.tree}')

    def open_card(self, row):
        self.pointer.glide(*self.tree.find("button", "AI").frame.middle)
        self.tree.wait(name=row, limit=2)

    def test_hooks_stand_in_the_files(self):
        self.assertEqual(sorted(EVENTS), sorted(hooks()))
        for event, commands in hooks().items():
            self.assertEqual(1, len([c for c in commands if c.endswith(MARKER)]), event)
        self.assertIn("Interrupt", hooks(HOME / ".codex" / "hooks.json"))
        self.assertFalse((HOME / ".cursor").exists(), "an agent that is not there got a folder")

    def test_a_session_from_its_prompt_to_its_end(self):
        self.tell("UserPromptSubmit")
        self.expect_tile("Working")
        self.open_card("kestro, Working, now")
        self.tell("PermissionRequest")
        self.expect_tile("Needs input")
        self.tree.wait(name="kestro, Needs input, now", limit=2)
        self.tell("SessionEnd")
        self.tree.wait_gone(name="kestro, Needs input, now", limit=2)
        self.tree.wait(name="No active sessions", limit=2)
        self.expect_tile("")

    def test_the_card_closes_half_a_second_after_the_pointer_leaves(self):
        self.tell("UserPromptSubmit")
        row = "kestro, Working, now"
        self.open_card(row)
        left = time.monotonic()
        self.pointer.glide(600, 200)
        holds_for(lambda: self.tree.shows(name=row), 0.3, "the card within the half second")
        self.tree.wait_gone(name=row, limit=2)
        self.assertGreater(time.monotonic() - left, 0.45)

    def test_an_agent_does_not_wait(self):
        start = time.monotonic()
        self.tell("UserPromptSubmit")
        self.assertLess(time.monotonic() - start, 0.5, "the server must close, netcat never does")

    def test_rubbish_changes_nothing(self):
        self.tell("UserPromptSubmit")
        self.expect_tile("Working")
        for text in ["", "[]", '{"session_id": 7, "hook_event_name": "Stop"}', "{" * 100_000, '{"session_id": "s-1"']:
            run_as_agent(self.command, text)
        run_as_agent(self.command.replace("agent=claude", "agent=nobody"), json.dumps(hook_input("Stop")))
        holds_for(lambda: self.tree.find("button", "AI").description == "Working", 0.3)
        self.tell("PermissionRequest")
        self.expect_tile("Needs input")


if __name__ == "__main__":
    unittest.main()
