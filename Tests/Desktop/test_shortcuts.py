"""Global shortcuts, as keys of a real keyboard reach them; what they open, and how they are recorded."""

import json
import os
import signal
import subprocess
import unittest

from Xlib import X, display, error

from harness.case import DesktopTest
from harness.program import Kestro, read_preferences
from harness.screen import Keys, windows
from harness.waiting import wait_for

CONTROL_ALT = X.ControlMask | X.Mod1Mask


class OtherProgram:
    """A client with a window that has the focus and notes every key that it is told of; it may grab combinations."""

    def __init__(self):
        self.display = display.Display()
        screen = self.display.screen()
        self.window = screen.root.create_window(
            40, 40, 200, 120, 0, screen.root_depth, event_mask=X.KeyPressMask | X.KeyReleaseMask)
        self.window.map()
        self.display.sync()

    def focus(self):
        wait_for(lambda: self.window.get_attributes().map_state == X.IsViewable, 5, "a mapped window")
        self.window.set_input_focus(X.RevertToPointerRoot, X.CurrentTime)
        self.display.sync()
        wait_for(self.focused, 5, "the focus")

    def focused(self):
        focus = self.display.get_input_focus().focus
        return getattr(focus, "id", focus) == self.window.id

    def keys(self):
        """The keys that it was told of since the last look, without Control, Alt and the like."""
        modifiers = {code for codes in self.display.get_modifier_mapping() for code in codes}
        self.display.sync()
        told = []
        while self.display.pending_events():
            event = self.display.next_event()
            if event.type in (X.KeyPress, X.KeyRelease) and event.detail not in modifiers:
                told.append(event.detail)
        return told

    def grab(self, keysym, modifiers):
        """Whether the server let us."""
        caught = error.CatchError(error.BadAccess)
        root = self.display.screen().root
        root.grab_key(self.display.keysym_to_keycode(keysym), modifiers, False, X.GrabModeAsync, X.GrabModeAsync,
                      onerror=caught)
        self.display.sync()
        return caught.get_error() is None

    def keyboard_is_free(self):
        free = self.window.grab_keyboard(False, X.GrabModeAsync, X.GrabModeAsync, X.CurrentTime) == X.GrabSuccess
        self.display.ungrab_keyboard(X.CurrentTime)
        self.display.sync()
        return free

    def close(self):
        self.display.close()


