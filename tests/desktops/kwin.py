"""A Wayland session of KWin without a screen, and what is asked of it and of its screen."""

import os
import pathlib
import re
import shutil
import subprocess
import threading

import dbus

from kwin_input import Input
from support import App, AppTest, TIMEOUT, Process, SCREENSHOTS, call, free_port, wait_for
from window_managers import BUTTON, GREEN, RED

WIDTH, HEIGHT = 1280, 720
# The colour of the other window.
DARK = b"\x10\x20\x40"
NEEDED = ["kwin_wayland", "Xwayland", "convert", "xdotool", "xprop", "wl-copy", "wl-paste"]


def missing():
    return [each for each in NEEDED if not shutil.which(each)]


class KwinTest(AppTest):
    """Starts the compositor, the program on it and a phone."""

    service_capabilities = ["body", "actions"]
    desktop = "kwin-wayland"
    # What the user may choose by the toolkit's variable.
    platform = None

    def setUp(self):
        self.environment = self.start_compositor()
        self.input = self.make_input()
        self.addCleanup(self.input.close)
        self.tray = self.use_tray()
        if self.service_capabilities:
            self.service = self.use_notification_service(self.service_capabilities)
        self.prepare()
        chosen = {"QT_QPA_PLATFORM": self.platform} if self.platform else {}
        self.app_environment = self.environment | chosen
        self.app = self.start(App(free_port(), env=self.app_environment)).wait_listening()
        self.node = self.start_node(self.app.port)

    def make_input(self):
        return Input(self.environment["WAYLAND_DISPLAY"])

    def prepare(self):
        """What has to be there before the program starts."""

    def start_compositor(self):
        home = pathlib.Path(os.environ["HOME"])
        # The installed file has a capability that a container may not hand on.
        compositor = shutil.copy(shutil.which("kwin_wayland"), home / "kwin_wayland")
        plain = {key: text for key, text in os.environ.items() if key not in ("DISPLAY", "QT_QPA_PLATFORM")}
        displays = home / "displays"
        script = home / "session"
        script.write_text('#!/bin/sh\necho "$DISPLAY $WAYLAND_DISPLAY" >"$HOME/new" && mv "$HOME/new" "$HOME/displays"\n'
                          "exec sleep 600\n")
        script.chmod(0o755)
        displays.unlink(missing_ok=True)
        # What it starts in its turn may hold its output open for longer than the test takes.
        self.start(Process("sh", "-c", 'exec "$@" >>"$HOME/manager.log" 2>&1', "sh", compositor, "--virtual",
                           "--xwayland", "--width", str(WIDTH), "--height", str(HEIGHT), "--no-lockscreen",
                           "--no-global-shortcuts", "--no-kactivities", str(script), env=plain | {
                               "KWIN_SCREENSHOT_NO_PERMISSION_CHECKS": "1", "KWIN_WAYLAND_NO_PERMISSION_CHECKS": "1",
                               "KWIN_COMPOSE": "O2", "LIBGL_ALWAYS_SOFTWARE": "1"}))
        wait_for(displays.exists, "the compositor", 60)
        x11, wayland = displays.read_text().split()
        return plain | {"DISPLAY": x11, "WAYLAND_DISPLAY": wayland, "XDG_SESSION_TYPE": "wayland",
                        "XDG_CURRENT_DESKTOP": "KDE"}

    def capture(self):
        """The screen in rows of bytes: blue, green, red and one more."""
        service = dbus.SessionBus().get_object("org.kde.KWin", "/org/kde/KWin/ScreenShot2", introspect=False)
        reader, writer = os.pipe()
        raw = bytearray()
        size = 4 * WIDTH * HEIGHT

        def collect():
            with open(reader, "rb", buffering=0) as pipe:
                while len(raw) < size and (piece := pipe.read(size)):
                    raw.extend(piece)

        collector = threading.Thread(target=collect, daemon=True)
        collector.start()
        shape = call(service, "org.kde.KWin.ScreenShot2", "CaptureArea", dbus.Int32(0), dbus.Int32(0),
                     dbus.UInt32(WIDTH), dbus.UInt32(HEIGHT), dbus.Dictionary({}, signature="sv"),
                     dbus.types.UnixFd(writer))
        os.close(writer)
        collector.join(TIMEOUT)
        stride = int(shape["stride"])
        return [raw[row * stride:row * stride + 4 * WIDTH] for row in range(HEIGHT)]

    def pixels(self, x, y, width, height):
        return [bytes((row[at + 2], row[at + 1], row[at])) for row in self.capture()[y:y + height]
                for at in range(4 * x, 4 * (x + width), 4)]

    def picture(self, name):
        flat = b"".join(row[at + 2:at + 3] + row[at + 1:at + 2] + row[at:at + 1]
                        for row in self.capture() for at in range(0, 4 * WIDTH, 4))
        SCREENSHOTS.mkdir(parents=True, exist_ok=True)
        subprocess.run(["convert", "ppm:-", str(SCREENSHOTS / f"desktops-{self.desktop}-{name}.png")], check=True,
                       input=b"P6 %d %d 255\n" % (WIDTH, HEIGHT) + flat)

    def buttons(self):
        """Whether the top right of the screen shows a whole button of each colour: (green, red)."""
        found = self.pixels(WIDTH - 400, 0, 400, 180)
        return tuple(int(sum(pixel in color for pixel in found) >= BUTTON) for color in (GREEN, RED))

    def button_of(self, colors):
        """The middle of the rightmost button of this colour in the top right of the screen."""
        hits = [divmod(at, 400) for at, pixel in enumerate(self.pixels(WIDTH - 400, 0, 400, 360)) if pixel in colors]
        rows, columns = [row for row, _ in hits], [column for _, column in hits]
        return WIDTH - 400 + max(columns) - 15, (min(rows) + max(rows)) // 2

    def wait_color(self, colors, what):
        wait_for(lambda: sum(pixel in colors for pixel in self.pixels(WIDTH - 400, 0, 400, 360)) > BUTTON, what)

    def ring(self):
        self.node.send({"action": "incoming_call", "state": "RINGING", "number": "123", "name": "Bob"})

    def other_window(self):
        """Another program over the whole screen, with the keyboard."""
        window = self.start(Process("/usr/bin/python3", str(pathlib.Path(__file__).parent / "other_window.py"),
                                    env=self.environment | {"GDK_BACKEND": "wayland"}))
        window.wait_line("^focus in$")
        wait_for(lambda: set(self.pixels(600, 340, 80, 40)) == {DARK}, "the other window on the screen")
        return window

    def token(self, window):
        """What the other program would hand to one that it starts."""
        before = len(window.lines)
        window.write("")
        line = wait_for(lambda: next((each for each in window.lines[before:] if each.startswith("token ")), None),
                        "a token")
        return line.removeprefix("token ")

    def typed(self, window):
        return "".join(line.removeprefix("key ") for line in list(window.lines) if line.startswith("key "))

    def x11_words(self, *command):
        return subprocess.run(command, env=self.environment, capture_output=True, text=True, timeout=TIMEOUT).stdout

    def active_x11_window(self):
        """The name of the window with the keyboard among those of the X server, as the compositor says."""
        found = re.search(r"0x[0-9a-f]+", self.x11_words("xprop", "-root", "_NET_ACTIVE_WINDOW").partition("#")[2])
        if not found or int(found[0], 16) == 0:
            return None
        return self.x11_words("xdotool", "getwindowname", str(int(found[0], 16))).strip()
