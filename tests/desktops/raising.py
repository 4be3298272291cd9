"""Whether the main window comes up wherever it is, on one window manager: raising.py MANAGER [test...]"""

import os
import pathlib
import re
import sys

sys.path[:0] = [str(pathlib.Path(__file__).parent), str(pathlib.Path(__file__).parents[1] / "app")]

from support import APP, Process, run, wait_for
from window_managers import DesktopTest, active_window, main, pixels, states, words

OTHER_WINDOW = str(pathlib.Path(__file__).parent / "other_window.py")


class Raising(DesktopTest):
    def setUp(self):
        super().setUp()
        self.tray.choose("Info…")
        self.main = wait_for(self.managed_windows, "the main window")[0]
        self.wait_front("at first")

    def wait_front(self, what):
        """The user sees it and types into it."""
        wait_for(lambda: active_window() == self.main and "IsViewable" in words("xwininfo", "-id", str(self.main)),
                 f"{what}: the main window in front")
        # The Info tab has nothing but the window's own colours where the terminal was dark blue.
        wait_for(lambda: b"\x10\x20\x40" not in pixels(*self.middle(), 4, 4), f"{what}: nothing covers its middle")

    def middle(self):
        place = words("xwininfo", "-id", str(self.main))
        x, y, width, height = (int(re.search(rf"{key}:\s+(-?\d+)", place)[1]) for key in
                               ("Absolute upper-left X", "Absolute upper-left Y", "Width", "Height"))
        return x + width // 2, y + height // 2

    def second_start(self):
        self.assertEqual(self.start(Process(APP)).wait_end(), 0)

    def choose_again(self):
        self.tray.choose("Info…")

    def each_way(self, hide, what):
        for ask in (self.second_start, self.choose_again):
            hide()
            ask()
            self.wait_front(f"{what}, {ask.__name__}")

    def test_a_minimised_window_comes_up(self):
        if self.manager == "i3":
            self.skipTest("this one minimises nothing")

        def minimise():
            run("xdotool", "windowminimize", str(self.main))
            wait_for(lambda: "IsViewable" not in words("xwininfo", "-id", str(self.main)) or
                     "_NET_WM_STATE_HIDDEN" in states(self.main), "the window is minimised")
            # Somebody has used another window since.
            self.terminal("-geometry", "40x10+20+500")

        self.each_way(minimise, "minimised")

    def test_a_covered_window_comes_up(self):
        if self.manager == "i3":
            self.skipTest("this one covers nothing but by a full-screen window, which it keeps above")
        self.each_way(lambda: self.terminal("-geometry", "200x60+0+0", "-bg", "#102040"), "covered")

    def test_a_second_start_by_a_launcher_with_its_token_raises_a_covered_window(self):
        if self.manager == "i3":
            self.skipTest("this one covers nothing but by a full-screen window, which it keeps above")
        launcher = self.start(Process("/usr/bin/python3", OTHER_WINDOW, "maximized"))
        launcher.wait_line("^focus in$")
        wait_for(lambda: b"\x10\x20\x40" in pixels(*self.middle(), 4, 4), "the launcher covers the window")
        launcher.write("")
        token = launcher.wait_line("^token ").removeprefix("token ")
        self.assertIn("_TIME", token)
        second = self.start(Process(APP, env=os.environ | {"DESKTOP_STARTUP_ID": token}))
        self.assertEqual(second.wait_end(), 0)
        self.wait_front("by a token")

    def test_a_window_of_another_workspace_comes_up(self):
        others = iter((2, 1))

        def leave():
            # The window may have come along the last time.
            self.go_to(next(others))
            wait_for(lambda: "IsViewable" not in words("xwininfo", "-id", str(self.main)), "the window is out of sight")

        self.each_way(leave, "on another workspace")
        self.picture("raised")


main(Raising)
