#!/usr/bin/env bash
# Makes docs/pictures from a real run: three agents report through the hooks, and the AI tile's card is open.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
./run --build-only
KESTRO=$PWD/build/release/kestro PYTHONPATH=Tests/Desktop DESK_PICTURES=$PWD/build/pictures GEOM=1280x800 \
    DESK_BACKGROUND='#2a4a63' Tests/Desktop/desk /usr/bin/python3 -B -W ignore - <<'PYTHON'
import json
import subprocess

from harness import HOME, Kestro, Pointer, hook_input, picture, run_as_agent, wait_for

CLAUDE, CODEX = HOME / ".claude" / "settings.json", HOME / ".codex" / "hooks.json"


def tell(path, event, session, folder):
    command = json.loads(path.read_text())["hooks"][event][0]["hooks"][0]["command"]
    run_as_agent(command, json.dumps(hook_input(event, session, f"/home/u/{folder}")))


with Kestro({"agentsEnabled": True, "dockMagnification": True}) as kestro:
    wait_for(lambda: CLAUDE.exists() and CODEX.exists())
    tell(CLAUDE, "PermissionRequest", "1", "kestro")
    tell(CODEX, "UserPromptSubmit", "2", "tide-tables")
    tell(CLAUDE, "Stop", "3", "field-notes")
    pointer = Pointer()
    pointer.glide(*kestro.tree.wait("button", "AI").frame.middle)
    kestro.tree.wait(name="field-notes, Done, now")
    whole = previous = None
    while previous is None or previous != whole:  # until nothing fades or grows any more
        previous, whole = whole, picture("dock").read_bytes()
    subprocess.run(["convert", "build/pictures/dock.png", "-crop", "640x400+640+200", "+repage", "-strip",
                    "docs/pictures/dock.png"], check=True)
PYTHON
echo "docs/pictures/dock.png"
