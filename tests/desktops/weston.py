"""The program on a compositor that hides its clipboard from programs without the keyboard: weston.py [test...]"""

import os
import pathlib
import shutil
import sys
import unittest

sys.path[:0] = [str(pathlib.Path(__file__).parent), str(pathlib.Path(__file__).parents[1] / "app")]

from support import App, AppTest, Process, free_port, wait_for


class HiddenClipboard(AppTest):
    def setUp(self):
        plain = {key: text for key, text in os.environ.items() if key not in ("DISPLAY", "QT_QPA_PLATFORM")}
        self.start(Process("weston", "--backend=headless-backend.so", "--socket=wayland-test", "--no-config", env=plain))
        wait_for((pathlib.Path(os.environ["XDG_RUNTIME_DIR"]) / "wayland-test").exists, "the compositor's socket")
        self.tray = self.use_tray()
        self.service = self.use_notification_service(["body", "actions"])
        environment = plain | {"WAYLAND_DISPLAY": "wayland-test", "QT_QPA_PLATFORM": "wayland"}
        self.app = self.start(App(free_port(), env=environment)).wait_listening()
        self.node = self.start_node(self.app.port)

    def test_the_banner_of_a_text_that_did_not_get_there_is_put_right(self):
        self.node.send({"action": "clipboard", "text": "from the phone"})
        shown = self.service.wait_shown("Clipboard Not Synced")
        self.assertIn("Clipboard tab", shown["body"])
        self.assertEqual(len(self.service.shown), 2)

    def test_what_cannot_be_read_is_not_sent_and_the_user_is_told(self):
        self.node.send({"action": "clipboard", "text": "from the phone"})
        self.service.wait_shown("Clipboard Not Synced")
        self.tray.choose("Send Clipboard")
        self.service.wait_shown("Clipboard Not Sent")
        self.assertEqual([each["action"] for each in self.node.messages()], ["connected"])


if __name__ == "__main__":
    if not shutil.which("weston"):
        print("skipped: weston not installed")
        sys.exit(77)
    unittest.main(verbosity=2)
