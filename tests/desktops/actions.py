"""What the phone asks of the computer itself: an address, the lock and media keys: actions.py DESKTOP [test...]

DESKTOP is sway, kwin_wayland, gnome or a window manager; with xfsettingsd there are the shortcuts of XFCE as well.
"""

import os
import pathlib
import sys
import unittest

sys.path[:0] = [str(pathlib.Path(__file__).parent), str(pathlib.Path(__file__).parents[1] / "app")]

import dbus
import dbus.lowlevel
import dbus.service

import gnome
import kwin
import window_managers
import wlroots
from support import stays, wait_for

ADDRESS = "https://example.org/a?b=c&d='e'"
MEDIA = {"play_pause": "PlayPause", "next": "Next", "prev": "Previous"}
KEYSYMS = {"play_pause": 0x1008FF14, "next": 0x1008FF17, "prev": 0x1008FF16}
KEYS = {"PlayPause": "XF86AudioPlay", "Next": "XF86AudioNext", "Previous": "XF86AudioPrev"}


def command(method):
    """What a shortcut of the desktop runs. This tool names no user to the bus, which knows us by another number than a
    compositor in a name space of its own."""
    return ("busctl --user call org.mpris.MediaPlayer2.tests /org/mpris/MediaPlayer2 org.mpris.MediaPlayer2.Player "
            f"{method}")


class Login(dbus.service.Object):
    """Stands in for the service that has the lockers of the desktops lock."""

    def __init__(self):
        self.locked = 0
        self.name = dbus.service.BusName("org.freedesktop.login1", dbus.SessionBus(), do_not_queue=True)
        super().__init__(dbus.SessionBus(), "/org/freedesktop/login1/session/auto")

    @dbus.service.method("org.freedesktop.login1.Session")
    def Lock(self):
        self.locked += 1


class Player(dbus.service.Object):
    """A player of music as every desktop knows them."""

    INTERFACE = "org.mpris.MediaPlayer2.Player"

    def __init__(self, status):
        self.heard = []
        self.status = status
        self.name = dbus.service.BusName("org.mpris.MediaPlayer2.tests", dbus.SessionBus(), do_not_queue=True)
        super().__init__(dbus.SessionBus(), "/org/mpris/MediaPlayer2")

    @dbus.service.method(dbus.PROPERTIES_IFACE, in_signature="ss", out_signature="v")
    def Get(self, interface, name):
        if not self.status or (interface, name) != (self.INTERFACE, "PlaybackStatus"):
            raise dbus.DBusException("no such property", name="org.freedesktop.DBus.Error.UnknownProperty")
        return self.status

    @dbus.service.method(INTERFACE)
    def PlayPause(self):
        self.heard.append("PlayPause")

    @dbus.service.method(INTERFACE)
    def Next(self):
        self.heard.append("Next")

    @dbus.service.method(INTERFACE)
    def Previous(self):
        self.heard.append("Previous")


class Portal(dbus.service.Object):
    """A portal that permits a keyboard and a pointer at once, and notes the keys."""

    INTERFACE = "org.freedesktop.portal.RemoteDesktop"

    def __init__(self):
        self.pressed = []
        self.name = dbus.service.BusName("org.freedesktop.portal.Desktop", dbus.SessionBus(), do_not_queue=True)
        super().__init__(dbus.SessionBus(), "/org/freedesktop/portal/desktop")

    def respond(self, sender, options, **results):
        path = f"/org/freedesktop/portal/desktop/request/{sender[1:].replace('.', '_')}/{options['handle_token']}"
        signal = dbus.lowlevel.SignalMessage(path, "org.freedesktop.portal.Request", "Response")
        signal.append(dbus.UInt32(0), dbus.Dictionary(results, signature="sv"), signature="ua{sv}")
        dbus.SessionBus().send_message(signal)
        return dbus.ObjectPath(path)

    @dbus.service.method(INTERFACE, in_signature="a{sv}", out_signature="o", sender_keyword="sender")
    def CreateSession(self, options, sender=None):
        return self.respond(sender, options, session_handle="/org/freedesktop/portal/desktop/session/tests")

    @dbus.service.method(INTERFACE, in_signature="oa{sv}", out_signature="o", sender_keyword="sender")
    def SelectDevices(self, session, options, sender=None):
        return self.respond(sender, options)

    @dbus.service.method(INTERFACE, in_signature="osa{sv}", out_signature="o", sender_keyword="sender")
    def Start(self, session, window, options, sender=None):
        return self.respond(sender, options, devices=dbus.UInt32(3))

    @dbus.service.method(INTERFACE, in_signature="oa{sv}iu")
    def NotifyKeyboardKeysym(self, session, options, keysym, state):
        self.pressed.append((int(keysym), int(state)))


