"""The program on a wlroots compositor without a screen: sway.py [test...]"""

import json
import os
import pathlib
import shutil
import subprocess
import sys
import unittest

sys.path[:0] = [str(pathlib.Path(__file__).parent), str(pathlib.Path(__file__).parents[1] / "app")]

from support import APP, App, AppTest, TIMEOUT, Process, SCREENSHOTS, free_port, run, wait_for

CONFIG = """
xwayland disable
output HEADLESS-1 resolution 1280x800
"""


def wayland_sockets():
    return [path for path in pathlib.Path(os.environ["XDG_RUNTIME_DIR"]).glob("wayland-*") if path.suffix != ".lock"]


class SwayTest(AppTest):
    """Starts the compositor, the program on it and a phone. Nothing of the program is on screen."""

    def setUp(self):
        config = pathlib.Path(os.environ["HOME"]) / "sway.conf"
        config.write_text(CONFIG)
        for left_over in wayland_sockets():
            left_over.unlink()
        plain = {key: text for key, text in os.environ.items() if key not in ("DISPLAY", "QT_QPA_PLATFORM")}
        # It does not run as root; files keep their owner in a namespace of its own.
        another_user = ["unshare", "--user", "--map-user=1000"] if os.geteuid() == 0 else []
        self.sway = self.start(Process(*another_user, "sway", "--unsupported-gpu", "--config", str(config), env=plain | {
            "WLR_BACKENDS": "headless", "WLR_LIBINPUT_NO_DEVICES": "1", "WLR_RENDERER": "pixman"}))
        socket_name = wait_for(wayland_sockets, "the compositor's socket")[0].name
        self.environment = plain | {"WAYLAND_DISPLAY": socket_name, "QT_QPA_PLATFORM": "wayland",
                                    "SWAYSOCK": str(wait_for(self.ipc_socket, "the compositor's command socket"))}
        self.tray = self.use_tray()
        self.service = self.use_notification_service(["body", "actions"])
        self.app = self.start(App(free_port(), env=self.environment)).wait_listening()
        self.node = self.start_node(self.app.port)

    def ipc_socket(self):
        return next(iter(pathlib.Path(os.environ["XDG_RUNTIME_DIR"]).glob(f"sway-ipc.*.{self.sway.pid}.sock")), None)

    def command(self, *words):
        return run("swaymsg", *words, env=self.environment)

    def picture(self, name):
        SCREENSHOTS.mkdir(parents=True, exist_ok=True)
        run("grim", str(SCREENSHOTS / f"desktops-sway-{name}.png"), env=self.environment)

    def windows(self):
        """Of the program: (title, whether it has the keyboard, whether its workspace is shown)."""
        found = []

        def walk(node, shown):
            shown = node.get("visible", shown) if node.get("pid") else shown
            if node.get("pid") == self.app.pid:
                found.append((node["name"], node["focused"], shown))
            for child in node.get("nodes", []) + node.get("floating_nodes", []):
                walk(child, shown)

        walk(json.loads(self.command("-t", "get_tree", "--raw")), False)
        return found

    def copied(self, text, *options):
        """Another program owns the clipboard, as long as somebody can ask it."""
        owner = self.start(Process("wl-copy", "--foreground", *options, env=self.environment))
        owner.process.stdin.write(text)
        owner.process.stdin.close()
        return owner

    def pasted(self):
        found = subprocess.run(["wl-paste", "--no-newline"], env=self.environment, capture_output=True,
                               timeout=TIMEOUT)
        return found.stdout.decode() if found.returncode == 0 else None

    def types(self):
        return subprocess.run(["wl-paste", "--list-types"], env=self.environment, capture_output=True, text=True,
                              timeout=TIMEOUT).stdout.split()

    def wait_pasted(self, text):
        wait_for(lambda: self.pasted() == text, f"{text[:60]!r} on the clipboard")

    def texts(self):
        return [each["text"] for each in self.node.messages() if each["action"] == "clipboard"]

    def wait_texts(self, *texts):
        wait_for(lambda: self.texts() == [*texts], "the phone gets the texts")


class Clipboard(SwayTest):
    def test_a_text_from_the_phone_is_pasted_by_another_program(self):
        for text in ("Code for the door: 4417", "Grüße\nin zwei Zeilen 日本 🚲\n", "x" * 3_000_000):
            self.node.send({"action": "clipboard", "text": text})
            self.wait_pasted(text)
        wait_for(lambda: [each["summary"] for each in self.service.shown] == ["Clipboard Synced"] * 3, "the banners")
        self.assertEqual(self.windows(), [])

    def test_an_empty_text_from_the_phone_empties_the_clipboard(self):
        self.copied("before")
        self.wait_pasted("before")
        self.node.send({"action": "clipboard", "text": ""})
        self.service.wait_shown("Clipboard Synced")
        wait_for(lambda: not self.pasted(), "nothing on the clipboard")

    def test_what_another_program_has_copied_reaches_the_phone_and_never_what_it_had_before(self):
        sent = []
        for text in ("one", "two\nlines / 日本 🚲", "y" * 2_000_000):
            self.copied(text)
            self.wait_pasted(text)
            self.tray.choose("Send Clipboard")
            sent.append(text)
            self.wait_texts(*sent)
        self.assertEqual(self.windows(), [])
        self.assertEqual(self.service.shown, [])

    def test_a_text_from_the_phone_can_go_back_and_gives_way_to_another_program(self):
        self.node.send({"action": "clipboard", "text": "from the phone"})
        self.wait_pasted("from the phone")
        self.tray.choose("Send Clipboard")
        self.wait_texts("from the phone")
        self.copied("from the computer")
        self.wait_pasted("from the computer")
        self.tray.choose("Send Clipboard")
        self.wait_texts("from the phone", "from the computer")

    def test_pictures_are_not_sent(self):
        self.copied("no real picture", "--type", "image/png")
        wait_for(lambda: self.types() == ["image/png"], "the picture")
        self.tray.choose("Send Clipboard")
        self.copied("a text")
        self.wait_pasted("a text")
        self.tray.choose("Send Clipboard")
        self.wait_texts("a text")

    def test_an_owner_that_ends_without_handing_its_text_over_sends_nothing(self):
        owner = self.copied("gone")
        self.wait_pasted("gone")
        owner.stop()
        self.tray.choose("Send Clipboard")
        self.copied("next")
        self.wait_pasted("next")
        self.tray.choose("Send Clipboard")
        self.wait_texts("next")


class Raising(SwayTest):
    def test_a_second_start_shows_the_window_of_another_workspace(self):
        self.tray.choose("Info…")
        wait_for(lambda: [each[1:] for each in self.windows()] == [(True, True)], "the main window")
        self.picture("main-window")
        self.command("workspace", "2")
        wait_for(lambda: [each[1:] for each in self.windows()] == [(False, False)], "the window is out of sight")
        second = self.start(Process(APP, env=self.environment))
        self.assertEqual(second.wait_end(), 0)
        wait_for(lambda: [each[1:] for each in self.windows()] == [(True, True)], "the window comes to the user")


if __name__ == "__main__":
    if missing := [each for each in ("sway", "swaymsg", "wl-copy", "wl-paste") if not shutil.which(each)]:
        print(f"skipped: {', '.join(missing)} not installed")
        sys.exit(77)
    unittest.main(verbosity=2)
