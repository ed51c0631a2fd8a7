"""From start to end: one of it, whole files whatever ends it, and plain words where it cannot run."""

import contextlib
import ctypes
import json
import os
import signal
import socket
import subprocess
import threading
import time
import unittest

import dbus

from harness import (
    HOME, PREFERENCES, DesktopTest, Kestro, read_preferences, wait_for, windows, write_preferences,
)

CLAUDE = HOME / ".claude" / "settings.json"


def hooked():
    return CLAUDE.exists() and "# kestro-hook" in CLAUDE.read_text()


class DeadMount:
    """A file system whose server never answers: whoever looks into `folder` hangs until it is killed. Needs root."""

    def __init__(self, folder):
        folder.mkdir(parents=True, exist_ok=True)
        self._folder = bytes(folder)
        self._server = os.open("/dev/fuse", os.O_RDWR)
        self._libc = ctypes.CDLL(None, use_errno=True)
        options = f"fd={self._server},rootmode=40000,user_id=0,group_id=0".encode()
        if self._libc.mount(b"dead", self._folder, b"fuse", 0, options) != 0:
            raise OSError(ctypes.get_errno(), "mount")

    def end(self):
        detach = 2
        self._libc.umount2(self._folder, detach)
        os.close(self._server)


def relay(server):
    """Lets a mute bus answer: what comes to `server` is the session bus's from now on."""
    def pump(source, sink):
        with contextlib.suppress(OSError):
            while data := source.recv(65536):
                sink.sendall(data)
            sink.shutdown(socket.SHUT_WR)

    with contextlib.suppress(OSError):
        while True:
            client, _ = server.accept()
            bus = socket.socket(socket.AF_UNIX)
            bus.connect(os.environ["DBUS_SESSION_BUS_ADDRESS"].removeprefix("unix:path="))
            for ends in [(client, bus), (bus, client)]:
                threading.Thread(target=pump, args=ends, daemon=True).start()


class Test(DesktopTest):
    def mute_bus(self):
        """A bus that accepts and never answers: its socket and its address."""
        path = f"{os.environ['DESK_FOLDER']}/mute.bus"
        server = socket.socket(socket.AF_UNIX)
        self.addCleanup(server.close)
        server.bind(path)
        server.listen(64)
        return server, f"unix:path={path}"

    def dead_mount(self, folder):
        mount = DeadMount(folder)
        self.addCleanup(mount.end)

    def expect_end_in_time(self, kestro, code):
        asked = time.monotonic()
        kestro.process.send_signal(signal.SIGTERM)
        self.assertEqual(code, kestro.wait_end(), kestro.log())
        self.assertLess(time.monotonic() - asked, 2)

    def test_a_queue_in_a_dead_mount_does_not_hold_up_the_end(self):
        self.dead_mount(HOME / ".codex/sessions")
        kestro = self.using(Kestro({"limitsEnabled": True, "onlyOurs": "kept"}))
        kestro.tree.wait("button", "AI")
        self.expect_end_in_time(kestro, 0)
        self.assertIn("launcherItems", read_preferences())

    def test_preferences_in_a_dead_mount_hold_up_neither_the_dock_nor_the_end(self):
        kestro = self.using(Kestro({}))
        wait_for(lambda: "launcherItems" in read_preferences())
        self.dead_mount(PREFERENCES.parent)
        subprocess.run([os.environ["KESTRO"]], check=True, timeout=5)
        kestro.tree.wait("page tab", "Appearance").press()
        kestro.tree.wait("checkbox", "Magnification").press()
        wait_for(lambda: "checked" in kestro.tree.find("checkbox", "Magnification").states)
        kestro.tree.wait("page tab", "General").press()
        kestro.tree.wait("heading", "General")
        self.expect_end_in_time(kestro, 1)
        self.assertIn("not everything could be saved", kestro.log())

    def test_a_mute_bus_does_not_hold_up_the_first_picture(self):
        _, mute = self.mute_bus()
        for variables in [("DBUS_SYSTEM_BUS_ADDRESS",), ("DBUS_SESSION_BUS_ADDRESS", "DBUS_SYSTEM_BUS_ADDRESS")]:
            with self.subTest(variables):
                began = time.monotonic()
                kestro = Kestro({}, environment=dict.fromkeys(variables, mute)).start()
                self.addCleanup(kestro.process.kill)
                wait_for(lambda kestro=kestro: windows(kestro.pid))
                self.assertLess(time.monotonic() - began, 3)
                if len(variables) == 1:
                    kestro.tree.wait("button", "Stats")
                self.expect_end_in_time(kestro, 0)

    def test_a_bus_that_answers_late_is_used_then(self):
        server, mute = self.mute_bus()
        kestro = Kestro({}, environment={"DBUS_SESSION_BUS_ADDRESS": mute}).start()
        self.addCleanup(kestro.process.kill)
        wait_for(lambda: windows(kestro.pid))
        threading.Thread(target=relay, args=(server,), daemon=True).start()
        bus = dbus.bus.BusConnection(os.environ["DBUS_SESSION_BUS_ADDRESS"])
        wait_for(lambda: bus.name_has_owner(f"org.kde.StatusNotifierItem-{kestro.pid}-1"))
        self.expect_end_in_time(kestro, 0)

    def test_a_mute_accessibility_service_does_not_either(self):
        bus = dbus.bus.BusConnection(os.environ["DBUS_SESSION_BUS_ADDRESS"])
        self.addCleanup(bus.close)
        for name in ["org.a11y.Bus", "org.freedesktop.portal.Desktop", "org.kde.StatusNotifierWatcher"]:
            bus.request_name(name)  # and nobody reads what is asked under it
        began = time.monotonic()
        kestro = Kestro({}, environment={"QT_LINUX_ACCESSIBILITY_ALWAYS_ON": None}).start()
        self.addCleanup(kestro.process.kill)
        wait_for(lambda: windows(kestro.pid))
        self.assertLess(time.monotonic() - began, 3)
        self.assertIn("accessibility", kestro.log())
        self.expect_end_in_time(kestro, 0)

    def test_a_setting_that_could_not_be_saved_is_told_until_it_is(self):
        PREFERENCES.mkdir(parents=True)  # in the file's place, which binds root too
        kestro = self.using(Kestro())
        subprocess.run([os.environ["KESTRO"]], check=True, timeout=5)
        def told(name):
            return name.startswith("Your changes aren't saved yet. ")
        self.assertTrue(kestro.tree.wait("label", told).name.endswith("it isn't an ordinary file."))
        PREFERENCES.rmdir()
        kestro.tree.wait_gone("label", told)
        self.assertIn("launcherItems", read_preferences())

    def test_without_its_home_folder_a_second_start_finds_the_first(self):
        first = self.using(Kestro({}))
        library = HOME / "Library"
        library.rename(HOME / "Away")
        library.write_text("in the way")
        self.assertEqual(0, Kestro().start().wait_end())
        first.tree.wait("page tab", "General")

    def test_a_home_that_is_no_whole_path_is_refused(self):
        self.addCleanup(os.chdir, os.getcwd())
        os.chdir(HOME)
        for home in ["", ".", "home/u", None]:
            with self.subTest(home):
                kestro = Kestro(environment={"HOME": home}).start()
                self.assertEqual(1, kestro.wait_end())
                self.assertEqual(1, len(kestro.log().splitlines()), kestro.log())
                kestro._log.unlink()
        self.assertFalse((HOME / "Library").exists() or (HOME / "home").exists())

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
