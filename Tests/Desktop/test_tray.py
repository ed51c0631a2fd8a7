"""The icon in the desktop's panel, whatever kind of panel it is and whenever it comes."""

import os
import unittest

import dbus
import dbus.bus
import dbus.service
from dbus.mainloop.glib import DBusGMainLoop
from gi.repository import GLib
from Xlib import X, Xatom, display
from Xlib.protocol import event

from harness import DesktopTest, Kestro, holds_for, wait_for, windows

WATCHER = "org.kde.StatusNotifierWatcher"
SIDE = 24
BACKGROUND = 0x3060A0


class PlainTray:
    """A panel of the older kind: it takes windows in. It shows one."""

    def __init__(self, x, y):
        self._display = display.Display()
        screen = self._display.screen()
        self._opcode = self._display.intern_atom("_NET_SYSTEM_TRAY_OPCODE")
        self.window = screen.root.create_window(
            x, y, SIDE, SIDE, 0, screen.root_depth, background_pixel=BACKGROUND, override_redirect=True,
            event_mask=X.SubstructureNotifyMask)
        self.window.map()
        selection = self._display.intern_atom("_NET_SYSTEM_TRAY_S0")
        self.window.set_selection_owner(selection, X.CurrentTime)
        self._display.flush()
        manager = event.ClientMessage(window=screen.root, client_type=self._display.intern_atom("MANAGER"),
                                      data=(32, [X.CurrentTime, selection, self.window.id, 0, 0]))
        screen.root.send_event(manager, event_mask=X.StructureNotifyMask)
        self._display.sync()
        self.icon = None

    def has_icon(self):
        """Takes in who asks for it, as long as nobody is there."""
        while self._display.pending_events():
            happened = self._display.next_event()
            if happened.type == X.ClientMessage and happened.client_type == self._opcode:
                self.icon = self._display.create_resource_object("window", happened.data[1][2])
                self.icon.change_save_set(X.SetModeInsert)
                self.icon.reparent(self.window, 0, 0)
                self.icon.configure(width=SIDE, height=SIDE)
                self.icon.map()
                self._display.sync()
            elif happened.type in (X.DestroyNotify, X.ReparentNotify) and self.icon and \
                    happened.window.id == self.icon.id and getattr(happened, "parent", None) != self.window:
                self.icon = None
        return self.icon is not None

    def name(self):
        return self.icon.get_full_text_property(Xatom.WM_NAME)

    def tones(self):
        """The colours that show, by how many pixels."""
        shown = self.window.get_image(0, 0, SIDE, SIDE, X.ZPixmap, 0xFFFFFFFF).data
        found = {}
        for at in range(0, len(shown), 4):
            tone = int.from_bytes(shown[at:at + 3], "little")
            found[tone] = found.get(tone, 0) + 1
        return found

    def is_painted(self):
        tones = self.tones()
        return tones.get(BACKGROUND, 0) > SIDE * SIDE // 4 and SIDE * SIDE - tones[BACKGROUND] > SIDE * 2

    def close(self):
        self._display.close()


class Watcher(dbus.service.Object):
    """The list of items that newer panels read, with a panel that shows them."""

    def __init__(self):
        # Not SessionBus(), which ends the program with its connection.
        self._bus = dbus.bus.BusConnection(os.environ["DBUS_SESSION_BUS_ADDRESS"], mainloop=DBusGMainLoop())
        self.items = []
        super().__init__(dbus.service.BusName(WATCHER, self._bus), "/StatusNotifierWatcher")

    @dbus.service.method(WATCHER, in_signature="s")
    def RegisterStatusNotifierItem(self, item):
        self.items.append(str(item))

    @dbus.service.method(dbus.PROPERTIES_IFACE, in_signature="ss", out_signature="v")
    def Get(self, _interface, _name):
        return True

    def has_item(self):
        while GLib.MainContext.default().iteration(False):
            pass
        return bool(self.items)

    def ask(self, path, interface, method, *arguments):
        return dbus.Interface(self._bus.get_object(self.items[0], path, introspect=False), interface).get_dbus_method(
            method)(*arguments)

    def labels(self):
        _, (_, _, entries) = self.ask("/MenuBar", "com.canonical.dbusmenu", "GetLayout", 0, -1,
                                      dbus.Array(signature="s"))
        return {str(values["label"]): int(number) for number, values, _ in entries if "label" in values}

    def click(self, number):
        self.ask("/MenuBar", "com.canonical.dbusmenu", "Event", number, "clicked", dbus.String("", variant_level=1),
                 dbus.UInt32(0))

    def close(self):
        self._bus.close()


class Test(DesktopTest):
    def plain_tray(self, x=600, y=400):
        tray = PlainTray(x, y)
        self.addCleanup(tray.close)
        return tray

    def watcher(self):
        watcher = Watcher()
        self.addCleanup(watcher.close)
        return watcher

    def test_a_plain_tray_has_the_icon_and_its_menu(self):
        tray = self.plain_tray()
        kestro = self.using(Kestro({}))
        wait_for(tray.has_icon)
        self.assertEqual("Kestro", tray.name())
        wait_for(tray.is_painted, what=tray.tones)
        for button in [1, 3]:
            with self.subTest(button):
                before = len(windows(kestro.pid))
                self.pointer.click(600 + SIDE // 2, 400 + SIDE // 2, button)
                wait_for(lambda: kestro.tree.shows("menuitem", "Quit Kestro"))
                self.assertGreater(len(windows(kestro.pid)), before)
                self.keys.type("Escape")
                wait_for(lambda: not kestro.tree.shows("menuitem", "Quit Kestro"))

    def test_a_plain_tray_that_comes_late_or_again_has_it_too(self):
        kestro = self.using(Kestro({}))
        for x in [300, 600]:
            tray = PlainTray(x, 400)
            wait_for(tray.has_icon)
            wait_for(tray.is_painted, what=tray.tones)
            tray.close()
        self.assertIsNone(kestro.process.poll())

    def test_the_bus_comes_before_the_plain_tray(self):
        tray = self.plain_tray()
        watcher = self.watcher()
        self.using(Kestro({}))
        wait_for(watcher.has_item)
        watcher.labels()
        holds_for(lambda: not tray.has_icon(), 0.2)
        watcher.close()
        wait_for(tray.has_icon)
        late = self.watcher()
        wait_for(lambda: late.has_item() and not tray.has_icon())  # it is asked more than once, and answers here

    def test_the_menu_of_the_bus_quits(self):
        kestro = self.using(Kestro({}))
        watcher = self.watcher()
        wait_for(watcher.has_item)
        self.assertEqual([f"org.kde.StatusNotifierItem-{kestro.pid}-1"], watcher.items)
        watcher.click(watcher.labels()["Quit Kestro"])
        self.assertEqual(0, kestro.wait_end())


if __name__ == "__main__":
    unittest.main()
