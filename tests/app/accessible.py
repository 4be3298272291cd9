"""The program as a screen reader sees it, for tests that work with it from outside."""

import subprocess
import warnings

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi, GLib

warnings.filterwarnings("ignore", category=DeprecationWarning)

from support import call, dbus, run, turn, wait_for


def start_accessibility(case):
    """Starts the bus of screen readers on the private desktop; programs that start afterwards join it.

    Once for all tests of a class, as the library knows only one such bus in its life.
    """
    # Its own children keep its output open, so that nobody may wait for the end of it.
    launcher = subprocess.Popen(["/usr/libexec/at-spi-bus-launcher", "--launch-immediately"],
                                stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    case.addClassCleanup(launcher.wait)
    case.addClassCleanup(launcher.terminate)
    bus = dbus.SessionBus()
    wait_for(lambda: bus.name_has_owner("org.a11y.Bus"), "the accessibility bus")
    status = bus.get_object("org.a11y.Bus", "/org/a11y/bus", introspect=False)
    call(status, dbus.PROPERTIES_IFACE, "Set", "org.a11y.Status", "IsEnabled", dbus.Boolean(True, variant_level=1))
    call(status, dbus.PROPERTIES_IFACE, "Set", "org.a11y.Status", "ScreenReaderEnabled",
         dbus.Boolean(True, variant_level=1))


class Tree:
    """The parts of one program, found by role and name."""

    def __init__(self, pid):
        self.pid = pid

    def application(self):
        desktop = Atspi.get_desktop(0)
        for index in range(desktop.get_child_count()):
            child = desktop.get_child_at_index(index)
            try:
                if child and child.get_process_id() == self.pid:
                    return child
            except GLib.Error:
                pass  # It has just gone.
        return None

    def parts(self):
        """Every part, windows first."""
        found = []

        def walk(part, depth):
            if not part or depth > 30:
                return
            try:
                found.append(part)
                for index in range(part.get_child_count()):
                    walk(part.get_child_at_index(index), depth + 1)
            except GLib.Error:
                pass  # A list has taken the row away meanwhile.

        walk(self.application(), 0)
        return found

    def find(self, name, role=None):
        return self.find_if(lambda part: part.get_name() == name and role in (None, part.get_role_name()))

    def find_if(self, matches):
        """The first part that is showing and that `matches` accepts, or None.

        A list keeps rows that it no longer needs for later ones; they stay in the tree and do not show.
        """
        for part in self.parts():
            try:
                part.clear_cache()
                if matches(part) and part.get_state_set().contains(Atspi.StateType.SHOWING):
                    return part
            except GLib.Error:
                continue  # It has just gone.
        return None

    def wait(self, name, role=None):
        try:
            return wait_for(lambda: self.find(name, role), f"{role or 'a part'} named {name!r}")
        except AssertionError as error:
            raise AssertionError(f"{error}\n{self.describe()}") from None

    def press(self, name, role=None):
        part = self.wait(name, role)
        for index in range(part.get_n_actions()):
            if part.get_action_name(index) in ("Press", "Toggle"):
                part.do_action(index)
                turn(0.1)
                return
        raise AssertionError(f"{name!r} cannot be pressed")

    def write(self, name, text):
        """Replaces the text of a field, as a user at the keyboard would."""
        field = self.wait(name, "text")
        field.grab_focus()
        turn(0.1)
        run("xdotool", "key", "ctrl+a")
        run("xdotool", "type", "--delay", "15", text)
        turn(0.1)

    def describe(self):
        lines = []
        for part in self.parts():
            try:
                lines.append(f"{part.get_role_name()}: {part.get_name()!r}")
            except GLib.Error:
                pass
        return "\n".join(lines)


__all__ = ["Tree", "start_accessibility"]
