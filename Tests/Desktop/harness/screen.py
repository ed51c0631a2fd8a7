"""The X server: pointer and keys as devices send them, windows, monitors, pictures, damage."""

import os
import select
import subprocess
import time
from pathlib import Path

from Xlib import X, XK, display, error
from Xlib.ext import damage, xtest

from .tree import Frame

PICTURES = Path(os.environ.get("DESK_PICTURES", Path(__file__).resolve().parents[3] / "build" / "pictures"))


class Pointer:
    """Moves and presses through XTEST: a mere warp would send no raw motion, which is what the program listens to."""

    def __init__(self):
        self._display = display.Display()

    def move(self, x, y):
        xtest.fake_input(self._display, X.MotionNotify, x=int(x), y=int(y))
        self._display.sync()

    def glide(self, x, y, steps=8):
        """There in some steps, as a hand would: hovering is entering, not being there."""
        here = self._display.screen().root.query_pointer()
        for step in range(1, steps + 1):
            self.move(here.root_x + (x - here.root_x) * step / steps, here.root_y + (y - here.root_y) * step / steps)

    def press(self, button=1):
        xtest.fake_input(self._display, X.ButtonPress, button)
        self._display.sync()

    def release(self, button=1):
        xtest.fake_input(self._display, X.ButtonRelease, button)
        self._display.sync()

    def click(self, x=None, y=None, button=1):
        if x is not None:
            self.glide(x, y)
        self.press(button)
        self.release(button)


class Keys:
    """keys.type("ctrl+a"), by X keysym names."""

    MODIFIERS = {"ctrl": "Control_L", "shift": "Shift_L", "alt": "Alt_L", "super": "Super_L"}

    def __init__(self):
        self._display = display.Display()

    def type(self, combination):
        codes = [self.code(self.MODIFIERS.get(part, part)) for part in combination.split("+")]
        for code in codes:
            xtest.fake_input(self._display, X.KeyPress, code)
        for code in reversed(codes):
            xtest.fake_input(self._display, X.KeyRelease, code)
        self._display.sync()

    def code(self, name):
        """The key that gives this keysym in the layout of the moment."""
        code = self._display.keysym_to_keycode(XK.string_to_keysym(name))
        if not code:
            raise ValueError(f"no key gives {name}")
        return code


def windows(pid):
    """The mapped top-level windows of a process, as (id, frame), bottom first."""
    connection = display.Display()
    try:
        root = connection.screen().root
        owner = connection.intern_atom("_NET_WM_PID")
        found = []

        def look(window, depth):
            try:
                prop = window.get_full_property(owner, X.AnyPropertyType)
                if prop and prop.value[0] == pid:
                    if window.get_attributes().map_state == X.IsViewable:
                        size, place = window.get_geometry(), window.translate_coords(root, 0, 0)
                        found.append((window.id, Frame(-place.x, -place.y, size.width, size.height)))
                elif depth < 2:  # a managed window stands in the frame of its manager
                    for child in window.query_tree().children:
                        look(child, depth + 1)
            except (error.BadWindow, error.BadDrawable):
                pass  # closed between two looks

        look(root, 0)
        return found
    finally:
        connection.close()


def monitors(**places):
    """Makes these the monitors, e.g. monitors(A="1920x1080+0+0", B="1280x1024+1920+0"); the first is primary."""
    listed = subprocess.run(["xrandr", "--listmonitors"], check=True, capture_output=True, text=True).stdout
    for line in listed.splitlines()[1:]:
        subprocess.run(["xrandr", "--delmonitor", line.split()[1].strip("+*")], check=False, capture_output=True)
    output = "screen"
    for name, place in places.items():
        size, x, y = place.split("+")
        width, height = (int(part) for part in size.split("x"))
        geometry = f"{width}/{width * 254 // 960}x{height}/{height * 254 // 960}+{x}+{y}"
        subprocess.run(["xrandr", "--setmonitor", name, geometry, output], check=True, capture_output=True)
        output = "none"


def picture(name):
    """A picture of the whole desktop as the compositor shows it; its path."""
    PICTURES.mkdir(parents=True, exist_ok=True)
    path = PICTURES / f"{name}.png"
    subprocess.run(["import", "-window", "root", str(path)], check=True)
    return path


class DamageWatch:
    """Notes when a window is next painted."""

    def __init__(self, window):
        self._display = display.Display()
        self._display.damage_query_version()
        self._damage = self._display.create_resource_object("window", window).damage_create(damage.DamageReportRawRectangles)
        self._display.sync()

    def forget(self):
        """Drops what was painted until now."""
        self._display.sync()
        while self._display.pending_events():
            self._display.next_event()

    def next(self, limit=2.0):
        """The moment (time.perf_counter) at which the next paint was heard of, or None within the limit."""
        end = time.perf_counter() + limit
        while not self._display.pending_events():
            ready, _, _ = select.select([self._display.fileno()], [], [], max(0, end - time.perf_counter()))
            if not ready:
                return None
        moment = time.perf_counter()
        self._display.next_event()
        return moment
