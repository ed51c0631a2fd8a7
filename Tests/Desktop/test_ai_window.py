"""The AI window, and the usage limits on it and on the card."""

import json
import socket
import subprocess
import time
import unittest

from harness import HOME, DesktopTest, Kestro, hook_input, wait_for

SOCKET = HOME / "Library/Application Support/Kestro/agents.sock"
MINUTE, HOUR, DAY = 60, 3600, 86400


class Test(DesktopTest):
    def start(self, **preferences):
        self.kestro = self.using(Kestro({"agentsEnabled": True, "limitsEnabled": True, "cursorEnabled": False, **preferences}))
        self.tree = self.kestro.tree
        wait_for(SOCKET.exists, 3, "the socket")
        self.tree.wait("button", "AI")

    def tell(self, header, body):
        with socket.socket(socket.AF_UNIX) as client:
            client.settimeout(5)
            client.connect(str(SOCKET))
            client.sendall(f"{header}\n{json.dumps(body)}".encode())
            client.recv(1)

    def tell_limits(self):
        now = time.time()
        self.tell("limits=claude", {"rate_limits": {
            "five_hour": {"used_percentage": 28, "resets_at": now + 2 * HOUR + 5 * MINUTE + 30},
            "seven_day": {"used_percentage": 83, "resets_at": now + 3 * DAY + HOUR}}})

    def tell_event(self, event, session):
        self.tell("agent=claude", hook_input(event, str(session), f"/home/u/p{session}"))

    def point_at_tile(self):
        self.pointer.glide(600, 200)
        self.pointer.glide(*self.tree.find("button", "AI").frame.middle)

    def open_window(self):
        self.point_at_tile()
        self.pointer.click()
        self.tree.wait("frame", "AI")
        wait_for(self.is_active, 3, "it has the keyboard")

    def is_active(self):
        window = subprocess.run(["xdotool", "getactivewindow", "getwindowname"], capture_output=True, text=True, check=False)
        return window.stdout.strip() == "AI"

    def rows(self):
        return [row.name for row in self.tree.find_all("list item")]

    def expect_limits(self):
        self.tree.wait("list", "Usage limits")
        claude = self.tree.wait("list item", "Claude, 5h 28% · 2h5m, week 83% · 3d")
        self.assertTrue(claude.description.startswith("Told by Claude Code's status line at "))
        self.tree.find("label", "5h 28% · 2h5m")
        self.tree.find("list item", "Codex, No data yet")
        return claude

    def test_limits_are_on_the_card_and_in_the_window(self):
        self.start()
        self.point_at_tile()
        self.tree.wait("label", "No data yet · appears after your next Claude Code message")
        self.tell_limits()
        row = self.expect_limits()
        self.tree.find(name="No active sessions")
        self.pointer.glide(*row.frame.middle)
        self.tree.wait("tool tip", lambda name: name == row.description)
        self.pointer.glide(row.frame.middle[0], row.frame.middle[1] - 40)
        self.tree.wait_gone("tool tip")
        self.tree.find("button", "Open AI window").press()
        self.tree.wait("frame", "AI")
        self.tree.wait_gone("button", "Open AI window")
        self.expect_limits()

    def test_rows_are_told_in_the_order_that_is_seen(self):
        self.start()
        for session in (1, 2, 3):
            self.tell_event("UserPromptSubmit", session)

        def expect(*projects):
            wait_for(lambda: [name[:2] for name in self.rows() if name.startswith("p")] == list(projects), 3,
                     lambda: f"the order {projects}:\n{self.tree}")
            tops = [row.frame.middle[1] for row in self.tree.find_all("list item") if row.name.startswith("p")]
            self.assertEqual(sorted(tops), tops)

        self.point_at_tile()
        expect("p3", "p2", "p1")
        self.tell_event("PostToolUse", 1)
        expect("p1", "p3", "p2")
        self.open_window()
        expect("p1", "p3", "p2")
        self.tell_event("PostToolUse", 2)
        expect("p2", "p1", "p3")
        self.tell_event("SessionEnd", 1)
        expect("p2", "p3")

    def test_only_what_is_on_shows(self):
        self.start(agentsEnabled=False)
        self.point_at_tile()
        self.tree.wait("list", "Usage limits")
        self.assertFalse(self.tree.shows("list", "Sessions"))
        self.open_window()
        self.tree.wait("label", "Agent activity is off.")
        self.keys.type("ctrl+w")
        self.tree.wait_gone("frame", "AI")

    def test_the_window_shows_five_hundred_sessions(self):
        self.start(limitsEnabled=False)
        for session in range(500):
            self.tell_event("UserPromptSubmit", session)
        self.open_window()
        self.tree.find("label", "Usage limits are off.")
        self.tree.wait("list item", "p499, Working, now")
        self.assertLess(len(self.rows()), 60, "only what can be seen is made")
        self.assertFalse(self.tree.shows("button", "Open AI window"), "the card gave way")
        self.keys.type("End")
        self.tree.wait("list item", lambda name: name.startswith("p0, Working, "))
        self.tell_event("PermissionRequest", 0)
        self.keys.type("Home")
        self.tree.wait("list item", lambda name: name.startswith("p0, Needs input, "))
        self.keys.type("Escape")
        self.tree.wait_gone("frame", "AI")
        self.open_window()
        self.tree.wait("list item", lambda name: name.startswith("p0, Needs input, "))
        self.keys.type("ctrl+q")
        self.assertEqual(0, self.kestro.wait_end())

    def test_it_is_idle_while_nobody_looks(self):
        self.start()
        self.tell_limits()
        self.tell_event("UserPromptSubmit", 1)
        self.open_window()
        self.keys.type("Escape")
        self.tree.wait_gone("frame", "AI")
        self.tell_event("SessionEnd", 1)
        wait_for(lambda: self.tree.find("button", "AI").description == "", 3)
        self.pointer.move(600, 200)
        self.expect_rest()

    def expect_rest(self):
        """Until nothing has woken it for a whole second: neither a timer nor something that still turns unseen."""
        last, since = self.wakes(), time.monotonic()

        def rests():
            nonlocal last, since
            if (now := self.wakes()) != last:
                last, since = now, time.monotonic()
            return time.monotonic() - since > 1

        wait_for(rests, 10, "rest")

    def wakes(self):
        with open(f"/proc/{self.kestro.pid}/status", encoding="ascii") as file:
            return next(line for line in file if line.startswith("voluntary_ctxt_switches"))


if __name__ == "__main__":
    unittest.main()
