"""The Settings window: every control does what it says, by the bus and by the keyboard."""

import json
import os
import subprocess
import unittest

from harness import HOME, PREFERENCES, DesktopTest, Kestro, holds_for, read_preferences, wait_for, windows, write_preferences

CLAUDE, CODEX, CURSOR = HOME / ".claude/settings.json", HOME / ".codex/hooks.json", HOME / ".cursor/hooks.json"
AUTOSTART = HOME / ".config/autostart/kestro.desktop"
WIDTH, HEIGHT = 1920, 1080


class Test(DesktopTest):
    def start(self, pane="General", **preferences):
        self.kestro = self.using(Kestro(preferences))
        self.tree = self.kestro.tree
        self.open(pane)

    def open(self, pane="General"):
        subprocess.run([os.environ["KESTRO"]], check=True, timeout=5)
        self.tree.wait("page tab", pane).press()
        self.tree.wait("heading", pane)

    def press(self, role, name, group=None):
        found = [node for node in self.tree.find_all(role, name, showing=False) if group in (None, node.description)]
        self.assertEqual(1, len(found), f"{role} {name} ({group}) in\n{self.tree}")
        found[0].press()

    def pick(self, label, title):
        self.press("combo box", label)
        self.tree.wait("list item", title).press()
        self.tree.wait_gone("list item", title)

    def expect(self, key, value):
        wait_for(lambda: PREFERENCES.exists() and read_preferences().get(key) == value, 3,
                 lambda: f"{key}: {value} in {PREFERENCES.read_text()}")

    def dock(self):
        return self.tree.find("button", "Stats").frame

    def checked(self, name):
        return "checked" in self.tree.find("checkbox", name).states

    def is_active(self):
        window = subprocess.run(["xdotool", "getactivewindow", "getwindowname"], capture_output=True, text=True, check=False)
        return window.stdout.strip() == "Kestro Settings"

    def test_a_second_start_opens_it_and_every_pane_is_there(self):
        self.start()
        wait_for(self.is_active, 3, "it has the keyboard")
        self.assertEqual(["General", "Appearance", "Layout", "Stats", "Agents", "Clipboard", "Shortcuts"],
                         [tab.name for tab in self.tree.find_all("page tab")])
        for tab in self.tree.find_all("page tab"):
            tab.press()
            self.tree.wait("heading", tab.name)
        own = len(windows(self.kestro.pid))
        self.open()
        self.assertEqual(own, len(windows(self.kestro.pid)), "one is enough")
        self.keys.type("Escape")
        self.tree.wait_gone("page tab", "General")
        self.assertIsNone(self.kestro.process.poll())

    def test_general_opens_at_login_and_tells_its_version(self):
        self.start()
        self.assertFalse(AUTOSTART.exists())
        for exists in [True, False]:
            self.press("checkbox", "Open at login")
            wait_for(lambda: AUTOSTART.exists() == exists, 3, f"the autostart entry: {exists}")
            wait_for(lambda: self.checked("Open at login") == exists, 3, lambda: str(self.tree))
        self.tree.find("label", lambda name: name.startswith("Version 0."))

    def test_every_choice_of_appearance_is_written(self):
        self.start("Appearance")
        choices = {
            ("Show Kestro in", "displayMode"): [("Notch", "notch"), ("Sidebar", "sidebar")],
            ("Edge", "sidebarEdge"): [("Left", "left"), ("Bottom", "bottom"), ("Right", "right")],
            ("Visibility", "sidebarVisibility"): [("Pill", "pill"), ("Auto-hide", "autoHide"), ("Always visible", "dock")],
            ("Placement", "sidebarPlacement"): [("Detached", "detached"), ("Attached", "attached")],
            ("Material", "sidebarMaterial"): [("Solid", "solid"), ("Glass", "glass"), ("Translucent", "translucent")],
            ("Icon size", "dockIconSize"): [("Small", "small"), ("Large", "large"), ("Medium", "medium")],
            ("Tiles", "tileStyle"): [("Monochrome", "monochrome"), ("Colorful", "colorful")],
            ("Level bars", "levelBars"): [("Accent", "accent"), ("Traffic light", "trafficLight")],
        }
        for (group, key), options in choices.items():
            for title, value in options:
                self.press("radio button", title, group)
                self.expect(key, value)
        for title in ["Plain", "Accent", "Red", "Orange", "Yellow", "Green", "Blue", "Purple", "Pink", "Graphite"][::-1]:
            self.pick("Tint", title)
            self.expect("sidebarTint", title.lower())
        self.pick("Screen", "screen")
        self.expect("sidebarScreen", "screen")
        self.assertEqual("screen", self.tree.find("combo box", "Screen").description)

    def test_the_dock_follows_appearance_at_once(self):
        self.start("Appearance")
        for title, stands in [("Left", lambda: self.dock().x < 80), ("Bottom", lambda: self.dock().bottom > HEIGHT - 80),
                              ("Right", lambda: self.dock().right > WIDTH - 80)]:
            self.press("radio button", title, "Edge")
            wait_for(stands, 3, lambda: f"the dock at {title}:\n{self.tree}")
        for title, side in [("Small", 28), ("Large", 48)]:
            self.press("radio button", title, "Icon size")
            wait_for(lambda: self.dock().width == side, 3, lambda: f"{side} in\n{self.tree}")
        thin = max(frame.width for _, frame in windows(self.kestro.pid) if frame.height == HEIGHT)
        self.press("checkbox", "Magnification")
        self.tree.wait("slider", "Magnification scale")
        wait_for(lambda: max(frame.width for _, frame in windows(self.kestro.pid) if frame.height == HEIGHT) > thin, 3,
                 "room for what is magnified")
        self.press("radio button", "Auto-hide", "Visibility")
        self.tree.wait_gone("button", "Stats", limit=3)

    def test_the_magnification_is_set_by_the_bus(self):
        self.start("Appearance", dockMagnification=True)
        slider = self.tree.wait("slider", "Magnification scale")
        value = slider._accessible.get_value_iface()
        self.assertEqual((1.2, 2.0), (value.get_minimum_value(), value.get_maximum_value()))
        for asked, written in [(1.8, 1.8), (5.0, 2.0), (1.26, 1.3)]:
            value.set_current_value(asked)
            self.expect("dockMagnificationScale", written)
        self.press("checkbox", "Magnification")
        self.expect("dockMagnification", False)
        self.tree.wait_gone("slider", "Magnification scale")

    def test_what_another_program_writes_shows(self):
        self.start("Appearance", sidebarScreen="gone")
        self.assertEqual("gone (disconnected) — using main screen", self.tree.find("combo box", "Screen").description)
        write_preferences(sidebarScreen=None, sidebarTint="pink", sidebarEdge="left")
        wait_for(lambda: self.tree.find("combo box", "Screen").description == "Main screen", 3)
        self.assertEqual("Pink", self.tree.find("combo box", "Tint").description)
        left = [node for node in self.tree.find_all("radio button", "Left") if node.description == "Edge"]
        self.assertIn("checked", left[0].states)

    def test_agents_are_switched_with_their_hooks(self):
        CURSOR.parent.mkdir()
        self.start("Agents")
        for name in ["Claude Code", "Codex", "Cursor"]:
            self.assertFalse(self.tree.find("checkbox", name).enabled, name)
        self.press("checkbox", "Show Claude Code, Codex & Cursor activity")
        self.expect("agentsEnabled", True)
        wait_for(lambda: all(path.exists() for path in [CLAUDE, CODEX, CURSOR]), 3, "the hooks")
        for name, key, path in [("Claude Code", "claudeEnabled", CLAUDE), ("Codex", "codexEnabled", CODEX),
                                ("Cursor", "cursorEnabled", CURSOR)]:
            wait_for(lambda: self.tree.find("checkbox", name).enabled and self.checked(name), 3, lambda: str(self.tree))
            for on in [False, True]:
                self.press("checkbox", name)
                self.expect(key, on)
                wait_for(lambda: ("agents.sock" in path.read_text()) == on, 3, f"{path} {on}")

    def test_agents_tell_what_is_missing_and_what_failed(self):
        CLAUDE.parent.mkdir()
        CLAUDE.write_text("{ broken")
        self.start("Agents")
        self.press("checkbox", "Show Claude Code, Codex & Cursor activity")
        self.tree.wait("label", "Cursor isn't installed (no ~/.cursor folder).")
        self.assertFalse(self.tree.find("checkbox", "Cursor").enabled)
        self.tree.find("checkbox", "Cursor").press()
        holds_for(lambda: not read_preferences().get("cursorEnabled"), 0.2, "a dimmed switch does not turn")
        self.tree.wait("label", lambda name: "settings.json" in name and not name.startswith("Adds a hook"))
        self.assertEqual("{ broken", CLAUDE.read_text())

    def test_appearance_by_keyboard_alone(self):
        self.start()
        wait_for(self.is_active, 3)
        self.keys.type("ctrl+2")
        self.tree.wait("heading", "Appearance")
        steps = [  # how many times Tab, then which keys, and what they bring about
            (2, ["Left"], "sidebarEdge", "left"),
            (1, ["Down", "Down", "Return"], "sidebarScreen", "screen"),
            (1, ["Right", "Right"], "sidebarVisibility", "pill"),
            (1, ["Right"], "sidebarPlacement", "detached"),
            (1, ["Left"], "sidebarMaterial", "solid"),
            (1, ["space", "g", "r", "a", "Return"], "sidebarTint", "graphite"),
            (1, ["Right"], "dockIconSize", "large"),
            (1, ["space"], "dockMagnification", True),
            (1, ["End"], "dockMagnificationScale", 2.0),
            (1, ["space"], "dockLiveTiles", False),
            (1, ["space"], "dockRunningIndicators", False),
            (1, ["Right"], "tileStyle", "monochrome"),
            (1, ["Right"], "levelBars", "accent"),
        ]
        for tabs, keys, key, value in steps:
            with self.subTest(key):
                for each in ["Tab"] * tabs + keys:
                    self.keys.type(each)
                self.expect(key, value)
        self.keys.type("ctrl+f")
        for letter in "claude":
            self.keys.type(letter)
        self.tree.wait("heading", "Agents")
        self.keys.type("Escape")
        wait_for(lambda: len(self.tree.find_all("page tab")) == 7, 3, "Escape empties the search first")
        self.keys.type("ctrl+q")
        self.assertEqual(0, self.kestro.wait_end())

    def test_it_comes_back_in_its_size(self):
        self.start(settingsWidth=700, settingsHeight=500)
        frames = lambda: [(frame.width, frame.height) for _, frame in windows(self.kestro.pid)]  # noqa: E731
        wait_for(lambda: (700, 500) in frames(), 3, lambda: str(frames()))
        subprocess.run(["xdotool", "search", "--name", "Kestro Settings", "windowsize", "900", "640"], check=True)
        self.expect("settingsWidth", 900)
        self.keys.type("ctrl+w")
        self.tree.wait_gone("page tab", "General")
        self.open()
        wait_for(lambda: (900, 640) in frames(), 3, lambda: str(frames()))
        self.assertEqual(640, json.loads(PREFERENCES.read_text())["settingsHeight"])


if __name__ == "__main__":
    unittest.main()
