"""The accessibility tree of a running program, as a screen reader walks it."""

import warnings
from dataclasses import dataclass

import gi

warnings.simplefilter("ignore")
gi.require_version("Atspi", "2.0")
from gi.repository import Atspi, GLib  # noqa: E402

from .waiting import wait_for  # noqa: E402

# Newer buses say "button" where this one says "push button".
ROLES = {"push button": "button", "check box": "checkbox", "menu item": "menuitem"}
PRESSES = ("Press", "press", "click", "Click", "Toggle")


@dataclass(frozen=True)
class Frame:
    """A rectangle on the screen, in pixels, y downwards."""

    x: int
    y: int
    width: int
    height: int

    @property
    def middle(self):
        return (self.x + self.width // 2, self.y + self.height // 2)

    @property
    def right(self):
        return self.x + self.width

    @property
    def bottom(self):
        return self.y + self.height


class Node:
    """One control. It is looked up anew whenever it is asked, so keep no node across a change of the tree."""

    def __init__(self, accessible):
        self._accessible = accessible

    @property
    def name(self):
        return self._accessible.get_name() or ""

    @property
    def description(self):
        return self._accessible.get_description() or ""

    @property
    def role(self):
        role = self._accessible.get_role_name()
        return ROLES.get(role, role)

    @property
    def states(self):
        return {state.value_nick for state in self._accessible.get_state_set().get_states()}

    @property
    def showing(self):
        return "showing" in self.states

    @property
    def enabled(self):
        """Qt 6.4 calls every item enabled; ours say in their description that they are not."""
        return "enabled" in self.states and self.description != "dimmed"

    @property
    def frame(self):
        extents = self._accessible.get_extents(Atspi.CoordType.SCREEN)
        return Frame(extents.x, extents.y, extents.width, extents.height)

    def children(self):
        for index in range(self._accessible.get_child_count()):
            child = self._accessible.get_child_at_index(index)
            if child is not None:
                yield Node(child)

    def walk(self, depth=0):
        yield self, depth
        for child in self.children():
            yield from child.walk(depth + 1)

    def press(self):
        """Presses through the bus, as assistive technology does: the pointer stays where it is."""
        actions = self._accessible.get_action_iface()
        for index in range(actions.get_n_actions() if actions else 0):
            if Atspi.Action.get_action_name(actions, index) in PRESSES:
                if not Atspi.Action.do_action(actions, index):
                    raise AssertionError(f"{self} refuses to be pressed")
                return
        raise AssertionError(f"{self} cannot be pressed")

    def __str__(self):
        frame = self.frame
        notes = f" ({self.description})" if self.description else ""
        hidden = "" if self.showing else " hidden"
        return f'{self.role} "{self.name}"{notes} {frame.x},{frame.y} {frame.width}x{frame.height}{hidden}'


class Tree:
    """The tree of the application called `name`."""

    def __init__(self, name="Kestro", pid=None):
        self._name, self._pid = name, pid

    def root(self):
        context = GLib.MainContext.default()
        while context.pending():
            context.iteration(False)
        desktop = Atspi.get_desktop(0)
        for index in range(desktop.get_child_count()):
            child = desktop.get_child_at_index(index)
            try:
                if child and child.get_name() == self._name and self._pid in (None, child.get_process_id()):
                    # The binding's cache is filled by events that a test does not pump; ask the program itself.
                    child.set_cache_mask(Atspi.Cache.NONE)
                    return Node(child)
            except GLib.Error:
                continue  # it went while we looked
        raise LookupError(f"no application {self._name} on the accessibility bus")

    def nodes(self):
        try:
            return [node for node, _ in self.root().walk()]
        except GLib.Error as error:
            raise LookupError(str(error)) from error

    def find_all(self, role=None, name=None, showing=True):
        """Every control of that role and name (a string, or a test of one) that shows."""
        matches = name if callable(name) else lambda own: name is None or own == name
        found = []
        for node in self.nodes():
            try:
                if (role is None or node.role == role) and matches(node.name) and (not showing or node.showing):
                    found.append(node)
            except GLib.Error:
                continue
        return found

    def find(self, role=None, name=None):
        found = self.find_all(role, name)
        if not found:
            raise LookupError(f"nothing shows as {role} {name}")
        return found[0]

    def shows(self, role=None, name=None):
        try:
            return bool(self.find_all(role, name))
        except LookupError:
            return False

    def wait(self, role=None, name=None, limit=5.0):
        return wait_for(lambda: self.find(role, name), limit, lambda: f'{role or "anything"} "{name}" in\n{self}')

    def wait_gone(self, role=None, name=None, limit=5.0):
        wait_for(lambda: not self.shows(role, name), limit, lambda: f'{role or "anything"} "{name}" gone from\n{self}')

    def __str__(self):
        try:
            return "\n".join("  " * depth + str(node) for node, depth in self.root().walk())
        except (LookupError, GLib.Error) as error:
            return f"({error})"
