"""How the desktop starts and calls the installed program: over the bus, at login, and for the addresses of a phone."""

import os
import pathlib
import signal
import socket
import tempfile
import unittest

import dbus
import gi
from support import AppTest, Process, call, free_port, run, stays, visible_windows, wait_for

gi.require_version("Gio", "2.0")
from gi.repository import Gio

BUILD = pathlib.Path(os.environ["VELLOWAY_BUILD"])
NAME = "org.velloway.Velloway"
PATH = "/org/velloway/Velloway"
TABS = {"call": 4, "sms": 2, "file-drop": 5, "notifications": 1, "remote": 7, "clipboard": 6, "settings": 0, "info": 3}
# Longer than the program gives the tray of a desktop that is just starting.
SETTLED = 3.5


def setUpModule():
    global PREFIX
    folder = tempfile.TemporaryDirectory()
    unittest.addModuleCleanup(folder.cleanup)
    PREFIX = pathlib.Path(folder.name)
    run("cmake", "--install", str(BUILD), "--prefix", str(PREFIX))
    unittest.addModuleCleanup(os.environ.__setitem__, "PATH", os.environ["PATH"])
    os.environ["PATH"] = f"{PREFIX}/bin:{os.environ['PATH']}"
    services = pathlib.Path(os.environ["XDG_DATA_HOME"], "dbus-1", "services")
    (services / f"{NAME}.service").write_bytes((PREFIX / f"share/dbus-1/services/{NAME}.service").read_bytes())
    bus().UpdateActivationEnvironment(dbus.Dictionary({"PATH": os.environ["PATH"]}, signature="ss"))
    bus().ReloadConfig()


def bus():
    return dbus.Interface(dbus.SessionBus().get_object("org.freedesktop.DBus", "/org/freedesktop/DBus"),
                          "org.freedesktop.DBus")


class ActivationTest(AppTest):
    """The program is started by the bus or by the test; it ends with the test in either case."""

    def setUp(self):
        self.port = free_port()
        self.settings = pathlib.Path(os.environ["XDG_CONFIG_HOME"]) / "velloway" / "velloway.conf"
        self.settings.parent.mkdir(parents=True, exist_ok=True)
        self.settings.write_text(f"[General]\nport={self.port}\nselectedSettingsTab=99\n")
        self.addCleanup(self.end)

    def pid(self):
        try:
            return int(bus().GetConnectionUnixProcessID(NAME))
        except dbus.DBusException:
            return None

    def end(self):
        if pid := self.pid():
            os.kill(pid, signal.SIGTERM)
            wait_for(lambda: not self.pid(), "the end of the program")

    def ask(self, method, *arguments, data={}):
        target = dbus.SessionBus().get_object(NAME, PATH, introspect=False)
        call(target, "org.freedesktop.Application", method, *arguments, dbus.Dictionary(data, signature="sv"))

    def act(self, action):
        self.ask("ActivateAction", action, dbus.Array([], signature="v"))

    def start_by_bus(self):
        bus().StartServiceByName(NAME, dbus.UInt32(0))
        self.wait_listening()

    def wait_listening(self):
        def answers():
            with socket.socket() as probe:
                return probe.connect_ex(("127.0.0.1", self.port)) == 0

        wait_for(answers, "the program listens")

    def windows(self):
        """The titles of what is on the screen."""
        return sorted(run("xdotool", "getwindowname", str(window)).strip() for window in visible_windows(self.pid()))

    def wait_windows(self, *titles):
        wait_for(lambda: self.windows() == [*titles], f"the windows {titles}")

    def wait_tab(self, number):
        wait_for(lambda: f"selectedSettingsTab={number}\n" in self.settings.read_text(), f"tab {number}")


MAIN = "Velloway Settings"
MENU = "Velloway"


class Actions(ActivationTest):
    def test_an_action_starts_the_program_and_shows_its_tab_alone(self):
        self.act("sms")
        self.wait_listening()
        self.wait_tab(2)
        self.wait_windows(MAIN)
        stays(lambda: self.windows() == [MAIN], "the tab alone, also without a tray", SETTLED)

    def test_each_tab_has_one_and_every_one_is_in_the_desktop_entry(self):
        self.use_tray()
        self.start_by_bus()
        for action, tab in TABS.items():
            self.act(action)
            self.wait_tab(tab)
        entry = Gio.DesktopAppInfo.new_from_filename(str(PREFIX / f"share/applications/{NAME}.desktop"))
        self.assertEqual({*entry.list_actions()}, {*TABS, "send-clipboard"})
        self.act("no such thing")
        self.act("call")
        self.wait_tab(4)

    def test_the_entry_of_the_desktop_sends_the_clipboard_and_opens_nothing(self):
        self.use_tray()
        self.start_by_bus()
        node = self.start_node(self.port)
        self.copy("from the launcher")
        entry = Gio.DesktopAppInfo.new_from_filename(str(PREFIX / f"share/applications/{NAME}.desktop"))
        entry.launch_action("send-clipboard", None)
        self.assertEqual(node.wait_message("clipboard")["text"], "from the launcher")
        self.assertEqual(self.windows(), [])

    def test_the_command_of_an_action_does_the_same_where_no_bus_is_used(self):
        self.use_tray()
        run("gapplication", "action", NAME, "info")
        self.wait_listening()
        self.wait_tab(3)