class Test(DesktopTest):
    def setUp(self):
        super().setUp()
        self.other = OtherProgram()
        self.addCleanup(self.other.close)

    def card_shows(self, kestro):
        return kestro.tree.shows("heading", "Stats")

    def open_settings(self, kestro):
        subprocess.run([os.environ["KESTRO"]], check=True, timeout=10)
        wait_for(lambda: self.settings_frame(kestro), 5, "the Settings window")
        return kestro.tree.wait("page tab", "Shortcuts")

    def settings_frame(self, kestro):
        return next((frame for _, frame in windows(kestro.pid) if frame.width > 600), None)

    def close_settings(self, kestro):
        """By the button in its title bar."""
        frame = self.settings_frame(kestro)
        self.pointer.click(frame.right - 10, frame.y - 10)
        wait_for(lambda: not self.settings_frame(kestro), 5, "the window to be gone")

    def recorder(self, kestro, subject):
        def found():
            for node in kestro.tree.nodes():
                if node.role == "button" and node.description == f"Shortcut for {subject}" and node.showing:
                    return node
            return None
        return wait_for(found, 5, lambda: f"the shortcut of {subject} in\n{kestro.tree}")

    def says(self, kestro, subject, text):
        wait_for(lambda: self.recorder(kestro, subject).name == text, 5,
                 lambda: f"{text} for {subject} in\n{kestro.tree}")

    def test_opens_the_dock_and_gives_it_the_keyboard_until_escape(self):
        kestro = self.using(Kestro({"agentsEnabled": True}))
        self.other.focus()
        self.keys.type("ctrl+alt+space")
        wait_for(lambda: self.card_shows(kestro), 5, lambda: f"the card:\n{kestro.tree}")
        wait_for(lambda: not self.other.focused(), 5, "the dock to have the focus")
        self.keys.type("Down")
        kestro.tree.wait("heading", "AI")
        self.keys.type("Up")
        wait_for(lambda: self.card_shows(kestro), 5, "Stats again")
        self.keys.type("Escape")
        kestro.tree.wait_gone("heading", "Stats")
        wait_for(self.other.focused, 5, "the focus to be where it was")
        self.assertEqual([], self.other.keys(), "the focused window is told of no press and no release")

        self.keys.type("ctrl+alt+space")
        wait_for(lambda: self.card_shows(kestro), 5, "the card")
        self.keys.type("ctrl+alt+space")
        kestro.tree.wait_gone("heading", "Stats")
        wait_for(self.other.focused, 5, "the focus to be where it was")

    def test_records_refuses_and_removes(self):
        kestro = self.using(Kestro({"agentsEnabled": True}))
        self.open_settings(kestro).press()
        self.says(kestro, "Stats", "Record Shortcut")
        self.recorder(kestro, "Stats").press()
        self.says(kestro, "Stats", "Type shortcut…")
        for refused, why in (("a", "Use ⌘, ⌥ or ⌃ with a key"), ("ctrl+s", "Too common — add ⌃ or ⌥"),
                             ("super+s", "Too common — add ⌃ or ⌥")):
            self.keys.type(refused)
            kestro.tree.wait(None, why)
        self.keys.type("ctrl+alt+space")  # its own: it rests while one is recorded
        kestro.tree.wait(None, "Already used by Open / close notch")
        self.says(kestro, "Stats", "Record Shortcut")

        self.recorder(kestro, "Stats").press()
        self.says(kestro, "Stats", "Type shortcut…")
        self.keys.type("ctrl+alt+k")
        self.says(kestro, "Stats", "⌃⌥K")
        self.assertIn({"keyCode": 40, "modifiers": 6144}, [item.get("shortcut") for item in self.layout()])
        self.keys.type("ctrl+alt+k")
        wait_for(lambda: self.card_shows(kestro), 5, lambda: f"the card:\n{kestro.tree}")
        self.keys.type("Escape")

        # Another program has one of the lock variants alone: refused, and nothing of ours stays behind.
        self.assertTrue(self.other.grab(ord("j"), CONTROL_ALT | X.Mod2Mask))
        self.recorder(kestro, "Stats").press()
        self.says(kestro, "Stats", "Type shortcut…")
        self.keys.type("ctrl+alt+j")
        kestro.tree.wait(None, "Used by another app")
        self.says(kestro, "Stats", "⌃⌥K")
        self.assertTrue(self.other.grab(ord("j"), CONTROL_ALT))

        self.recorder(kestro, "Stats").press()
        self.says(kestro, "Stats", "Type shortcut…")
        self.keys.type("Delete")
        self.says(kestro, "Stats", "Record Shortcut")
        self.assertEqual([None, None], [item.get("shortcut") for item in self.layout()])

    def layout(self):
        stored = read_preferences()["launcherItems"]["$data"]
        return json.loads(subprocess.run(["base64", "-d"], input=stored, text=True, check=True,
                                         capture_output=True).stdout)

    def test_a_recording_that_is_left_open_frees_the_keyboard(self):
        kestro = self.using(Kestro({"agentsEnabled": True}))
        ends = {
            "the window is closed": lambda: self.close_settings(kestro),
            "another window is used": self.other.focus,
        }
        for what, end in ends.items():
            with self.subTest(what):
                self.open_settings(kestro).press()
                self.recorder(kestro, "Stats").press()
                self.says(kestro, "Stats", "Type shortcut…")
                self.assertFalse(self.other.keyboard_is_free())
                end()
                wait_for(self.other.keyboard_is_free, 5, "the keyboard")
                self.keys.type("ctrl+alt+space")
                wait_for(lambda: self.card_shows(kestro), 5, "the shortcuts to be live again")
                self.keys.type("ctrl+alt+space")
                kestro.tree.wait_gone("heading", "Stats")

        self.open_settings(kestro).press()
        self.recorder(kestro, "Stats").press()
        self.says(kestro, "Stats", "Type shortcut…")
        kestro.process.send_signal(signal.SIGKILL)
        kestro.wait_end()
        wait_for(self.other.keyboard_is_free, 5, "the keyboard, after a kill")
        self.assertTrue(self.other.grab(0x20, CONTROL_ALT), "and the shortcut")

    def test_follows_the_keyboard(self):
        subprocess.run(["setxkbmap", "dvorak"], check=True)
        self.addCleanup(subprocess.run, ["setxkbmap", "us"], check=True)
        kestro = self.using(Kestro({"agentsEnabled": True}))
        self.open_settings(kestro).press()
        self.recorder(kestro, "Stats").press()
        self.says(kestro, "Stats", "Type shortcut…")
        Keys().type("ctrl+alt+t")  # on a key that is another letter's elsewhere
        self.says(kestro, "Stats", "⌃⌥K")
        Keys().type("ctrl+w")
        place = Keys().code("t")
        for layout, here in (("dvorak", "t"), ("de", "k"), ("us,ru", "k"), ("us", "k")):
            with self.subTest(layout):
                subprocess.run(["setxkbmap", layout], check=True)
                keys = Keys()
                self.assertEqual(place, keys.code(here))
                keys.type(f"ctrl+alt+{here}")
                kestro.tree.wait("heading", "Stats")
                keys.type("Escape")
                kestro.tree.wait_gone("heading", "Stats")

    def test_assign_shortcut_opens_the_item_in_settings(self):
        kestro = self.using(Kestro({"agentsEnabled": True}))
        self.pointer.click(*kestro.tree.wait("button", "AI").frame.middle, button=3)
        kestro.tree.wait("menuitem", "Assign Shortcut…").press()
        kestro.tree.wait("panel", "Layout")
        wait_for(lambda: "selected" in kestro.tree.wait("list item", "AI").states, 5, lambda: f"{kestro.tree}")


if __name__ == "__main__":
    unittest.main()
