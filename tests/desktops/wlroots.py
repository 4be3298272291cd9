"""A wlroots compositor without a screen, and what is asked of it and of its screen."""

import os
import pathlib
import shutil
import subprocess
import time

from support import App, AppTest, TIMEOUT, Process, SCREENSHOTS, free_port, run, stays, wait_for
from window_managers import BLUE, BUTTON, GREEN, RED

WIDTH, HEIGHT = 1280, 720
CONFIG = f"""
xwayland force
output HEADLESS-1 resolution {WIDTH}x{HEIGHT} position 0 0 bg #204060 solid_color
default_border none
focus_follows_mouse no
bindsym Mod4+Shift+Left exec touch $HOME/bound
exec sh -c 'echo "$DISPLAY $WAYLAND_DISPLAY $SWAYSOCK" >"$HOME/displays.new"; mv "$HOME/displays.new" "$HOME/displays"'
"""
NEEDED = ["sway", "swaymsg", "Xwayland", "grim", "foot", "xterm"]


def missing():
    return [each for each in NEEDED if not shutil.which(each)]


def as_a_user(*words):
    """The compositor refuses to be root; in a name space of its own it is not."""
    if os.getuid() == 0:
        return ["unshare", "--user", "--map-user=1000", "--map-group=1000", *words]
    return words


class WlrootsTest(AppTest):
    """Starts the compositor, the program on it and a phone."""

    service_capabilities = ["body", "actions"]
    more_configuration = ""

    def setUp(self):
        home = pathlib.Path(os.environ["HOME"])
        (home / "displays").unlink(missing_ok=True)
        config = home / "sway.conf"
        config.write_text(CONFIG + self.more_configuration)
        plain = {key: text for key, text in os.environ.items() if key not in ("DISPLAY", "QT_QPA_PLATFORM")}
        self.start(Process(*as_a_user("sway", "--unsupported-gpu", "--config", str(config)), env=plain | {
            "WLR_BACKENDS": "headless", "WLR_LIBINPUT_NO_DEVICES": "1", "WLR_RENDERER": "pixman"}))
        wait_for(lambda: (home / "displays").exists(), "the compositor")
        x11, wayland, socket = (home / "displays").read_text().split()
        self.environment = plain | {"DISPLAY": x11, "WAYLAND_DISPLAY": wayland, "SWAYSOCK": socket,
                                    "XDG_SESSION_TYPE": "wayland"}
        self.tray = self.use_tray()
        if self.service_capabilities:
            self.service = self.use_notification_service(self.service_capabilities)
        self.app = self.start(App(free_port(), env=self.environment)).wait_listening()
        self.node = self.start_node(self.app.port)

    def command(self, *words):
        return run("swaymsg", *words, env=self.environment)

    def picture(self, name):
        SCREENSHOTS.mkdir(parents=True, exist_ok=True)
        run("grim", str(SCREENSHOTS / f"desktops-sway-{name}.png"), env=self.environment)

    def windows(self):
        """Of the program, as the compositor lists them for taskbars: their names."""
        import json
        found = []

        def walk(node):
            if node.get("pid") == self.app.pid:
                found.append(node["name"])
            for child in node.get("nodes", []) + node.get("floating_nodes", []):
                walk(child)

        walk(json.loads(self.command("-t", "get_tree", "--raw")))
        return found

    def pixels(self, x, y, width, height):
        raw = subprocess.run(["grim", "-t", "ppm", "-g", f"{x},{y} {width}x{height}", "-"], env=self.environment,
                             capture_output=True, check=True, timeout=TIMEOUT).stdout
        raw = raw[-3 * width * height:]
        return [raw[at:at + 3] for at in range(0, len(raw), 3)]

    def buttons(self):
        """Whether the top right of the screen shows a whole button of each colour: (green, red)."""
        found = self.pixels(WIDTH - 400, 0, 400, 180)
        return tuple(int(sum(pixel in color for pixel in found) >= BUTTON) for color in (GREEN, RED))

    def assert_ringing_seen(self, what):
        try:
            wait_for(lambda: self.buttons() == (1, 1), f"{what}: the two buttons")
            stays(lambda: self.buttons() == (1, 1), f"{what}: the two buttons", 0.4)
        except AssertionError:
            self.picture("missed")
            raise

    def button_of(self, colors):
        """The middle of the rightmost button of this colour in the top right of the screen."""
        hits = [divmod(at, 400) for at, pixel in enumerate(self.pixels(WIDTH - 400, 0, 400, 360)) if pixel in colors]
        rows, columns = [row for row, _ in hits], [column for _, column in hits]
        return WIDTH - 400 + max(columns) - 15, (min(rows) + max(rows)) // 2

    def wait_blue(self, what):
        wait_for(lambda: sum(pixel in BLUE for pixel in self.pixels(WIDTH - 400, 0, 400, 360)) > BUTTON, what)

    def click(self, x, y):
        self.command("seat", "-", "cursor", "set", str(x), str(y))
        # Nobody clicks the moment the pointer arrives.
        stays(lambda: True, "the pointer", 0.3)
        self.command("seat", "-", "cursor", "press", "button1")
        self.command("seat", "-", "cursor", "release", "button1")

    def ring(self):
        self.node.send({"action": "incoming_call", "state": "RINGING", "number": "123", "name": "Bob"})

    def terminal(self, *words, options=(), program="foot"):
        """A terminal that collects in a file what is typed into it, once it runs and has the keyboard."""
        typed = pathlib.Path(os.environ["HOME"]) / f"typed-{time.monotonic_ns()}"
        script = " ".join(words) or 'exec cat >"$1"'
        self.start(Process(program, *options, *(["-e"] if program == "xterm" else []), "sh", "-c",
                           f'stty raw -echo; touch "$1.ready"; {script}', "sh", str(typed), env=self.environment))
        wait_for(lambda: pathlib.Path(f"{typed}.ready").exists(), "the terminal")
        wait_for(lambda: self.focused(program), f"{program} has the keyboard")
        return typed

    def focused(self, program):
        import json

        def walk(node):
            if node.get("focused"):
                return node
            return next((found for child in node.get("nodes", []) + node.get("floating_nodes", [])
                         if (found := walk(child))), None)

        node = walk(json.loads(self.command("-t", "get_tree", "--raw"))) or {}
        return program in (node.get("app_id"), (node.get("window_properties") or {}).get("instance"))

    def full_screen_terminal(self):
        typed = self.terminal(options=["--fullscreen", "-o", "colors.background=102040"])
        wait_for(lambda: set(self.pixels(4, 700, 4, 4)) | set(self.pixels(1270, 4, 4, 4)) <= {b"\x10\x20\x40"},
                 "a terminal over the whole screen")
        return typed

    def type(self, text):
        """On the keyboard that the program has added, as there is no other. A keyboard that comes later would have the
        compositor give the focus back to a managed window."""
        self.node.send({"action": "remote_control", "command": "", "type": "keyboard_text", "text": text})

    def wait_typed(self, typed, text):
        def found():
            return typed.read_bytes().decode(errors="replace") if typed.exists() else ""

        try:
            wait_for(lambda: found() == text, "the text in the terminal")
        except AssertionError as error:
            raise AssertionError(f"{error}: {found()!r} instead of {text!r}") from None
