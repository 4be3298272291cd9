"""The phone drives the pointer and the keyboard of the computer."""

import os
import pathlib
import pty
import subprocess
import unittest

from support import AppTest, TIMEOUT, PHONE, Process, run, visible_windows, wait_for


def pointer():
    place = dict(line.split("=") for line in run("xdotool", "getmouselocation", "--shell").split())
    return int(place["X"]), int(place["Y"])


class Remote(AppTest):
    def setUp(self):
        self.tray = self.use_tray()
        self.app = self.start_app().wait_listening()
        run("xdotool", "mousemove", "400", "300")

    def test_the_pointer_moves_by_what_the_phone_says_and_keeps_fractions(self):
        moves = "; ".join(["move 0.4 0"] * 5 + ["move 30 -20"])
        self.assertEqual(self.start_phone(self.app.port, "--exec", moves).wait_end(), 0)
        wait_for(lambda: pointer() == (432, 280), f"the pointer at (432, 280), not {pointer()}")

    def test_typed_text_and_keys_arrive_in_the_window_that_has_the_keyboard(self):
        typed = pathlib.Path(os.environ["HOME"]) / "typed.txt"
        terminal = self.start(Process("xterm", "-u8", "-e", "sh", "-c", f"head -n 1 > '{typed}'"))
        window = wait_for(lambda: visible_windows(terminal.pid), "the terminal").pop()
        run("xdotool", "windowfocus", "--sync", str(window))
        sender = self.start_phone(self.app.port, "--exec", 'type "grüße/42 x"; remote key_delete; remote key_return')
        self.assertEqual(sender.wait_end(), 0)
        wait_for(lambda: typed.exists() and typed.read_text() == "grüße/42 \n",
                 f"the text; so far {typed.read_text() if typed.exists() else None!r}")

    def test_the_simulated_phone_turns_a_terminal_into_a_touch_pad(self):
        master, slave = pty.openpty()
        self.addCleanup(os.close, master)
        player = subprocess.Popen([PHONE, "--port", str(self.app.port)], stdin=slave, stdout=subprocess.PIPE,
                                  text=True)
        os.close(slave)
        self.addCleanup(player.stdout.close)
        self.addCleanup(player.wait)
        self.addCleanup(player.kill)
        os.write(master, b"touchpad\n")
        for line in player.stdout:
            if "arrows move" in line:
                break
        os.write(master, b"\x1b[C\x1b[B")
        wait_for(lambda: pointer() == (412, 312), "the pointer moved by two arrows")
        os.write(master, b"\x1b")
        for line in player.stdout:
            if "commands again" in line:
                break
        os.write(master, b"move -12 -12\nquit\n")
        wait_for(lambda: pointer() == (400, 300), "the pointer moved by a command")
        player.stdout.read()
        self.assertEqual(player.wait(TIMEOUT), 0)


if __name__ == "__main__":
    unittest.main()
