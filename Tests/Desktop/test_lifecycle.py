"""From start to end: one of it, whole files whatever ends it, and plain words where it cannot run."""

import json
import os
import signal
import unittest

from harness import HOME, PREFERENCES, DesktopTest, Kestro, read_preferences, wait_for, write_preferences

CLAUDE = HOME / ".claude" / "settings.json"


def hooked():
    return CLAUDE.exists() and "# kestro-hook" in CLAUDE.read_text()


class Test(DesktopTest):
    def test_a_second_start_leaves_the_first(self):
        first = self.using(Kestro({}))
        self.assertEqual(0, Kestro().start().wait_end())
        self.assertIsNone(first.process.poll())
        self.assertTrue(first.tree.shows("button", "Stats"))

    def test_the_lock_does_not_outlive_its_owner(self):
        first = self.using(Kestro({}))
        first.process.kill()
        first.wait_end()
        self.using(Kestro())

    def test_every_end_leaves_whole_files(self):
        for end in [signal.SIGTERM, signal.SIGINT, signal.SIGHUP]:
            with self.subTest(end.name):
                write_preferences(agentsEnabled=True, onlyOurs="kept")
                kestro = self.using(Kestro())
                kestro.process.send_signal(end)
                self.assertEqual(0, kestro.wait_end())
                self.assertEqual("kept", read_preferences()["onlyOurs"])
                self.assertEqual(0o600, PREFERENCES.stat().st_mode & 0o777)
                self.assertEqual([PREFERENCES.name], [p.name for p in PREFERENCES.parent.iterdir()])

    def test_a_lost_display_ends_it_with_its_files_whole(self):
        kestro = Kestro({"agentsEnabled": True, "onlyOurs": "kept"}).start()
        self.addCleanup(kestro.process.kill)
        kestro.wait_up()
        os.kill(int(os.environ["DESKTOP_SERVER_PID"]), signal.SIGKILL)
        code = kestro.wait_end()
        self.assertGreaterEqual(code, 0, f"ended by a signal:\n{kestro.log()}")
        values = read_preferences()
        self.assertEqual((True, "kept"), (values["agentsEnabled"], values["onlyOurs"]))
        self.assertIn("launcherItems", values)

    def test_without_a_display_it_says_so(self):
        for display in [None, ":4711"]:
            with self.subTest(display):
                kestro = Kestro(environment={"DISPLAY": display}).start()
                self.assertGreater(kestro.wait_end(), 0, "a signal or a success")
                said = kestro.log().strip().splitlines()
                self.assertEqual(1, len(said), said)
                kestro._log.unlink()

    def test_a_switch_turned_off_in_the_file_takes_the_hooks_out(self):
        CLAUDE.parent.mkdir()
        own = {"hooks": {"Stop": [{"hooks": [{"type": "command", "command": "true"}]}]}, "model": "large"}
        CLAUDE.write_text(json.dumps(own))
        kestro = self.using(Kestro({"agentsEnabled": True}))
        wait_for(hooked)
        write_preferences(agentsEnabled=False)
        wait_for(lambda: not hooked(), 3)
        self.assertEqual(own, json.loads(CLAUDE.read_text()))
        wait_for(lambda: not kestro.tree.shows("button", "AI"), 3)
        write_preferences(agentsEnabled=True)
        wait_for(hooked, 3)
        kestro.tree.wait("button", "AI")

    def test_a_switch_turned_while_it_did_not_run_has_its_tile(self):
        kestro = self.using(Kestro({}))
        self.assertFalse(kestro.tree.shows("button", "AI"))
        kestro.stop()
        write_preferences(agentsEnabled=True)
        self.using(Kestro()).tree.wait("button", "AI")

    def test_a_corrupt_preference_file_is_set_aside(self):
        PREFERENCES.parent.mkdir(parents=True)
        PREFERENCES.write_text('{"agentsEnabled": tru')
        kestro = self.using(Kestro())
        kestro.tree.wait("button", "Stats")
        aside = PREFERENCES.with_name("com.lumbra.ombrel.corrupt.json")
        self.assertEqual('{"agentsEnabled": tru', aside.read_text())
        self.assertIn("Kestro: ", kestro.log())

    def test_a_half_written_file_changes_nothing_while_it_runs(self):
        kestro = self.using(Kestro({"agentsEnabled": True}))
        kestro.tree.wait("button", "AI")
        wait_for(lambda: "launcherItems" in read_preferences())
        whole = PREFERENCES.read_text()
        PREFERENCES.write_text(whole[:40])
        self.assertTrue(kestro.tree.shows("button", "AI"))
        PREFERENCES.write_text(whole)
        write_preferences(sidebarEdge="left")
        wait_for(lambda: kestro.tree.find("button", "AI").frame.x < 80, 3)
        self.assertFalse(PREFERENCES.with_name("com.lumbra.ombrel.corrupt.json").exists())


if __name__ == "__main__":
    unittest.main()
