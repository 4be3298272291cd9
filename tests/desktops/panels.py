"""The panels of a call over everything else, on one window manager: panels.py MANAGER [test...]"""

import pathlib
import sys

sys.path[:0] = [str(pathlib.Path(__file__).parent), str(pathlib.Path(__file__).parents[1] / "app")]

from support import run, wait_for
from window_managers import (BLUE, BUTTON, DesktopTest, GREEN, active_window, buttons, main, pixels, states,
                             words)


class Panels(DesktopTest):
    def accept_button(self):
        """Where the green button is on the screen, right of the green picture."""
        x, y, width, height = 880, 0, 400, 180
        hits = [at for at, pixel in enumerate(pixels(x, y, width, height)) if pixel in GREEN]
        columns, rows = [at % width for at in hits], [at // width for at in hits]
        return x + max(columns) - 15, y + (min(rows) + max(rows)) // 2

    def banner(self):
        """A banner of the program's own, since there is no notification service here."""
        self.node.send({"app": "Chat", "title": "Ada", "body": "See you at seven?", "key": "k1"})
        window = wait_for(lambda: words("xdotool", "search", "--onlyvisible", "--name", "^Chat$").split(), "the banner")[0]
        wait_for(lambda: sum(pixel in BLUE for pixel in pixels(880, 0, 400, 300)) > BUTTON, "the banner on the screen")
        return window

    def reply_field(self):
        """Left of the Send button of a banner."""
        rows = [at // 400 for at, pixel in enumerate(pixels(880, 0, 400, 300)) if pixel in BLUE]
        return "1010", str((min(rows) + max(rows)) // 2)

    def test_a_ringing_panel_is_seen_on_every_workspace(self):
        self.ring()
        self.assert_ringing_seen("on the first workspace")
        self.picture("ringing")
        for workspace in (1, 3, 2, 0):
            self.go_to(workspace)
            self.assert_ringing_seen(f"on workspace {workspace}")

    def test_a_panel_that_comes_on_another_workspace_is_seen_there_and_on_the_first(self):
        self.go_to(2)
        self.ring()
        self.assert_ringing_seen("on workspace 2")
        self.go_to(0)
        self.assert_ringing_seen("on the first workspace")

    def test_a_panel_comes_up_over_a_full_screen_window_and_leaves_it_the_keyboard(self):
        terminal, typed = self.full_screen_terminal()
        self.ring()
        self.assert_ringing_seen("over a full-screen window")
        self.picture("full-screen")
        self.assertEqual(active_window(), terminal)
        self.type_line("on and on", typed)
        self.assert_ringing_seen("still over the full-screen window")

    def test_a_panel_stays_over_a_window_that_becomes_full_screen_later(self):
        self.ring()
        self.assert_ringing_seen("at first")
        terminal, _ = self.full_screen_terminal()
        self.assert_ringing_seen("over the full-screen window")
        self.go_to(1)
        self.assert_ringing_seen("on another workspace")
        self.go_to(0)
        self.assert_ringing_seen("back on the first")
        self.assertEqual(active_window(), terminal)

    def test_a_panel_is_seen_while_the_main_window_is_inactive_or_minimised(self):
        self.tray.choose("Info…")
        main = wait_for(self.managed_windows, "the main window")[0]
        _, typed = self.terminal("-geometry", "40x10+20+500")
        self.ring()
        self.assert_ringing_seen("beside the inactive main window")
        if self.manager != "i3":
            run("xdotool", "windowminimize", str(main))
            wait_for(lambda: "IconicState" in words("xwininfo", "-id", str(main), "-wm") or
                     "IsUnMapped" in words("xwininfo", "-id", str(main)) or "_NET_WM_STATE_HIDDEN" in states(main),
                     "the main window is minimised")
        self.assert_ringing_seen("beside the minimised main window")
        self.type_line("mine", typed)

    def test_a_panel_is_no_entry_of_a_taskbar(self):
        self.ring()
        self.assert_ringing_seen("it is there")
        for window in self.managed_windows():
            self.assertLessEqual({"_NET_WM_STATE_SKIP_TASKBAR", "_NET_WM_STATE_SKIP_PAGER"}, states(window))

    def test_the_user_moves_a_panel_by_its_background(self):
        self.ring()
        self.assert_ringing_seen("it is there")
        x, y = self.accept_button()
        start = (x - 130, y - 28)
        run("xdotool", "mousemove", *map(str, start), "mousedown", "1")
        for step in range(1, 11):
            run("xdotool", "mousemove", str(start[0] - 40 * step), str(start[1] + 30 * step), "sleep", "0.03")
        run("xdotool", "mouseup", "1")
        self.assert_seen((0, 0), "the old place")
        wait_for(lambda: buttons(420, 240, 480, 260) == (1, 1), "the panel where the pointer took it")
        self.picture("moved")

    def test_the_second_click_of_a_double_click_does_not_hang_up(self):
        self.ring()
        self.assert_ringing_seen("it is there")
        button = [*map(str, self.accept_button())]
        run("xdotool", "mousemove", *button, "click", "1", "sleep", "0.18", "click", "1")
        self.node.wait_message("answer_call")
        # A button under the pointer has another colour.
        run("xdotool", "mousemove", "400", "600")
        self.assert_seen((0, 1), "the panel of the call")
        self.assertNotIn("hangup_call", [each.get("action") for each in self.node.messages()])
        run("xdotool", "mousemove", *button, "sleep", "0.6", "click", "1")
        self.node.wait_message("hangup_call")

    def test_a_banner_leaves_the_place_of_a_panel_free(self):
        self.ring()
        self.assert_ringing_seen("it is there")
        self.banner()
        self.assert_ringing_seen("with a banner below it")
        self.picture("banner")

    def test_a_banner_that_was_there_first_makes_room(self):
        _, typed = self.full_screen_terminal()
        self.banner()
        self.picture("banner-full-screen")
        self.ring()
        self.assert_ringing_seen("above the banner")
        self.type_line("still here", typed)

    def test_an_answer_is_typed_into_a_banner_over_a_full_screen_window(self):
        self.full_screen_terminal()
        window = self.banner()
        run("xdotool", "mousemove", *self.reply_field(), "click", "1")
        wait_for(lambda: words("xdotool", "getwindowfocus").strip() == window, "the banner has the keyboard")
        run("xdotool", "type", "--delay", "20", "On my way")
        run("xdotool", "key", "Return")
        self.assertEqual(self.node.wait_message("reply"), {"action": "reply", "key": "k1", "message": "On my way"})

    def test_a_reply_panel_takes_the_keyboard_over_a_full_screen_window(self):
        service = self.use_notification_service(["body", "actions"])
        self.full_screen_terminal()
        self.node.send({"app": "Chat", "title": "Ada", "body": "See you at seven?", "key": "k1"})
        shown = service.wait_shown("Chat")
        service.ActionInvoked(shown["id"], next(key for key in shown["actions"] if key != "default"))
        panel = wait_for(self.managed_windows, "the reply panel")[0]
        wait_for(lambda: active_window() == panel, "the reply panel has the keyboard")
        # Of its Send button.
        wait_for(lambda: sum(pixel in BLUE for pixel in pixels(880, 0, 400, 240)) > BUTTON, "the panel on the screen")
        self.picture("reply")
        run("xdotool", "type", "--delay", "20", "On my way")
        run("xdotool", "key", "Return")
        self.assertEqual(self.node.wait_message("reply"), {"action": "reply", "key": "k1", "message": "On my way"})


if __name__ == "__main__":
    main(Panels)
