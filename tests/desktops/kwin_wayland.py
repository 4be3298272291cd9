"""The program on a Wayland session of KWin without a screen: kwin_wayland.py [test...]"""

import pathlib
import subprocess
import sys
import unittest

sys.path[:0] = [str(pathlib.Path(__file__).parent), str(pathlib.Path(__file__).parents[1] / "app")]

from kwin import DARK, KwinTest, WIDTH, missing
from support import APP, TIMEOUT, Process, stays, wait_for
from window_managers import BLUE, GREEN

MAIN = "Velloway Settings"


class Panels(KwinTest):
    def test_a_panel_comes_up_over_a_full_screen_window_and_leaves_it_the_keyboard(self):
        window = self.other_window()
        self.ring()
        wait_for(lambda: self.buttons() == (1, 1), "the two buttons")
        stays(lambda: self.buttons() == (1, 1), "the two buttons", 1)
        self.picture("ringing")
        self.input.type("mine")
        wait_for(lambda: self.typed(window) == "mine", f"the letters, not {self.typed(window)!r}")
        self.assertEqual([line for line in window.lines if line.startswith("focus")], ["focus in"])

    def test_the_buttons_of_a_panel_work(self):
        window = self.other_window()
        self.ring()
        wait_for(lambda: self.buttons() == (1, 1), "the two buttons")
        self.input.click(*self.button_of(GREEN))
        self.node.wait_message("answer_call")
        self.input.type("mine")
        wait_for(lambda: self.typed(window) == "mine", f"the letters, not {self.typed(window)!r}")

    def test_a_reply_panel_takes_the_keyboard_over_a_full_screen_window_and_gives_it_back(self):
        window = self.other_window()
        self.node.send({"app": "Chat", "title": "Ada", "body": "See you at seven?", "key": "k1"})
        shown = self.service.wait_shown("Chat")
        self.service.ActionInvoked(shown["id"], next(key for key in shown["actions"] if key != "default"))
        self.wait_color(BLUE, "the panel on the screen")
        wait_for(lambda: window.lines[-1] == "focus out", "the panel has the keyboard")
        self.picture("reply")
        self.input.type("On my way\n")
        self.assertEqual(self.node.wait_message("reply"), {"action": "reply", "key": "k1", "message": "On my way"})
        wait_for(lambda: window.lines[-1] == "focus in", "the other window has the keyboard again")
        self.input.type("back")
        wait_for(lambda: self.typed(window) == "back", f"the letters, not {self.typed(window)!r}")


class Banners(KwinTest):
    """Without a notification service, the program shows what arrives itself."""

    service_capabilities = None

    def test_a_banner_leaves_the_keyboard_alone_and_closes_by_a_click(self):
        window = self.other_window()
        self.node.send({"app": "Chat", "title": "Ada", "body": "See you at seven?", "key": "k1"})
        self.wait_color(BLUE, "the banner on the screen")
        self.picture("banner")
        self.input.type("mine")
        wait_for(lambda: self.typed(window) == "mine", f"the letters, not {self.typed(window)!r}")
        x, _ = self.button_of(BLUE)
        self.input.click(x + 5, 44)
        wait_for(lambda: set(self.pixels(WIDTH - 400, 0, 400, 180)) == {DARK}, "the banner is gone")

    def test_an_answer_is_typed_into_a_banner_over_a_full_screen_window(self):
        window = self.other_window()
        self.node.send({"app": "Chat", "title": "Ada", "body": "See you at seven?", "key": "k1"})
        self.wait_color(BLUE, "the banner on the screen")
        x, y = self.button_of(BLUE)
        self.input.click(x - 200, y)
        wait_for(lambda: window.lines[-1] == "focus out", "the banner has the keyboard")
        stays(lambda: window.lines[-1] == "focus out", "the banner has the keyboard", 0.5)
        self.picture("banner-clicked")
        self.input.type("On my way\n")
        self.assertEqual(self.node.wait_message("reply"), {"action": "reply", "key": "k1", "message": "On my way"})
        self.assertEqual(self.typed(window), "")


