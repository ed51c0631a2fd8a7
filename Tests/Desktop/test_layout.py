"""The Layout pane: what stands in the dock is edited there, by the bus, by hand and by keyboard."""

import base64
import json
import os
import signal
import subprocess
import unittest
import uuid
from contextlib import contextmanager
from pathlib import Path

from harness import HOME, DesktopTest, Kestro, picture, read_preferences, wait_for

APPLICATIONS = HOME / ".local/share/applications"


def write_application(name, *more):
    """Replaces the entry as a package manager would; its path."""
    APPLICATIONS.mkdir(parents=True, exist_ok=True)
    path = APPLICATIONS / f"{name.replace(' ', '')}.desktop"
    new = path.with_suffix(".new")
    new.write_text("\n".join(["[Desktop Entry]", "Type=Application", f"Name={name}", "Exec=true", *more, ""]))
    new.rename(path)
    return str(path)


@contextmanager
def traced_files(pid):
    """The calls on files that a process makes meanwhile, one a line."""
    lines = []
    with subprocess.Popen(["strace", "-f", "-q", "-e", "trace=%file", "-e", "signal=none", "-p", str(pid)],
                          stderr=subprocess.PIPE, text=True) as tracer:
        status = Path(f"/proc/{pid}/status")
        wait_for(lambda: "TracerPid:\t0\n" not in status.read_text(), 5, "strace to attach")
        try:
            yield lines
        finally:
            tracer.send_signal(signal.SIGINT)
            lines.extend(line for line in tracer.stderr.read().splitlines() if "getcwd(" not in line)


