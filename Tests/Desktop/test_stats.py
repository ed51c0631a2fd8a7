"""The readings on the card and in the window, an application that is quit there, and the print-out."""

import os
import re
import subprocess
import unittest

from harness import DesktopTest, Kestro, wait_for


class Test(DesktopTest):
    def start(self):
        self.kestro = self.using(Kestro({}))
        self.tree = self.kestro.tree

    def open_window(self):
        self.pointer.glide(*self.tree.wait("button", "Stats").frame.middle)
        self.pointer.click()
        self.tree.wait("frame", "Stats")
        self.tree.wait("label", lambda name: re.match(r"Total \d+%", name), 10)

    def scroll_to(self, role, name):
        self.pointer.glide(*self.tree.find("heading", "Memory").frame.middle)

        def reached():
            self.pointer.click(button=5)
            found = self.tree.find_all(role, name)
            return found and found[0].frame.bottom < self.tree.find("frame", "Stats").frame.bottom
        wait_for(reached, 10, lambda: f"{name} in view:\n{self.tree}")

    def test_the_card_shows_readings_and_busy_applications(self):
        self.start()
        self.pointer.glide(*self.tree.wait("button", "Stats").frame.middle)
        self.tree.wait("label", lambda name: re.match(r"CPU \d+%", name))
        self.tree.wait("label", lambda name: re.match(r"MEMORY [\d.]+ / \d+ GB", name))
        self.tree.wait("label", lambda name: re.match(r"TOP APPS \S+ \d+%", name), 10)

    def test_the_window_lists_sections_and_pauses(self):
        self.start()
        self.open_window()
        for title in ["CPU", "Memory", "Disk", "Network", "Fans", "Apps"]:
            self.assertTrue(self.tree.find_all("heading", title, showing=False), f"{title}:\n{self.tree}")
        self.assertEqual("From /proc/stat",
                         self.tree.find("label", lambda name: name.startswith("Total ")).description)
        self.tree.find("button", "Pause").press()
        self.tree.wait("button", "Resume").press()
        self.tree.wait("button", "Pause")

    def test_a_program_is_quit_from_the_list(self):
        tool = os.path.join(os.environ["HOME"], "busytool")
        subprocess.run(["cp", "/bin/sleep", tool], check=True)
        program = subprocess.Popen([tool, "600"])
        self.addCleanup(program.wait)
        self.addCleanup(program.kill)
        self.start()
        self.open_window()
        self.scroll_to("text", "Search apps")
        self.pointer.click(*self.tree.find("text", "Search apps").frame.middle)
        subprocess.run(["xdotool", "type", "busytool"], check=True)
        self.tree.wait("button", "What can be done with busytool").press()
        self.tree.wait("menuitem", "Quit").press()
        self.tree.wait("label", "busytool may ask to save first.")
        self.tree.wait("button", "Quit").press()
        wait_for(lambda: program.poll() is not None)

    def test_the_readings_are_printed(self):
        out = subprocess.run([os.environ["KESTRO"]], env={**os.environ, "KESTRO_PRINT_STATS": "1"},
                             capture_output=True, text=True, timeout=30, check=True).stdout.splitlines()
        self.assertEqual(["cpu", "memory", "gpu", "disk", "network", "battery", "temperatures", "fans", "apps"],
                         [line.split()[0] for line in out])
        self.assertRegex(out[0], r"^cpu \d+% · \d+ cores · load [\d.]+ [\d.]+ [\d.]+$")
        self.assertRegex(out[8], r"^apps \d+ · .+%")


if __name__ == "__main__":
    unittest.main()
