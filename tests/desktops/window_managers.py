"""The window managers that the tests start, and what is asked of them and of the screen.

Nothing here reads a property that the program wrote: a window manager may do otherwise.
"""

import os
import pathlib
import re
import shutil
import subprocess
import time
import unittest

import dbus

from support import AppTest, TIMEOUT, Process, run, screenshot, stays, wait_for

XFCONF = "/usr/lib/x86_64-linux-gnu/xfce4/xfconf/xfconfd"
WORKSPACES = 4


def folder(*parts):
    path = pathlib.Path(os.environ["XDG_CONFIG_HOME"], *parts)
    path.mkdir(parents=True, exist_ok=True)
    return path


def prepare_xfce():
    services = pathlib.Path(os.environ["XDG_DATA_HOME"], "dbus-1", "services")
    (services / "org.xfce.Xfconf.service").write_text(f"[D-BUS Service]\nName=org.xfce.Xfconf\nExec={XFCONF}\n")
    dbus.SessionBus().get_object("org.freedesktop.DBus", "/org/freedesktop/DBus").ReloadConfig()


def prepare_shortcuts():
    """Of the user: the media keys for a player on the bus."""
    from actions import KEYS, command
    rows = "".join(f'<property name="{key}" type="string" value="{command(method)}"/>' for method, key in KEYS.items())
    (folder("xfce4", "xfconf", "xfce-perchannel-xml") / "xfce4-keyboard-shortcuts.xml").write_text(
        '<?xml version="1.0" encoding="UTF-8"?>\n<channel name="xfce4-keyboard-shortcuts" version="1.0">'
        '<property name="commands" type="empty"><property name="custom" type="empty">'
        f'<property name="override" type="bool" value="true"/>{rows}</property></property>'
        '<property name="providers" type="array"><value type="string" value="commands"/></property></channel>')
    prepare_xfce()


def prepare_kwin():
    (folder() / "kwinrc").write_text(f"[Desktops]\nNumber={WORKSPACES}\nRows=1\n[Compositing]\nEnabled=false\n")


def prepare_fluxbox():
    own = pathlib.Path(os.environ["HOME"], ".fluxbox")
    own.mkdir(exist_ok=True)
    # It would set a picture with a program that is not there, and say so in a window.
    (own / "overlay").write_text("background: none\n")


def prepare_i3():
    (folder("i3") / "config").write_text("font pango:monospace 8\nfocus_follows_mouse no\n"
                                         + "".join(f"bindsym Mod4+{n} workspace {n}\n" for n in range(1, 5)))


class Manager:
    def __init__(self, *commands, prepare=lambda: None, environment={}):
        self.commands = commands
        self.prepare = prepare
        self.environment = environment

    def missing(self):
        return [command[0] for command in self.commands if not shutil.which(command[0])]


MANAGERS = {
    "xfwm4": Manager(["xfwm4", "--compositor=off"], prepare=prepare_xfce),
    "xfwm4-compositing": Manager(["xfwm4", "--compositor=on", "--vblank=off"], prepare=prepare_xfce),
    "xfce": Manager(["xfwm4", "--compositor=off"], ["xfce4-panel", "--disable-wm-check"], prepare=prepare_xfce),
    "xfsettingsd": Manager(["xfwm4", "--compositor=off"], ["xfsettingsd", "--no-daemon", "--disable-wm-check"],
                           prepare=prepare_shortcuts),
    "openbox": Manager(["openbox"]),
    "metacity": Manager(["metacity", "--no-composite"], environment={"GSETTINGS_BACKEND": "memory"}),
    "icewm": Manager(["icewm"]),
    "fluxbox": Manager(["fluxbox"], prepare=prepare_fluxbox),
    "i3": Manager(["i3"], prepare=prepare_i3),
    "kwin": Manager(["kwin_x11", "--no-kactivities"], prepare=prepare_kwin, environment={"KWIN_COMPOSE": "N"}),
}


def words(*command):
    found = subprocess.run(command, capture_output=True, text=True, timeout=TIMEOUT)
    return found.stdout if found.returncode == 0 else ""


def root_property(name):
    return re.sub(r"^[^=#]*[=#]", "", words("xprop", "-root", name)).strip()


def windows_in(name):
    return [int(each, 16) for each in re.findall(r"0x[0-9a-f]+", root_property(name))]


def active_window():
    return next(iter(windows_in("_NET_ACTIVE_WINDOW")), 0)


def window_pid(window):
    found = re.search(r"= (\d+)", words("xprop", "-id", str(window), "_NET_WM_PID"))
    return int(found[1]) if found else 0


def states(window):
    """As the window manager keeps them."""
    return set(re.findall(r"_NET_WM_STATE_\w+", words("xprop", "-id", str(window), "_NET_WM_STATE").partition("=")[2]))


def pixels(x, y, width, height):
    raw = subprocess.run(["import", "-silent", "-window", "root", "-crop", f"{width}x{height}+{x}+{y}", "+repage",
                          "-depth", "8", "rgb:-"], capture_output=True, check=True, timeout=TIMEOUT).stdout
    return [raw[at:at + 3] for at in range(0, len(raw), 3)]