class Test(DesktopTest):
    def start(self, **preferences):
        for name in ("Editor", "Terminal", "Text Tools"):
            write_application(name)
        self.kestro = self.using(Kestro(preferences))
        self.tree = self.kestro.tree
        subprocess.run([os.environ["KESTRO"]], check=True, timeout=5)
        self.tree.wait("page tab", "Layout").press()
        self.tree.wait("heading", "Layout")

    def press(self, name, of=None, role="button"):
        found = [node for node in self.tree.find_all(role, name) if of in (None, node.description)]
        self.assertEqual(1, len(found), f"{role} {name} ({of}) in\n{self.tree}")
        found[0].press()

    def type(self, text):
        for letter in text:
            self.keys.type({" ": "space", ".": "period"}.get(letter, letter))

    def stored(self):
        items = json.loads(base64.b64decode(read_preferences()["launcherItems"]["$data"]))
        return [next(iter(item["kind"].items())) for item in items]

    def rows(self):
        return [row.name for row in self.tree.find_all("list item")]

    def expect(self, *names):
        """In Settings, and but for the dividers in the dock."""
        wait_for(lambda: self.rows() == list(names), 5, lambda: f"{names} in\n{self.tree}")
        dock = [name for name in names if name != "Divider"]
        shown = lambda: [node.name for node in self.tree.find_all("button") if node.frame.x > 1860]  # noqa: E731
        wait_for(lambda: shown() == dock, 5, lambda: f"{dock} in the dock of\n{self.tree}")

    def test_items_are_added_moved_and_removed(self):
        self.start()
        self.expect("Stats")
        self.press("Add Widget", role="combo box")
        self.tree.wait("list item", "AI").press()
        self.expect("Stats", "AI")
        self.assertTrue(read_preferences()["agentsEnabled"])

        self.press("Add Divider")
        self.expect("Stats", "AI", "Divider")
        self.press("Move Up", "Divider")
        self.expect("Stats", "Divider", "AI")
        self.press("Move Down", "Stats")
        self.expect("Divider", "Stats", "AI")
        self.press("Remove", "Divider")
        self.expect("Stats", "AI")
        self.press("Remove (turns the feature off)", "AI")
        self.expect("Stats")
        self.assertFalse(read_preferences()["agentsEnabled"])

    def test_a_link_is_asked_for(self):
        self.start()
        self.press("Add Link…")
        self.tree.wait("dialog", "Add Link")
        self.assertFalse(self.tree.find("button", "Add").enabled)
        self.type("a b")
        self.tree.wait(None, "Enter an http or https address")
        self.assertFalse(self.tree.find("button", "Add").enabled)
        self.keys.type("ctrl+a")
        self.type("kestro.invalid")
        self.tree.wait_gone(None, "Enter an http or https address")
        self.keys.type("Tab")
        self.type(" the site ")
        self.keys.type("Return")
        self.expect("Stats", "the site")
        self.assertEqual(("link", {"title": "the site", "url": "https://kestro.invalid"}), self.stored()[1])
        self.press("Add Link…")
        self.tree.wait("dialog", "Add Link")
        self.keys.type("Escape")
        self.tree.wait_gone("dialog", "Add Link")
        self.expect("Stats", "the site")

    def test_applications_are_chosen_several_at_a_time(self):
        self.start()
        self.press("Add App…")
        self.tree.wait("checkbox", "Terminal")
        self.type("te")
        self.tree.wait_gone("checkbox", "Editor")
        self.press("Text Tools", role="checkbox")
        self.press("Terminal", role="checkbox")
        picture("layout-applications")
        self.press("Add 2 Apps")
        self.expect("Stats", "Terminal", "Text Tools")
        self.assertEqual(("app", {"path": str(APPLICATIONS / "Terminal.desktop")}), self.stored()[1])

    def test_a_row_is_dragged_by_its_handle(self):
        self.start(agentsEnabled=True)
        self.press("Add Divider")
        self.expect("Stats", "AI", "Divider")
        top = self.tree.find("list item", "Stats").frame
        last = self.tree.find("list item", "Divider").frame
        self.pointer.glide(last.x + 16, last.middle[1])
        self.pointer.press()
        self.pointer.glide(top.x + 16, top.y + 8)
        self.pointer.release()
        self.expect("Divider", "Stats", "AI")

    def test_names_are_read_when_they_change_and_not_when_the_pointer_moves(self):
        names = ["Chat", "Editor", "Files", "Mail", "Music", "Photos"]
        items = [{"id": str(uuid.uuid4()).upper(), "kind": {"app": {"path": write_application(name, "Icon=none")}}}
                 for name in names]
        kestro = self.using(Kestro({
            "dockMagnification": True, "launcherItems.migrated": True, "dockLiveTiles": False,
            "launcherItems": {"$data": base64.b64encode(json.dumps(items).encode()).decode()}}))
        self.tree = kestro.tree
        tile = lambda name: self.tree.find("button", name)  # noqa: E731
        at_rest = tile("Mail").frame

        def pass_over():
            for name in names:
                self.pointer.glide(at_rest.middle[0], tile(name).frame.middle[1])
                wait_for(lambda name=name: tile(name).frame.width > at_rest.width * 1.3, 3, f"{name} to be magnified")
            self.pointer.glide(600, 200)
            wait_for(lambda: tile("Mail").frame == at_rest, 3, "the dock to be at rest")
        pass_over()  # the first tooltip is loaded
        with traced_files(kestro.pid) as calls:
            pass_over()
        self.assertEqual([], calls)

        (APPLICATIONS / "Files.desktop").write_text("[Desktop Entry]\nType=Application\nName=Folders\nExec=true\n")
        self.tree.wait("button", "Folders")
        self.tree.wait_gone("button", "Files")

    def test_what_another_program_writes_shows(self):
        self.start()
        self.press("Add Divider")
        self.expect("Stats", "Divider")
        self.tree.wait("page tab", "Agents").press()
        self.tree.wait("checkbox", "Show Claude Code, Codex & Cursor activity").press()
        self.tree.wait("page tab", "Layout").press()
        self.expect("Stats", "Divider", "AI")


if __name__ == "__main__":
    unittest.main()
