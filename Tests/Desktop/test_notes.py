"""A note is written in its window, seen on its card, and lies in its file."""

import base64
import json
import unittest

from harness import DesktopTest, HOME, Kestro, wait_for

FILE = HOME / "Library" / "Application Support" / "Kestro" / "notes.txt"
LAYOUT = [{"id": "6E2A7C64-6B5C-4C39-9F0E-0C6C5E0B7A02", "kind": {"widget": {"kind": "notes"}}}]


class Test(DesktopTest):
    def start(self):
        layout = {"$data": base64.b64encode(json.dumps(LAYOUT).encode()).decode()}
        self.kestro = self.using(Kestro({"launcherItems": layout, "launcherItems.migrated": True}))
        self.tree = self.kestro.tree

    def open_card(self):
        self.pointer.glide(*self.tree.wait("button", "Notes").frame.middle)
        self.tree.wait("button", "Edit")

    def wait_until_it_can_be_written(self):
        self.tree.wait("text", "Note")
        wait_for(lambda: "focused" in self.tree.find("text", "Note").states)

    def test_a_note_from_the_first_key_to_the_next_run(self):
        self.start()
        self.open_card()
        self.tree.wait("label", "Empty note")
        self.tree.find("button", "Edit").press()
        self.wait_until_it_can_be_written()
        for key in "milk":
            self.keys.type(key)
        wait_for(lambda: FILE.exists() and FILE.read_text() == "milk")
        self.assertEqual(0o600, FILE.stat().st_mode & 0o777)
        self.keys.type("Return")
        for key in "eggs":
            self.keys.type(key)
        self.keys.type("ctrl+q")
        self.assertEqual(0, self.kestro.wait_end())
        self.assertEqual("milk\neggs", FILE.read_text(), "typed just before the end")

        self.start()
        self.open_card()
        self.tree.wait("label", "milk\neggs")
        self.pointer.click(*self.tree.find("button", "Notes").frame.middle)
        self.wait_until_it_can_be_written()
        self.keys.type("Escape")
        self.tree.wait_gone("text", "Note")


if __name__ == "__main__":
    unittest.main()
