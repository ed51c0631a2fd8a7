"""A countdown is started on its card, shows on its tile, and outlives the program."""

import base64
import json
import time
import unittest

from harness import DesktopTest, Kestro, read_preferences, wait_for, windows

LAYOUT = [{"id": "6E2A7C64-6B5C-4C39-9F0E-0C6C5E0B7A01", "kind": {"widget": {"kind": "timer"}}}]
EPOCH = 978307200  # of the dates in the preference file


def data(value):
    return {"$data": base64.b64encode(json.dumps(value).encode()).decode()}


def stored():
    return json.loads(base64.b64decode(read_preferences()["timerState"]["$data"]))


class Test(DesktopTest):
    def start(self, **preferences):
        self.kestro = self.using(Kestro({"launcherItems": data(LAYOUT), "launcherItems.migrated": True, **preferences}))
        self.tree = self.kestro.tree

    def open_card(self):
        self.pointer.glide(*self.tree.wait("button", "Timer").frame.middle)
        self.tree.wait("button", "25 min")
        # The tree knows the card before the window manager has put it where it can be clicked.
        wait_for(lambda: len(windows(self.kestro.pid)) > 1)

    def tile_says(self, words):
        wait_for(lambda: self.tree.find("button", "Timer").description == words, 8,
                 lambda: f'the tile to say "{words}":\n{self.tree}')

    def test_a_countdown_from_its_start_to_the_next_run(self):
        self.start()
        self.open_card()
        self.pointer.click(*self.tree.find("button", "5 min").frame.middle)
        self.tree.wait("button", "Pause")
        self.tree.wait("label", "4:59")
        self.tree.wait("label", "4:58")
        self.tree.find("button", "One minute less").press()
        self.tree.wait("label", lambda name: name.startswith("3:5"))
        self.tile_says("4m left")
        self.assertEqual(0, self.kestro.stop())
        end = stored()["phase"]["running"]["until"]

        self.start()
        self.tile_says("4m left")
        self.open_card()
        self.tree.find("button", "Pause").press()
        self.tree.wait("button", "Start")
        left = wait_for(lambda: stored()["phase"].get("paused"))["remaining"]
        self.assertAlmostEqual(end - (time.time() - EPOCH), left, delta=3)
        self.tree.find("button", "Reset").press()
        self.tree.wait("label", "5:00")
        self.tile_says("")

    def test_its_end_comes_while_nobody_looks(self):
        self.start(timerState=data({"phase": {"running": {"until": time.time() - EPOCH + 4}}, "duration": 60}))
        self.tile_says("2s left")
        self.tile_says("")
        wait_for(lambda: stored() == {"phase": {"idle": {}}, "duration": 60})


if __name__ == "__main__":
    unittest.main()