class Actions:
    # Without a status we do not take it for a player, so only shortcuts reach it.
    player_status = None

    def setUp(self):
        home = pathlib.Path(os.environ["HOME"])
        self.opened = home / "opened"
        self.opened.unlink(missing_ok=True)
        tools = home / "tools"
        tools.mkdir(exist_ok=True)
        (tools / "xdg-open").write_text(f'#!/bin/sh\nprintf "%s\\n" "$@" >>"{self.opened}"\n')
        (tools / "xdg-open").chmod(0o755)
        if str(tools) not in os.environ["PATH"]:
            os.environ["PATH"] = f"{tools}:{os.environ['PATH']}"
        self.login = self.offer(Login())
        self.player = self.offer(Player(self.player_status))
        super().setUp()

    def offer(self, service):
        self.addCleanup(service.remove_from_connection)
        return service

    def remote(self, name, kind="remote", **more):
        self.node.send({"action": "remote_control", "type": kind, "command": name, **more})

    def test_an_address_is_opened_by_the_tool_of_the_desktop(self):
        self.remote("open_url", url=ADDRESS)
        wait_for(lambda: self.opened.exists() and self.opened.read_text() == ADDRESS + "\n", "the address is opened")

    def test_the_lock_is_asked_for_once(self):
        self.remote("lock_mac")
        wait_for(lambda: self.login.locked, "the lock")
        stays(lambda: self.login.locked == 1, "one lock", 0.5)


class MediaKeys:
    def test_media_keys_reach_the_player(self):
        for count, name in enumerate(MEDIA, 1):
            self.remote(name, "media")
            wait_for(lambda: self.player.heard == [*MEDIA.values()][:count],
                     f"the player is asked, not {self.player.heard}")
        stays(lambda: len(self.player.heard) == len(MEDIA), "each key comes once", 0.5)


class OnX11(MediaKeys, Actions, window_managers.DesktopTest):
    """Window managers have no shortcuts for these keys: we ask the player."""
    player_status = "Paused"


class OnXfce(OnX11):
    """With the program of XFCE that has the shortcuts of the user."""
    player_status = None


class OnSway(MediaKeys, Actions, wlroots.WlrootsTest):
    more_configuration = "".join(f"bindsym {key} exec {command(method)}\n" for method, key in KEYS.items())


class WithPortal(Actions):
    def prepare(self):
        self.portal = self.offer(Portal())

    def setUp(self):
        super().setUp()
        self.app.wait_line("handshake complete")

    def test_media_keys_are_handed_to_the_portal(self):
        for name in MEDIA:
            self.remote(name, "media")
        wanted = [(KEYSYMS[name], state) for name in MEDIA for state in (1, 0)]
        wait_for(lambda: self.portal.pressed == wanted, f"{wanted}, not {self.portal.pressed}")

    def test_a_character_that_the_layout_lacks_is_mentioned_in_the_log(self):
        self.remote("", "keyboard_text", text="plain")
        self.remote("", "keyboard_text", text="a日")
        self.app.wait_line(r"^\[Input\] The keyboard layout has no key .*: 日$")
        self.assertEqual(len([line for line in self.app.lines if "has no key" in line]), 1)


class OnKwin(WithPortal, kwin.KwinTest):
    pass


class OnGnome(WithPortal, gnome.GnomeTest):
    pass


class OnKwinWithoutPortal(Actions, kwin.KwinTest):
    """Nobody has permitted anything."""

    def test_the_lock_is_asked_for_once(self):
        self.remote("lock_mac")
        self.app.wait_line("Command 'lock_mac' failed")
        self.assertEqual(self.login.locked, 0)


def suites(name):
    if name == "sway":
        return [OnSway], wlroots.missing()
    if name == "kwin_wayland":
        return [OnKwin, OnKwinWithoutPortal], kwin.missing()
    if name == "gnome":
        return [OnGnome], gnome.missing()
    window_managers.DesktopTest.manager = name
    return [OnXfce if name == "xfsettingsd" else OnX11], window_managers.MANAGERS[name].missing()


if __name__ == "__main__":
    chosen, lacking = suites(sys.argv[1])
    if lacking:
        print(f"skipped: {', '.join(lacking)} not installed")
        sys.exit(77)
    load = unittest.defaultTestLoader.loadTestsFromTestCase
    answer = unittest.TextTestRunner(verbosity=2).run(unittest.TestSuite(map(load, chosen)))
    sys.exit(not answer.wasSuccessful())