class Windows(KwinTest):
    """The main window comes up by a second start and by the tray's menu."""

    def setUp(self):
        super().setUp()
        wait_for(lambda: (self.tray.status() or "").startswith("Server: "), "the program in the tray")
        self.tray.choose("Info…")
        self.wait_open()

    def second_start(self, **tokens):
        second = self.start(Process(APP, env=self.app_environment | tokens))
        self.assertEqual(second.wait_end(), 0)

    def wait_open(self):
        wait_for(lambda: self.active_x11_window() == MAIN, "the main window has the keyboard")

    def wait_front(self, window):
        wait_for(lambda: window.lines[-1] == "focus out", "the other window loses the keyboard")
        self.wait_open()
        wait_for(lambda: DARK not in self.pixels(600, 340, 80, 40), "nothing covers it")

    def test_a_second_start_raises_a_covered_window(self):
        window = self.other_window()
        self.second_start()
        self.wait_front(window)
        self.picture("raised")

    def test_a_second_start_by_a_launcher_with_its_token_raises_a_covered_window(self):
        window = self.other_window()
        self.second_start(XDG_ACTIVATION_TOKEN=self.token(window))
        self.wait_front(window)

    def test_a_choice_in_the_tray_raises_a_covered_window(self):
        window = self.other_window()
        self.tray.choose("Info…")
        self.wait_front(window)

    def test_a_second_start_raises_a_minimised_window(self):
        subprocess.run(["xdotool", "search", "--name", MAIN, "windowminimize"], env=self.environment, check=True,
                       timeout=TIMEOUT)
        wait_for(lambda: self.active_x11_window() != MAIN, "the window is minimised")
        window = self.other_window()
        self.second_start()
        self.wait_front(window)


class NativeWindows(Windows):
    """The same without the X server, where the token alone can do it without showing the window anew."""

    platform = "wayland"
    test_a_second_start_raises_a_minimised_window = None

    def test_a_token_that_nobody_gave_raises_nothing(self):
        window = self.other_window()
        self.second_start(XDG_ACTIVATION_TOKEN="made-up")
        stays(lambda: window.lines[-1] == "focus in", "the other window has the keyboard", 2)

    def wait_open(self):
        wait_for(lambda: len(set(self.pixels(600, 340, 80, 40)) - {DARK, b"\0\0\0"}) > 0, "the main window is seen")


class Clipboard(KwinTest):
    def copied(self, text):
        """Another program owns the clipboard until the test is over."""
        # Without a type it would ask programs of the desktop that are not there.
        owner = self.start(Process("wl-copy", "--foreground", "--type", "text/plain", env=self.environment))
        owner.process.stdin.write(text)
        owner.process.stdin.close()
        self.wait_pasted(text)

    def pasted(self):
        return subprocess.run(["wl-paste", "--no-newline"], env=self.environment, capture_output=True,
                              timeout=TIMEOUT).stdout.decode()

    def wait_pasted(self, text):
        wait_for(lambda: self.pasted() == text, f"{text[:60]!r} on the clipboard")

    def texts(self):
        return [each["text"] for each in self.node.messages() if each["action"] == "clipboard"]

    def test_a_text_from_the_phone_is_pasted_by_another_program_that_has_the_keyboard(self):
        window = self.other_window()
        for text in ("Code for the door: 4417", "Grüße\nin zwei Zeilen 日本 🚲\n", "x" * 3_000_000):
            self.node.send({"action": "clipboard", "text": text})
            self.wait_pasted(text)
        wait_for(lambda: [each["summary"] for each in self.service.shown] == ["Clipboard Synced"] * 3, "the banners")
        self.assertEqual([line for line in window.lines if line.startswith("focus")], ["focus in"])

    def test_what_another_program_has_copied_reaches_the_phone_and_never_what_it_had_before(self):
        window = self.other_window()
        sent = []
        for text in ("one", "two\nlines / 日本 🚲", "y" * 2_000_000):
            self.copied(text)
            self.tray.choose("Send Clipboard")
            sent.append(text)
            wait_for(lambda: self.texts() == sent, "the phone gets the texts")
        self.assertEqual([line for line in window.lines if line.startswith("focus")], ["focus in"])
        self.assertEqual(self.service.shown, [])


if __name__ == "__main__":
    if lacking := missing():
        print(f"skipped: {', '.join(lacking)} not installed")
        sys.exit(77)
    unittest.main(verbosity=2)
