#!/usr/bin/env bash
# Makes docs/pictures from real runs: the dock with the AI tile's card open while three agents report through the hooks,
# the AI window, and every pane of the Settings window, light and dark, at scale 1 and 1.5. KESTRO=PROGRAM takes another program than
# the release build.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
if [ -z "${KESTRO:-}" ]; then
    ./run --build-only
    KESTRO=$PWD/build/release/kestro
fi
export KESTRO PYTHONPATH=Tests/Desktop DESK_PICTURES=$PWD/build/pictures DESK_BACKGROUND='#2a4a63'

# As arguments: what runs on the desktop has no standard input.
dock=$(
    cat <<'PYTHON'
import json
import subprocess
import time

from harness import HOME, Kestro, Pointer, hook_input, picture, run_as_agent, wait_for, windows

CLAUDE, CODEX = HOME / ".claude" / "settings.json", HOME / ".codex" / "hooks.json"


def tell(path, event, session, folder):
    command = json.loads(path.read_text())["hooks"][event][0]["hooks"][0]["command"]
    run_as_agent(command, json.dumps(hook_input(event, session, f"/home/u/{folder}")))


def limits(five_hours, week, percent, **names):
    """The two windows as an agent tells them, resetting in two hours and in three days."""
    ends = [time.time() + 7500, time.time() + 3.5 * 86400]
    return {key: {percent: used, "resets_at": end, "window_minutes": minutes}
            for (key, used, end, minutes) in zip(names.values(), [five_hours, week], ends, [300, 10080])}


log = HOME / ".codex" / "sessions" / "log.jsonl"
log.parent.mkdir(parents=True)
codex = {"rate_limits": limits(64, 22, "used_percent", short="primary", long="secondary")}
log.write_text(json.dumps({"payload": codex}) + "\n")
with Kestro({"agentsEnabled": True, "limitsEnabled": True, "dockMagnification": True}) as kestro:
    wait_for(lambda: CLAUDE.exists() and CODEX.exists())
    status = {"rate_limits": limits(28, 41, "used_percentage", short="five_hour", long="seven_day")}
    run_as_agent(json.loads(CLAUDE.read_text())["statusLine"]["command"], json.dumps(status))
    tell(CLAUDE, "PermissionRequest", "1", "kestro")
    tell(CODEX, "UserPromptSubmit", "2", "tide-tables")
    tell(CLAUDE, "Stop", "3", "field-notes")
    pointer = Pointer()
    pointer.glide(*kestro.tree.wait("button", "AI").frame.middle)
    kestro.tree.wait(name="field-notes, Done, now")
    kestro.tree.wait("list item", lambda name: name.startswith("Claude, 5h"))

    def keep(name, crop):
        whole = previous = None
        while previous is None or previous != whole:  # until nothing fades or grows any more
            previous, whole = whole, picture(name).read_bytes()
        subprocess.run(["convert", f"build/pictures/{name}.png", "-crop", crop, "+repage", "-strip",
                        f"docs/pictures/{name}.png"], check=True)
        print(f"docs/pictures/{name}.png")

    keep("dock", "640x400+640+200")
    pointer.click()
    kestro.tree.wait("heading", "Usage limits")
    pointer.glide(60, 60)
    frame = max((frame for _, frame in windows(kestro.pid)), key=lambda each: each.width)
    keep("ai-window", f"{frame.width}x{frame.height}+{frame.x}+{frame.y}")
PYTHON
)
GEOM=1280x800 Tests/Desktop/desk /usr/bin/python3 -B -W ignore -c "$dock"

settings=$(
    cat <<'PYTHON'
import os
import subprocess
import threading

import dbus
import dbus.service
from dbus.mainloop.glib import DBusGMainLoop
from gi.repository import GLib
from harness import Kestro, picture, windows

SCHEME, SCALE = os.environ["SCHEME"], os.environ["QT_SCALE_FACTOR"]
SETTINGS = "org.freedesktop.portal.Settings"


class Portal(dbus.service.Object):
    """Says how the desktop looks, as a desktop's portal does."""

    @dbus.service.method(SETTINGS, in_signature="as", out_signature="a{sa{sv}}")
    def ReadAll(self, groups):
        look = {"color-scheme": dbus.UInt32(1 if SCHEME == "dark" else 2)}
        return {"org.freedesktop.appearance": dbus.Dictionary(look, signature="sv")}


DBusGMainLoop(set_as_default=True)
bus = dbus.SessionBus()
portal = Portal(bus, "/org/freedesktop/portal/desktop")
name = dbus.service.BusName("org.freedesktop.portal.Desktop", bus)
threading.Thread(target=GLib.MainLoop().run, daemon=True).start()


def still(of):
    """A picture of the desktop once nothing in it moves any more."""
    last = None
    while (now := picture(of).read_bytes()) != last:
        last = now


with Kestro({"agentsEnabled": True, "dockMagnification": True, "sidebarTint": "blue"}) as kestro:
    subprocess.run([os.environ["KESTRO"]], check=True)
    kestro.tree.wait("page tab", "General")
    panes = [tab.name for tab in kestro.tree.find_all("page tab")]
    for pane in panes:
        kestro.tree.find("page tab", pane).press()
        kestro.tree.wait("heading", pane)
        of = f"settings-{pane.lower()}-{SCHEME}" + ("" if SCALE == "1" else f"@{SCALE}x")
        still(of)
        frame = max((frame for _, frame in windows(kestro.pid)), key=lambda each: each.width)
        subprocess.run(["convert", f"build/pictures/{of}.png", "-crop",
                        f"{frame.width}x{frame.height}+{frame.x}+{frame.y}", "+repage", "-strip", "+dither", "-colors", "128",
                        f"png8:docs/pictures/{of}.png"], check=True)
        print(f"docs/pictures/{of}.png")
PYTHON
)
for scheme in dark light; do
    for scale in 1 1.5; do
        SCHEME=$scheme QT_SCALE_FACTOR=$scale GEOM=1600x1100 Tests/Desktop/desk \
            /usr/bin/python3 -B -W ignore -c "$settings"
    done
done
