"""The program on a session of GNOME without a screen: gnome.py [test...]"""

import json
import os
import pathlib
import shutil
import subprocess
import sys
import unittest

sys.path[:0] = [str(pathlib.Path(__file__).parent), str(pathlib.Path(__file__).parents[1] / "app")]

import dbus

from kwin import DARK, HEIGHT, KwinTest, WIDTH
from support import APP, TIMEOUT, Process, call, stays, wait_for
from window_managers import BLUE

MAIN = "Velloway Settings"
SHIFT = "shift"
KEYSYMS = {"\n": 0xFF0D, SHIFT: 0xFFE1}
LEFT_BUTTON = 0x110
NOTIFICATIONS = "/usr/share/dbus-1/services/org.gnome.Shell.Notifications.service"
NEEDED = ["gnome-shell", "gjs", "Xwayland", "convert"]


def missing():
    return [each for each in NEEDED if not shutil.which(each)]


class Input:
    """A keyboard and a pointer by the shell's own service for remote desktops."""

    SESSION = "org.gnome.Mutter.RemoteDesktop.Session"

    def __init__(self):
        bus = dbus.SessionBus()
        service = bus.get_object("org.gnome.Mutter.RemoteDesktop", "/org/gnome/Mutter/RemoteDesktop", introspect=False)
        path = call(service, "org.gnome.Mutter.RemoteDesktop", "CreateSession")
        self.session = bus.get_object("org.gnome.Mutter.RemoteDesktop", path, introspect=False)
        call(self.session, self.SESSION, "Start")
        # The keyboard is there from its first key on.
        self.type([SHIFT])

    def close(self):
        call(self.session, self.SESSION, "Stop")

    def type(self, letters):
        for letter in letters:
            for pressed in (True, False):
                call(self.session, self.SESSION, "NotifyKeyboardKeysym",
                     dbus.UInt32(KEYSYMS.get(letter) or ord(letter)), dbus.Boolean(pressed))

    def click(self, x, y):
        # From the corner, since there is no other way to say where.
        for dx, dy in ((-5000, -5000), (x, y)):
            call(self.session, self.SESSION, "NotifyPointerMotionRelative", dbus.Double(dx), dbus.Double(dy))
        stays(lambda: True, "the pointer", 0.3)
        for pressed in (True, False):
            call(self.session, self.SESSION, "NotifyPointerButton", dbus.Int32(LEFT_BUTTON), dbus.Boolean(pressed))


class GnomeTest(KwinTest):
    desktop = "gnome"
    service_capabilities = None

    def start_compositor(self):
        services = pathlib.Path(os.environ["XDG_DATA_HOME"], "dbus-1", "services")
        shutil.copy(NOTIFICATIONS, services)
        call(dbus.SessionBus().get_object("org.freedesktop.DBus", "/org/freedesktop/DBus"), "org.freedesktop.DBus",
             "ReloadConfig")
        plain = {key: text for key, text in os.environ.items() if key not in ("DISPLAY", "QT_QPA_PLATFORM")}
        plain |= {"XDG_SESSION_TYPE": "wayland", "XDG_CURRENT_DESKTOP": "GNOME"}
        log = pathlib.Path(os.environ["HOME"]) / "manager.log"
        log.write_text("")
        self.start(Process("sh", "-c", 'exec "$@" >>"$HOME/manager.log" 2>&1', "sh", "gnome-shell", "--headless",
                           "--unsafe-mode", "--virtual-monitor", f"{WIDTH}x{HEIGHT}",
                           env=plain | {"LIBGL_ALWAYS_SOFTWARE": "1", "GSETTINGS_BACKEND": "memory"}))
        bus = dbus.SessionBus()
        wait_for(lambda: bus.name_has_owner("org.gnome.Shell"), "the shell", 60)
        self.shell = bus.get_object("org.gnome.Shell", "/org/gnome/Shell", introspect=False)
        # It leaves questions without an answer that come before this.
        wait_for(lambda: "GNOME Shell started at" in log.read_text(), "the shell has started", 60)
        # It would be started with the session.
        bus.start_service_by_name("org.gnome.Shell.Notifications")
        self.ask("Main.overview.hide()")
        wait_for(lambda: self.ask("Main.overview.visible") is False, "the desktop")
        return plain | {name: self.ask(f"imports.gi.GLib.getenv('{name}')")
                        for name in ("DISPLAY", "WAYLAND_DISPLAY", "XAUTHORITY")}

    def make_input(self):
        return Input()

    def ask(self, script):
        """What the shell says, by its own language."""
        done, answer = call(self.shell, "org.gnome.Shell", "Eval", script)
        if not done:
            raise AssertionError(f"{script}: {answer}")
        return json.loads(answer) if answer else None

    def keyboard(self):
        """The title of the window that has it."""
        return self.ask("global.display.focus_window ? global.display.focus_window.title : ''")

    def capture(self):
        file = pathlib.Path(os.environ["HOME"]) / "screen.png"
        service = dbus.SessionBus().get_object("org.gnome.Shell.Screenshot", "/org/gnome/Shell/Screenshot",
                                               introspect=False)
        call(service, "org.gnome.Shell.Screenshot", "Screenshot", dbus.Boolean(False), dbus.Boolean(False), str(file))
        raw = subprocess.run(["convert", str(file), "-depth", "8", "bgra:-"], check=True, capture_output=True,
                             timeout=TIMEOUT).stdout
        return [raw[row * 4 * WIDTH:(row + 1) * 4 * WIDTH] for row in range(HEIGHT)]


