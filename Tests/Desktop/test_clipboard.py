"""The history of the clipboard, as its user meets it: copied by one program, found, and pasted into another."""

import json
import os
import signal
import subprocess
import unittest

from Xlib import XK

from harness.case import DesktopTest
from harness.program import Kestro
from harness.screen import Keys
from harness.waiting import wait_for
from test_shortcuts import OtherProgram

HISTORY = os.path.expanduser("~/Library/Application Support/Kestro/clipboard/history.json")
SHORTCUT = {"$data": "eyJrZXlDb2RlIjo5LCJtb2RpZmllcnMiOjI1Nn0="}  # Super and V


def entries():
    try:
        with open(HISTORY, encoding="utf-8") as file:
            return json.load(file)["entries"]
    except (FileNotFoundError, ValueError):
        return []


def texts():
    return [each["kind"]["text"]["_0"] for each in entries() if "text" in each["kind"]]


def copy(data, target=None):
    more = ["-t", target] if target else []
    subprocess.run(["xclip", "-selection", "clipboard", *more], input=data, stdout=subprocess.DEVNULL, check=True)


def pasted(target="UTF8_STRING"):
    return subprocess.run(["xclip", "-selection", "clipboard", "-o", "-t", target], capture_output=True,
                          timeout=5, check=True).stdout


class Test(DesktopTest):
    def setUp(self):
        super().setUp()
        self.other = OtherProgram()
        self.addCleanup(self.other.close)
        self.keys = Keys()

    def start(self, **preferences):
        values = {"clipboardEnabled": True, "clipboardShortcut": SHORTCUT, "clipboardPasteAfterPicking": True}
        kestro = self.using(Kestro(preferences={**values, **preferences}))
        self.watching()
        return kestro

    def watching(self):
        """The first copies may come before the watcher, and each puts off the saving of the one before."""
        for _ in range(5):
            copy(b"first")
            try:
                return wait_for(lambda: "first" in texts(), 2.5, "a copy in the history")
            except AssertionError:
                continue
        self.fail("nothing is recorded")

    def open_picker(self, kestro):
        self.keys.type("super+v")
        wait_for(lambda: "focused" in kestro.tree.find("text", "Search").states, 5, "the keyboard in the picker")

    def type(self, text):
        subprocess.run(["xdotool", "type", text], check=True)

    def test_copied_found_and_pasted(self):
        kestro = self.start()
        for text in ("the quick brown fox", "grün\nzweite Zeile"):
            copy(text.encode())
            wait_for(lambda wanted=text: wanted in texts(), 5, "the copy in the history")
        self.other.focus()
        self.open_picker(kestro)
        self.type("QUICK")
        wait_for(lambda: len(kestro.tree.find_all("list item")) == 1, 5, "one row")
        self.other.keys()
        self.keys.type("Return")
        v = self.other.display.keysym_to_keycode(XK.XK_v)
        wait_for(lambda: v in self.other.keys(), 5, "the paste in the other window")
        self.assertEqual(pasted(), b"the quick brown fox")
        kestro.tree.wait_gone("list", "Entries")
        wait_for(self.other.focused, 5, "the focus where it was")
        self.assertEqual(len(texts()), 3, "what was picked does not come round")

    def test_images_and_files_keep_their_kinds(self):
        kestro = self.start()
        subprocess.run(["convert", "-size", "640x480", "plasma:", "image.png"], cwd=os.environ["HOME"], check=True)
        with open(os.path.expanduser("~/image.png"), "rb") as file:
            image = file.read()
        copy(image, "image/png")
        wait_for(lambda: "image" in entries()[0]["kind"], 10, "the image")
        self.assertEqual((entries()[0]["kind"]["image"]["width"], entries()[0]["kind"]["image"]["height"]), (640, 480))
        copy(b"file:///tmp/a%20b%0Ac\r\n", "text/uri-list")
        wait_for(lambda: entries()[0]["kind"] == {"files": {"_0": ["/tmp/a b\nc"]}}, 5, "the file")
        self.open_picker(kestro)
        self.keys.type("ctrl+2")
        wait_for(lambda: pasted("TARGETS").find(b"image/png") >= 0, 5, "the image on the clipboard")
        self.assertEqual(pasted("image/png"), image)

    def test_survives_being_killed(self):
        kestro = self.start()
        copy(b"kept")
        wait_for(lambda: "kept" in texts(), 5, "the copy on the disk")
        os.kill(kestro.pid, signal.SIGKILL)
        kestro.wait_end()
        before = entries()
        with Kestro():
            self.watching()
            self.assertEqual([each["id"] for each in entries()], [each["id"] for each in before])

    def test_deleted_and_brought_back(self):
        kestro = self.start()
        copy(b"one to lose")
        wait_for(lambda: len(texts()) == 2, 5, "two copies")
        self.open_picker(kestro)
        self.keys.type("BackSpace")
        wait_for(lambda: texts() == ["first"], 5, "one less on the disk")
        self.keys.type("ctrl+z")
        wait_for(lambda: texts() == ["one to lose", "first"], 5, "both again")


if __name__ == "__main__":
    unittest.main()
