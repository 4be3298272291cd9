"""The menu window on a desktop without a tray, and the clipboard of a program that hangs."""

import os
import signal
import subprocess
import time
import unittest

os.environ["QT_LINUX_ACCESSIBILITY_ALWAYS_ON"] = "1"

from accessible import Tree, start_accessibility
from support import TIMEOUT, AppTest, run, visible_windows, wait_for

# Each row that opens a tab, its key, and a part by which the tab is known.
TABS = [("Call…", "c", "Dial pad"), ("Send SMS…", "s", "Refresh"), ("File Drop…", "f", "Send Files..."),
        ("Notifications…", "y", "Clear All"), ("Remote Control…", "r", "App Menu"),
        ("Clipboard History…", "h", "Send Current Mac Clipboard"), ("Settings…", "comma", "Port"),
        ("Info…", "i", "Developer")]

# What a program waits for the owner of the clipboard, in seconds.
OWNER_TIMEOUT = 5


def picture(window):
    return subprocess.run(["import", "-silent", "-window", str(window), "rgb:-"], capture_output=True, check=True,
                          timeout=TIMEOUT).stdout


def picture_at_rest(window):
    """Once it has been the same for a while."""
    before = picture(window)
    since = time.monotonic()

    def is_calm():
        nonlocal before, since
        now = picture(window)
        if now != before:
            before, since = now, time.monotonic()
        return time.monotonic() - since > 0.5

    wait_for(is_calm, "a window at rest")
    return before


class Trayless(AppTest):
    @classmethod
    def setUpClass(cls):
        start_accessibility(cls)

    def setUp(self):
        self.use_notification_service(["body", "actions"])
        self.app = self.start_app().wait_listening()
        self.node = self.start_node(self.app.port)
        self.menu = wait_for(lambda: visible_windows(self.app.pid), "the menu window").pop()
        self.tree = Tree(self.app.pid)

    def focus_menu(self):
        run("xdotool", "windowfocus", "--sync", str(self.menu))

    def main_window(self):
        return wait_for(lambda: visible_windows(self.app.pid) - {self.menu}, "the main window").pop()

    def test_every_row_opens_its_tab(self):
        for row, _, known in TABS:
            self.tree.press(row, "push button")
            self.tree.wait(known)
        self.assertEqual(len(visible_windows(self.app.pid)), 2)

    def test_every_key_opens_its_tab(self):
        for _, key, known in TABS:
            self.focus_menu()
            run("xdotool", "key", f"ctrl+{key}")
            self.tree.wait(known)

    def test_the_clipboard_is_sent(self):
        self.copy("from the menu window")
        self.tree.press("Send Clipboard", "push button")
        self.assertEqual(self.node.wait_message("clipboard")["text"], "from the menu window")
        self.assertEqual(visible_windows(self.app.pid), {self.menu})

    def test_quit_ends_the_program(self):
        self.focus_menu()
        run("xdotool", "key", "ctrl+q")
        self.assertEqual(self.app.wait_end(), 0)

    def test_a_clipboard_whose_owner_hangs_holds_no_window_up(self):
        self.tree.press("Info…", "push button")
        self.tree.wait("Developer")
        window = self.main_window()
        os.kill(self.copy("never handed over").pid, signal.SIGSTOP)

        def seconds_to_draw(key, known):
            before = picture_at_rest(window)
            self.focus_menu()
            asked = time.monotonic()
            run("xdotool", "key", "ctrl+v", "key", f"ctrl+{key}")
            wait_for(lambda: picture(window) != before, "another tab")
            taken = time.monotonic() - asked
            self.tree.wait(known)
            return taken

        # A busy machine may be slow once; a window that waits for the clipboard is so every time.
        times = [seconds_to_draw(*tab) for tab in [("r", "App Menu"), ("i", "Developer")] * 2]
        self.assertLess(min(times), OWNER_TIMEOUT - 1, times)
        self.assertNotIn("clipboard", [each["action"] for each in self.node.messages()])


if __name__ == "__main__":
    unittest.main()