class Windows(GnomeTest):
    def test_a_panel_comes_up_over_a_full_screen_window_and_leaves_it_the_keyboard(self):
        window = self.other_window()
        self.ring()
        wait_for(lambda: self.buttons() == (1, 1), "the two buttons")
        self.picture("ringing")
        self.input.type("mine")
        wait_for(lambda: self.typed(window) == "mine", f"the letters, not {self.typed(window)!r}")
        self.assertEqual(self.keyboard(), "Other")

    def test_the_desktop_shows_a_notification_and_its_answer_opens_our_panel(self):
        window = self.other_window()
        self.node.send({"app": "Chat", "title": "Ada", "body": "See you at seven?", "key": "k1"})
        shown = "Main.messageTray.getSources().flatMap(each => each.notifications)"
        wait_for(lambda: self.ask(f"{shown}.map(each => each.title)") == ["Chat"], "the notification")
        self.ask(f"{shown}[0].actions[0].callback()")
        wait_for(lambda: window.lines[-1] == "focus out", "our panel has the keyboard")
        self.wait_color(BLUE, "the panel on the screen")
        self.picture("reply")
        self.input.type("On my way\n")
        self.assertEqual(self.node.wait_message("reply"), {"action": "reply", "key": "k1", "message": "On my way"})

    def test_the_main_window_comes_up_by_a_second_start(self):
        window = self.other_window()
        self.assertEqual(self.start(Process(APP, env=self.app_environment)).wait_end(), 0)
        wait_for(lambda: self.keyboard() == MAIN, f"the main window has the keyboard, not {self.keyboard()}")
        wait_for(lambda: DARK not in self.pixels(600, 340, 80, 40), "nothing covers it")
        self.picture("main-window")
        self.assertEqual(window.lines[-1], "focus out")


class Clipboard(GnomeTest):
    """While another program has the keyboard. The shell itself stands for the programs that use the clipboard."""

    ST = "const St = imports.gi.St; const kind = St.ClipboardType.CLIPBOARD; const board = St.Clipboard.get_default(); "

    def setUp(self):
        super().setUp()
        self.window = self.other_window()

    def pasted(self):
        self.ask(self.ST + "board.get_text(kind, (_, text) => { global.pasted = text; })")
        return self.ask("global.pasted ?? ''")

    def wait_pasted(self, text):
        wait_for(lambda: self.pasted() == text, f"{text!r} on the clipboard")

    def assert_keyboard_left_alone(self):
        self.assertEqual([line for line in self.window.lines if line.startswith("focus")], ["focus in"])

    def test_a_text_from_the_phone_is_pasted(self):
        for text in ("Code for the door: 4417", "Grüße\nin zwei Zeilen 日本 🚲\n"):
            self.node.send({"action": "clipboard", "text": text})
            self.wait_pasted(text)
        self.assert_keyboard_left_alone()

    def test_what_was_copied_reaches_the_phone_and_never_what_was_copied_before(self):
        sent = []
        for text in ("one", "two\nlines / 日本 🚲"):
            self.ask(self.ST + f"board.set_text(kind, {json.dumps(text)})")
            self.wait_pasted(text)
            self.tray.choose("Send Clipboard")
            sent.append(text)
            wait_for(lambda: [each["text"] for each in self.node.messages() if each["action"] == "clipboard"] == sent,
                     "the phone gets the texts")
        self.assert_keyboard_left_alone()


if __name__ == "__main__":
    if lacking := missing():
        print(f"skipped: {', '.join(lacking)} not installed")
        sys.exit(77)
    unittest.main(verbosity=2)