class Starts(ActivationTest):
    def test_a_start_by_the_bus_for_nobody_opens_no_window(self):
        self.start_by_bus()
        stays(lambda: self.windows() == [], "no window", SETTLED)
        self.ask("Activate")
        self.wait_windows(MENU, MAIN)

    def test_a_start_from_a_menu_shows_the_menu_where_there_is_no_tray(self):
        self.ask("Activate")
        self.wait_windows(MENU)

    def test_a_start_from_a_menu_shows_nothing_where_there_is_a_tray(self):
        self.use_tray()
        self.ask("Activate")
        self.wait_listening()
        stays(lambda: self.windows() == [], "no window", SETTLED)

    def test_at_login_the_menu_stays_away_where_there_is_no_tray(self):
        app = self.start(Process("velloway", env=os.environ | {"DESKTOP_AUTOSTART_ID": "10a"}))
        self.wait_listening()
        stays(lambda: visible_windows(app.pid) == set(), "no window", SETTLED)
        self.assertEqual(self.start(Process("velloway")).wait_end(), 0)
        self.wait_windows(MENU, MAIN)

    def test_a_start_by_the_user_still_shows_it(self):
        self.start(Process("velloway"))
        self.wait_listening()
        self.wait_windows(MENU)

    def test_at_login_a_second_start_opens_nothing(self):
        self.use_tray()
        self.start_by_bus()
        second = self.start(Process("velloway", env=os.environ | {"DESKTOP_AUTOSTART_ID": "10a"}))
        self.assertEqual(second.wait_end(), 0)
        stays(lambda: self.windows() == [], "no window", 1)


class Addresses(ActivationTest):
    def setUp(self):
        super().setUp()
        self.use_tray()

    def check_opens(self, address, tab):
        self.start_by_bus()
        node = self.start_node(self.port)
        self.ask("Open", dbus.Array([address], signature="s"))
        self.wait_tab(tab)
        self.wait_windows(MAIN)
        # Whatever it might send would come before this.
        self.copy("the end")
        self.act("send-clipboard")
        node.wait_message("clipboard")
        self.assertLessEqual({each["action"] for each in node.messages()},
                             {"connected", "get_sms_history", "get_call_history", "clipboard"})

    def test_of_calls_open_the_dial_pad_and_dial_nothing(self):
        self.check_opens("tel:+49-151-5551074", TABS["call"])

    def test_of_messages_open_the_composer_and_send_nothing(self):
        self.check_opens("sms:+491515551074?body=On%20my%20way", TABS["sms"])

    def test_are_taken_from_the_command_line_of_the_first_start_and_of_a_second_one(self):
        self.start(Process("velloway", "tel:5551"))
        self.wait_listening()
        self.wait_tab(TABS["call"])
        self.assertEqual(self.start(Process("velloway", "sms:5551")).wait_end(), 0)
        self.wait_tab(TABS["sms"])

    def test_have_the_program_as_their_handler(self):
        run("update-desktop-database", str(PREFIX / "share/applications"))
        environment = dict(os.environ, XDG_DATA_DIRS=f"{PREFIX}/share:/usr/share")
        for scheme in ("tel", "sms", "smsto"):
            self.assertIn(NAME, run("gio", "mime", f"x-scheme-handler/{scheme}", env=environment))


class CommandLine(unittest.TestCase):
    """Questions about the program, which need neither a desktop nor a bus."""

    def answer(self, *words):
        nothing = {"PATH": os.environ["PATH"], "HOME": os.environ["HOME"]}
        return run("velloway", *words, env=nothing)

    def test_the_version_and_the_help_are_answered_without_a_desktop(self):
        self.assertRegex(self.answer("--version"), r"\Avelloway \d+\.\d+\.\d+\n\Z")
        text = self.answer("--help")
        self.assertTrue(text.startswith("Usage: velloway "), text)
        for word in ("FILE", "tel:", "sms:", "--help", "--version"):
            self.assertIn(word, text)
        self.assertLess(max(map(len, text.splitlines())), 81)
        self.assertEqual(self.answer("some file", "--version"), self.answer("--version"))


if __name__ == "__main__":
    unittest.main()
