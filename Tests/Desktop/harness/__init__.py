"""The desktop harness: the real program on the desktop that `desk` made, seen and driven as a user would.

Run by Debian's own Python (/usr/bin/python3), for its bindings to the accessibility bus.
"""

from .case import DesktopTest, hook_input, run_as_agent
from .program import HOME, PREFERENCES, Kestro, read_preferences, write_preferences
from .screen import DamageWatch, Keys, Pointer, monitors, picture, windows
from .tree import Tree
from .waiting import NotYet, holds_for, wait_for

__all__ = [
    "HOME", "PREFERENCES", "DamageWatch", "DesktopTest", "Kestro", "Keys", "NotYet", "Pointer", "Tree", "holds_for",
    "hook_input", "monitors", "picture", "read_preferences", "run_as_agent", "wait_for", "windows", "write_preferences",
]
