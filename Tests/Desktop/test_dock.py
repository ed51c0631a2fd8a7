"""The dock: where it stands, how it hides, what a tile's menu does."""

import base64
import json
import unittest

from harness import DesktopTest, Kestro, holds_for, monitors, wait_for, write_preferences

WIDTH, HEIGHT = 1920, 1080


def near(frame, edge, width=WIDTH, height=HEIGHT, left=0):
    """Whether a tile stands against an edge of the screen that begins at `left`."""
    return {
        "right": left + width - 80 < frame.x and frame.right <= left + width,
        "left": left <= frame.x and frame.right < left + 80,
        "bottom": height - 80 < frame.y and frame.bottom <= height,
    }[edge]


class Test(DesktopTest):
    def start(self, **preferences):
        self.kestro = self.using(Kestro(preferences))
        self.tree = self.kestro.tree

    def expect_at(self, edge, **screen):
        wait_for(lambda: near(self.tree.find("button", "Stats").frame, edge, **screen), 3,
                 lambda: f"Stats at the {edge}:\n{self.tree}")

    def open_menu(self, name):
        self.pointer.click(*self.tree.find("button", name).frame.middle, button=3)
        return wait_for(lambda: self.tree.find_all("menuitem"), 2, lambda: f"a menu in\n{self.tree}")

    def test_the_default_layout_is_stats_at_the_right_edge(self):
        self.start()
        self.assertEqual(["Stats"], [tile.name for tile in self.tree.find_all("button")])
        frame = self.tree.find("button", "Stats").frame
        self.expect_at("right")
        self.assertAlmostEqual(HEIGHT / 2, frame.middle[1], delta=60)

    def test_the_edge_follows_the_preference_file(self):
        self.start()
        for edge in ["left", "bottom", "nonsense", "left"]:
            write_preferences(sidebarEdge=edge)
            self.expect_at(edge if edge != "nonsense" else "right")
        write_preferences(sidebarEdge=None)
        self.expect_at("right")

    def test_it_hides_and_the_edge_reveals_it(self):
        write_preferences(sidebarVisibility="autoHide")
        self.tree = self.using(Kestro(), shows=False).tree
        for edge, spot in [("right", (WIDTH - 1, HEIGHT // 2)), ("left", (0, HEIGHT // 2)),
                           ("bottom", (WIDTH // 2, HEIGHT - 1))]:
            with self.subTest(edge):
                write_preferences(sidebarEdge=edge)
                self.tree.wait_gone("button", "Stats", limit=3)
                self.pointer.glide(*spot)
                self.expect_at(edge)
                self.pointer.glide(600, 200)
                self.tree.wait_gone("button", "Stats", limit=2)

    def test_it_stands_on_the_named_screen(self):
        monitors(A="1280x1080+0+0", B="640x480+1280+0")
        self.start(sidebarScreen="B")
        self.expect_at("right", left=1280, width=640)
        write_preferences(sidebarScreen="A")
        self.expect_at("right", width=1280)
        write_preferences(sidebarScreen="gone")
        self.expect_at("right", width=1280)

    def test_a_lost_screen_moves_it_to_the_first(self):
        monitors(A="1280x1080+0+0", B="640x480+1280+0")
        self.start(sidebarScreen="B")
        self.expect_at("right", left=1280, width=640)
        monitors(A="1920x1080+0+0")
        self.expect_at("right", width=1920)
        monitors(A="1280x1080+0+0", B="640x480+1280+0")
        self.expect_at("right", left=1280, width=640)

    def test_a_press_on_the_bus_opens_what_the_tile_stands_for(self):
        timer = [{"id": "6E2A7C64-6B5C-4C39-9F0E-0C6C5E0B7A01", "kind": {"widget": {"kind": "timer"}}}]
        layout = base64.b64encode(json.dumps(timer).encode()).decode()
        self.start(**{"launcherItems": {"$data": layout}, "launcherItems.migrated": True})
        self.assertFalse(self.tree.shows("heading", "Timer"))
        self.tree.find("button", "Timer").press()
        self.tree.wait("heading", "Timer", limit=2)
        self.tree.find("button", "Stats").press()
        self.tree.wait("frame", "Stats", limit=2)
        self.tree.wait(name=lambda name: name.startswith("Used "), limit=2)

    def test_the_menu_of_the_only_tile(self):
        self.start()
        self.assertEqual(
            ["Assign Shortcut…", "Move Up", "Move Down", "Add Divider After", "Remove (turns Stats off)"],
            [row.name for row in self.open_menu("Stats")])
        rows = {row.name: row for row in self.tree.find_all("menuitem")}
        self.assertFalse(rows["Move Up"].enabled)
        self.assertFalse(rows["Move Down"].enabled)
        self.assertTrue(rows["Add Divider After"].enabled)
        self.keys.type("Escape")
        wait_for(lambda: not self.tree.find_all("menuitem"), 2, "Escape closes the menu")

    def test_the_menu_edits_the_layout(self):
        self.start(agentsEnabled=True)
        self.tree.wait("button", "AI")
        self.choose("AI", "Move Up")
        self.expect_order("AI", "Stats")
        self.choose("AI", "Add Divider After")
        self.expect_order("AI", "Divider", "Stats")
        self.choose("AI", "Remove (turns AI off)")
        wait_for(lambda: not self.tree.shows("button", "AI"), 3)

    def choose(self, tile, row):
        self.open_menu(tile)
        self.pointer.click(*self.tree.find("menuitem", row).frame.middle)
        wait_for(lambda: not self.tree.find_all("menuitem"), 2, "a chosen row closes the menu")

    def expect_order(self, *names):
        def order():
            nodes = [node for node in self.tree.find_all() if node.name in names and node.role in ("button", "separator")]
            return [node.name for node in sorted(nodes, key=lambda node: node.frame.y)]
        wait_for(lambda: order() == list(names), 3, lambda: f"{names} in\n{self.tree}")

    def test_the_panel_lets_the_desktop_have_its_clicks(self):
        """Beside the dock, where its window is empty, what lies below gets the pointer."""
        self.start()
        frame = self.tree.find("button", "Stats").frame
        self.pointer.click(frame.middle[0], 60, button=3)
        holds_for(lambda: not self.tree.find_all("menuitem"), 0.3)


if __name__ == "__main__":
    unittest.main()
