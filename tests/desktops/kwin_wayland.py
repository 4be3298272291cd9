"""The panel of a call on a Wayland session of KWin without a screen: kwin_wayland.py [test...]"""

import os
import pathlib
import shutil
import subprocess
import sys
import threading
import unittest

sys.path[:0] = [str(pathlib.Path(__file__).parent), str(pathlib.Path(__file__).parents[1] / "app")]

import dbus

from support import App, AppTest, Process, SCREENSHOTS, TrayWatcher, call, free_port, stays, wait_for
from window_managers import BUTTON, GREEN, RED

WIDTH, HEIGHT = 1280, 720
# Takes the whole screen and says when it has the keyboard.
WINDOW = """
import gi
gi.require_version("Gtk", "3.0")
from gi.repository import Gtk
window = Gtk.Window()
window.connect("focus-in-event", lambda *_: print("focus in", flush=True))
window.connect("focus-out-event", lambda *_: print("focus out", flush=True))
window.fullscreen()
window.show_all()
Gtk.main()
"""


class Panels(AppTest):
    def setUp(self):
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
        self.start(Process("sh", "-c", 'exec "$@" >>"$HOME/manager.log" 2>&1', "sh", compositor, "--virtual", "--xwayland", "--width", str(WIDTH), "--height", str(HEIGHT),
                           "--no-lockscreen", "--no-global-shortcuts", "--no-kactivities", str(script), env=plain | {
                               "KWIN_SCREENSHOT_NO_PERMISSION_CHECKS": "1", "KWIN_COMPOSE": "O2",
                               "LIBGL_ALWAYS_SOFTWARE": "1"}))
        wait_for(displays.exists, "the compositor", 60)
        x11, wayland = displays.read_text().split()
        self.environment = plain | {"DISPLAY": x11, "WAYLAND_DISPLAY": wayland, "XDG_SESSION_TYPE": "wayland",
                                    "XDG_CURRENT_DESKTOP": "KDE"}
        tray = TrayWatcher()
        self.addCleanup(tray.remove_from_connection)
        self.app = self.start(App(free_port(), env=self.environment)).wait_listening()
        self.node = self.start_node(self.app.port)

    def pixels(self):
        """Of the top right of the screen."""
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
        collector.join(20)
        stride = int(shape["stride"])
        self.rows = [raw[row * stride:row * stride + 4 * WIDTH] for row in range(HEIGHT)]
        return [bytes((row[at + 2], row[at + 1], row[at])) for row in self.rows[:180]
                for at in range(4 * (WIDTH - 400), 4 * WIDTH, 4)]

    def picture(self, name):
        self.pixels()
        flat = b"".join(row[at + 2:at + 3] + row[at + 1:at + 2] + row[at:at + 1]
                        for row in self.rows for at in range(0, 4 * WIDTH, 4))
        SCREENSHOTS.mkdir(parents=True, exist_ok=True)
        subprocess.run(["convert", "ppm:-", str(SCREENSHOTS / f"desktops-kwin-wayland-{name}.png")], check=True,
                       input=b"P6 %d %d 255\n" % (WIDTH, HEIGHT) + flat)

    def buttons(self):
        found = self.pixels()
        return tuple(int(sum(pixel in color for pixel in found) >= BUTTON) for color in (GREEN, RED))

    def test_a_panel_comes_up_over_a_full_screen_window_and_leaves_it_the_keyboard(self):
        window = self.start(Process("/usr/bin/python3", "-c", WINDOW, env=self.environment | {"GDK_BACKEND": "wayland"}))
        window.wait_line("focus in")
        self.node.send({"action": "incoming_call", "state": "RINGING", "number": "123", "name": "Bob"})
        wait_for(lambda: self.buttons() == (1, 1), "the two buttons")
        stays(lambda: self.buttons() == (1, 1), "the two buttons", 1)
        self.picture("ringing")
        self.assertEqual([line for line in window.lines if line.startswith("focus")], ["focus in"])


if __name__ == "__main__":
    if lacking := [each for each in ("kwin_wayland", "Xwayland", "convert") if not shutil.which(each)]:
        print(f"skipped: {', '.join(lacking)} not installed")
        sys.exit(77)
    unittest.main(verbosity=2)
