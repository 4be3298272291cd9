"""Panels and banners over everything else on a wlroots compositor: sway_panels.py [test...]"""

import pathlib
import sys
import unittest

sys.path[:0] = [str(pathlib.Path(__file__).parent), str(pathlib.Path(__file__).parents[1] / "app")]

from support import APP, Process
from wlroots import BLUE, GREEN, WlrootsTest, missing, wait_for


class Panels(WlrootsTest):
    def test_a_panel_comes_up_over_a_full_screen_window_and_leaves_it_the_keyboard(self):
        typed = self.full_screen_terminal()
        self.ring()
        self.assert_ringing_seen("over a full-screen window")
        self.picture("ringing")
        self.assertTrue(self.focused("foot"))
        self.type("on and on")
        self.wait_typed(typed, "on and on")

    def test_a_panel_is_seen_on_every_workspace_and_in_no_taskbar(self):
        self.ring()
        self.assert_ringing_seen("on the first workspace")
        self.command("workspace", "2")
        self.assert_ringing_seen("on the second workspace")
        self.assertEqual(self.windows(), [])
        self.full_screen_terminal()
        self.assert_ringing_seen("over a window that became full-screen later")

    def test_the_buttons_of_a_panel_work(self):
        typed = self.full_screen_terminal()
        self.ring()
        self.assert_ringing_seen("it is there")
        self.click(*self.button_of(GREEN))
        self.node.wait_message("answer_call")
        self.type("mine")
        self.wait_typed(typed, "mine")

    def test_a_reply_panel_takes_the_keyboard_over_a_full_screen_window_and_gives_it_back(self):
        typed = self.full_screen_terminal()
        self.node.send({"app": "Chat", "title": "Ada", "body": "See you at seven?", "key": "k1"})
        shown = self.service.wait_shown("Chat")
        self.service.ActionInvoked(shown["id"], next(key for key in shown["actions"] if key != "default"))
        self.wait_blue("the panel on the screen")
        self.picture("reply")
        self.type("On my way\n")
        self.assertEqual(self.node.wait_message("reply"), {"action": "reply", "key": "k1", "message": "On my way"})
        wait_for(lambda: self.focused("foot"), "the terminal has the keyboard")
        self.type("back")
        self.wait_typed(typed, "back")


class Starts(WlrootsTest):
    def test_a_second_start_marks_the_main_window_beside_another_one(self):
        """A user who wants the keyboard to follow tells the compositor so."""
        self.tray.choose("Info…")
        wait_for(lambda: self.focused("velloway"), "the main window")
        launcher = self.start(Process("/usr/bin/python3", str(pathlib.Path(__file__).parent / "other_window.py"),
                                      "maximized", env=self.environment | {"GDK_BACKEND": "wayland"}))
        launcher.wait_line("^focus in$")
        launcher.write("")
        token = launcher.wait_line("^token ").removeprefix("token ")
        self.assertFalse(self.is_marked())
        second = self.start(Process(APP, env=self.environment | {"XDG_ACTIVATION_TOKEN": token}))
        self.assertEqual(second.wait_end(), 0)
        wait_for(self.is_marked, "the mark")
        self.command("focus_on_window_activation", "focus")
        self.assertEqual(self.start(Process(APP, env=self.environment)).wait_end(), 0)
        wait_for(lambda: self.focused("velloway"), "the main window has the keyboard")

    def is_marked(self):
        return '"urgent": true' in self.command("-t", "get_tree", "--raw")


class Banners(WlrootsTest):
    """Without a notification service, the program shows what arrives itself."""

    service_capabilities = None

    def test_a_banner_leaves_the_keyboard_alone_until_it_is_clicked(self):
        typed = self.full_screen_terminal()
        self.node.send({"app": "Chat", "title": "Ada", "body": "See you at seven?", "key": "k1"})
        self.wait_blue("the banner on the screen")
        self.type("mine")
        self.wait_typed(typed, "mine")
        x, y = self.button_of(BLUE)
        self.click(x - 200, y)
        self.picture("banner")
        self.type("On my way\n")
        self.assertEqual(self.node.wait_message("reply"), {"action": "reply", "key": "k1", "message": "On my way"})
        self.type(" again")
        self.wait_typed(typed, "mine again")


if __name__ == "__main__":
    if lacking := missing():
        print(f"skipped: {', '.join(lacking)} not installed")
        sys.exit(77)
    unittest.main(verbosity=2)