def palette(name):
    """A colour of the program as bytes of a screenshot, in light and in dark."""
    colors = (pathlib.Path(__file__).parents[2] / "src/tabs/Style.h").read_text()
    row = re.search(r'\{"' + name + r'", 0xff([0-9a-f]{6}), 0xff([0-9a-f]{6})\}', colors)
    return {bytes.fromhex(color) for color in row.groups()}


GREEN = palette("green")
RED = palette("red")
BLUE = palette("blue")
# Of a round button of 32 by 32 with a symbol on it.
BUTTON = 350


def buttons(x, y, width, height):
    """Whether the screen shows a whole button of each colour there: (green, red)."""
    found = pixels(x, y, width, height)
    return tuple(int(sum(pixel in color for pixel in found) >= BUTTON) for color in (GREEN, RED))


class DesktopTest(AppTest):
    """Starts the window manager, the program and a phone."""

    manager = None

    def setUp(self):
        chosen = MANAGERS[self.manager]
        chosen.prepare()
        for command in chosen.commands:
            # Whatever it starts in its turn may hold its output open for longer than the test takes.
            self.start(Process("sh", "-c", 'exec "$@" >>"$HOME/manager.log" 2>&1', "sh", *command,
                               env=os.environ | chosen.environment))
            wait_for(lambda: windows_in("_NET_SUPPORTING_WM_CHECK"), f"{self.manager} manages windows")
        if "xfce4-panel" in chosen.commands[-1]:
            wait_for(lambda: windows_in("_NET_CLIENT_LIST"), "the panel of the desktop")
        run("xdotool", "mousemove", "400", "600")
        self.tray = self.use_tray()
        self.app = self.start_app().wait_listening()
        self.node = self.start_node(self.app.port)

    def ring(self, number="123", name="Bob"):
        self.node.send({"action": "incoming_call", "state": "RINGING", "number": number, "name": name})

    def hang_up(self):
        self.node.send({"action": "call_ended", "state": "IDLE"})

    def picture(self, name):
        screenshot(f"desktops-{self.manager}-{name}")

    def terminal(self, *options, seconds=TIMEOUT):
        """A terminal with the keyboard, which notes the first line typed into it."""
        typed = pathlib.Path(os.environ["HOME"]) / f"typed-{time.monotonic_ns()}"
        program = self.start(Process("xterm", *options, "-u8", "-e", "sh", "-c", f"head -n 1 > '{typed}'; sleep 600"))
        window = wait_for(lambda: next((each for each in windows_in("_NET_CLIENT_LIST")
                                        if window_pid(each) == program.pid), None), "the terminal")
        wait_for(lambda: active_window() == window or run("xdotool", "windowactivate", str(window)) is None,
                 "the terminal has the keyboard", seconds)
        return window, typed

    def full_screen_terminal(self):
        window, typed = self.terminal("-fullscreen", "-bg", "#102040")
        wait_for(lambda: set(pixels(4, 700, 4, 4)) | set(pixels(1270, 4, 4, 4)) <= {b"\x10\x20\x40"},
                 "a terminal over the whole screen")
        return window, typed

    def type_line(self, text, typed):
        run("xdotool", "type", "--delay", "20", text + "\n")
        wait_for(lambda: typed.exists() and typed.read_text() == text + "\n",
                 f"what was typed reaches the terminal, not {typed.read_text() if typed.exists() else None!r}")

    def go_to(self, workspace):
        """Workspaces count from 0."""
        if self.manager == "i3":
            run("i3-msg", f"workspace {workspace + 1}")
            wait_for(lambda: f'"num":{workspace + 1},' in run("i3-msg", "-t", "get_workspaces").partition(
                '"focused":true')[0].rpartition('"id"')[2], "the workspace")
            return
        run("xdotool", "set_desktop", str(workspace))
        wait_for(lambda: root_property("_NET_CURRENT_DESKTOP") == str(workspace), f"workspace {workspace}")

    def assert_seen(self, counts, what, seconds=5):
        """The screen shows these buttons in its top right part, and goes on showing them."""
        top_right = (880, 0, 400, 180)
        try:
            wait_for(lambda: buttons(*top_right) == counts, f"{what}: {counts} buttons", seconds)
            stays(lambda: buttons(*top_right) == counts, f"{what}: {counts} buttons", 0.4)
        except AssertionError as error:
            self.picture("missed-" + re.sub(r"\W+", "-", what))
            raise AssertionError(f"{error}; the screen shows {buttons(*top_right)}") from None

    def assert_ringing_seen(self, what):
        self.assert_seen((1, 1), what)

    def managed_windows(self):
        return [each for each in windows_in("_NET_CLIENT_LIST") if window_pid(each) == self.app.pid]


def main(suite):
    """The answer 77 is a skipped test."""
    import sys
    name = sys.argv.pop(1)
    if missing := MANAGERS[name].missing() + [each for each in ("xterm", "xdotool", "xprop") if not shutil.which(each)]:
        print(f"skipped: {', '.join(missing)} not installed")
        sys.exit(77)
    suite.manager = name
    unittest.main(verbosity=2)
