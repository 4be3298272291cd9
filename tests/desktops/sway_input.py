"""What the phone types and points at, in other programs on a wlroots compositor: sway_input.py [test...]"""

import os
import pathlib
import re
import sys
import time
import unittest

sys.path[:0] = [str(pathlib.Path(__file__).parent), str(pathlib.Path(__file__).parents[1] / "app")]

from wlroots import WlrootsTest, missing, wait_for

SAMPLE = "Grüße, naïve Señor! 100 € (\"AbC\") ÄÖÜß 你好世界日本語 שלום Привет 👍🏽 😀"
# More different characters than one keymap has keys.
MANY = "".join(chr(0x4E00 + at) for at in range(400))


class Input(WlrootsTest):
    def remote(self, **message):
        self.node.send({"action": "remote_control", "command": "", **message})

    def test_text_arrives_exactly_in_a_wayland_program(self):
        typed = self.terminal()
        for count in range(1, 4):
            self.type(SAMPLE)
            self.wait_typed(typed, SAMPLE * count)
        self.picture("text")

    def test_many_different_characters_arrive_exactly(self):
        typed = self.terminal()
        start = time.monotonic()
        self.type(MANY)
        self.wait_typed(typed, MANY)
        print(f"{len(MANY)} different characters: {time.monotonic() - start:.2f} s")

    def test_text_arrives_exactly_in_a_program_on_the_x_server(self):
        typed = self.terminal(program="xterm", options=["-u8"])
        for count in range(1, 4):
            self.type(SAMPLE)
            self.wait_typed(typed, SAMPLE * count)

    def test_keys_arrive_with_their_modifiers(self):
        typed = self.terminal()
        self.remote(command="key_left")
        self.remote(command="ctrl+shift_key_right")
        self.remote(command="key_return")
        self.type("x")
        self.remote(command="option_key_up")
        self.wait_typed(typed, "\x1b[D\x1b[1;6C\rx\x1b[1;3A")

    def test_keys_reach_the_shortcuts_of_the_compositor(self):
        bound = pathlib.Path(os.environ["HOME"]) / "bound"
        bound.unlink(missing_ok=True)
        self.remote(command="cmd+shift_key_left")
        wait_for(bound.exists, "the shortcut")

    def test_the_pointer_moves_and_clicks(self):
        """Seen by a program in pixels of its window."""
        typed = self.terminal("printf '\\033[?1003h\\033[?1016h';", 'exec cat >"$1"',
                              options=["--fullscreen", "-o", "pad=0x0"])

        def events():
            return [(int(code), int(x), int(y), end) for code, x, y, end in
                    re.findall(rb"\x1b\[<(\d+);(\d+);(\d+)([Mm])", typed.read_bytes())]

        def wait_event(code, end, what):
            return wait_for(lambda: next((each for each in reversed(events()) if each[0] == code and each[3] == end), None),
                            what)

        motion, left, right = 35, 0, 2
        self.remote(type="mouse_move", dx=-5000, dy=-5000)
        self.remote(type="mouse_move", dx=100, dy=50)
        _, x, y, _ = wait_event(motion, b"M", "a motion")
        wait_for(lambda: events()[-1][1:3] == (101, 51) or events()[-1][1:3] == (100, 50), f"the place, not {events()}")
        x, y = events()[-1][1:3]
        for _ in range(4):
            self.remote(type="mouse_move", dx=0.5, dy=-0.25)
        wait_for(lambda: events()[-1][1:3] == (x + 2, y - 1), f"the fractions add up: {events()[-3:]}")
        self.remote(type="mouse_click", button="right")
        wait_event(right, b"m", "a right click")
        self.remote(type="mouse_click")
        wait_event(left, b"m", "a left click")
        clicks = [each for each in events() if each[0] in (left, right)]
        self.assertEqual([(code, end) for code, _, _, end in clicks],
                         [(right, b"M"), (right, b"m"), (left, b"M"), (left, b"m")])


if __name__ == "__main__":
    if lacking := missing():
        print(f"skipped: {', '.join(lacking)} not installed")
        sys.exit(77)
    unittest.main(verbosity=2)
