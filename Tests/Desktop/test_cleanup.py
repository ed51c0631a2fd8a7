"""Caches are listed in the statistics window, and only what is checked and confirmed goes."""

import unittest

from harness import HOME, DesktopTest, Kestro, wait_for


class Test(DesktopTest):
    def test_one_cache_goes_and_the_others_stay(self):
        for name in ["first", "second"]:
            (HOME / ".cache" / name).mkdir(parents=True)
            (HOME / ".cache" / name / "file").write_bytes(b"x" * 300_000)
        precious = HOME / "precious"
        precious.mkdir()
        (HOME / ".cache" / "link").symlink_to(precious)
        kestro = self.using(Kestro({}))
        tree = kestro.tree
        self.pointer.glide(*tree.wait("button", "Stats").frame.middle)
        self.pointer.click()
        tree.wait("frame", "Stats")
        tree.wait("button", "Clean Up").press()
        tree.wait("dialog", "Clean Up")
        tree.wait("checkbox", "first", 10).press()
        wait_for(lambda: tree.shows("label", lambda name: name.startswith("Selected: 3")))
        wait_for(lambda: len(tree.find_all("button", "Clean Up")) > 1)
        tree.find_all("button", "Clean Up")[-1].press()
        tree.wait("label", lambda name: name.startswith("Permanently delete 3"))
        tree.find("button", "Delete").press()
        tree.wait("label", lambda name: name.startswith("Freed 3"), 10)
        self.assertFalse((HOME / ".cache" / "first").exists())
        self.assertTrue((HOME / ".cache" / "second" / "file").exists())
        self.assertTrue((HOME / ".cache" / "link").is_symlink() and precious.is_dir())
        tree.find("button", "Done").press()
        tree.wait_gone("dialog", "Clean Up")


if __name__ == "__main__":
    unittest.main()
