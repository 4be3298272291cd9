"""How the process starts twice and how it ends."""

import os
import pathlib
import shutil
import signal
import socket
import subprocess
import tempfile
import time
import unittest

from support import (
    APP, AppTest, Process, close_window, colors, free_port, is_full, open_files, run, terminate,
    visible_windows, wait_for)


class Life(AppTest):
    def setUp(self):
        self.tray = self.use_tray()
        self.app = self.start_app().wait_listening()
        wait_for(lambda: self.tray.status(), "the menu")

    def test_a_second_start_opens_the_window_of_the_first_and_ends(self):
        self.assertEqual(visible_windows(self.app.pid), set())
        second = self.start(Process(APP))
        self.assertEqual(second.wait_end(), 0)
        wait_for(lambda: visible_windows(self.app.pid), "the main window of the first")
        self.assertTrue(self.app.is_running())

    def test_a_second_start_beside_one_that_hangs_says_so_and_fails(self):
        os.kill(self.app.pid, signal.SIGSTOP)
        self.addCleanup(os.kill, self.app.pid, signal.SIGCONT)
        second = self.start(Process(APP))
        self.assertEqual(second.wait_end(), 1)
        self.assertEqual(second.lines, ["Velloway is already running but does not answer"])

    def test_quit_in_the_menu_ends_the_process_with_0_and_sends_the_phone_nothing(self):
        one = self.start_node(self.app.port)
        self.tray.choose("Quit Velloway")
        self.assertEqual(self.app.wait_end(), 0)
        one.wait_end()
        self.assertEqual([each["action"] for each in one.messages()], ["connected"])

    def test_a_request_to_terminate_ends_the_process_in_an_orderly_way(self):
        terminate(self.app)
        self.assertEqual(self.app.wait_end(), 0)
        # The port is free at once for the next start.
        again = self.start_app(port=self.app.port).wait_listening()
        self.start_node(again.port)

    def test_a_request_to_terminate_does_not_wait_for_a_large_file_that_is_being_read(self):
        large = tempfile.NamedTemporaryFile(prefix="large", suffix=".bin")
        self.addCleanup(large.close)
        large.truncate(1 << 30)
        self.start_node(self.app.port)
        self.assertEqual(self.start(Process(APP, large.name)).wait_end(), 0)
        wait_for(lambda: large.name in open_files(self.app.pid), "the file is being read")
        start = time.monotonic()
        terminate(self.app)
        self.assertEqual(self.app.wait_end(), 0)
        self.assertLess(time.monotonic() - start, 1)

    def test_a_reader_of_standard_output_that_does_not_read_stops_nothing(self):
        terminate(self.app)
        self.app.wait_end()
        reading, writing = os.pipe()
        self.addCleanup(os.close, reading)
        self.addCleanup(os.close, writing)
        port = free_port()
        settings = pathlib.Path(os.environ["XDG_CONFIG_HOME"]) / "velloway" / "velloway.conf"
        settings.write_text(f"[General]\nport={port}\n")
        app = subprocess.Popen([APP], stdout=writing, stderr=subprocess.DEVNULL)
        self.addCleanup(app.wait)
        self.addCleanup(app.kill)

        def listens():
            with socket.socket() as probe:
                return probe.connect_ex(("127.0.0.1", port)) == 0

        wait_for(listens, "the program listens")
        one = self.start_node(port)
        for number in range(2000):
            one.send({"app": "Chat", "title": f"Title {number}", "body": "x" * 40})
        wait_for(lambda: is_full(writing), "the pipe is full")
        self.start_node(port)
        start = time.monotonic()
        app.send_signal(signal.SIGTERM)
        wait_for(lambda: app.poll() is not None, "the end of the program")
        self.assertLess(time.monotonic() - start, 1)
        self.assertEqual(app.returncode, 0)

    def test_closing_the_window_leaves_the_process_running(self):
        self.tray.choose("Settings…")
        window = wait_for(lambda: visible_windows(self.app.pid), "the main window").pop()
        close_window(window)
        wait_for(lambda: not visible_windows(self.app.pid), "the window has gone")
        self.assertTrue(self.app.is_running())
        self.start_node(self.app.port)


class Rest(AppTest):
    def setUp(self):
        self.tray = self.use_tray()
        self.app = self.start_app().wait_listening()
        wait_for(lambda: self.tray.status(), "the menu")

    def open_window(self):
        start = time.monotonic()
        self.tray.choose("Settings…")
        window = wait_for(lambda: visible_windows(self.app.pid), "the main window").pop()
        wait_for(lambda: colors(window) > 1, "the view in it")
        return window, time.monotonic() - start

    def geometry(self, window):
        return run("xdotool", "getwindowgeometry", str(window)).split("\n", 1)[1]

    def wait_given_back(self, least, bound):
        most = self.app.most_memory()
        wait_for(lambda: self.app.memory() < most - least, "the memory is given back", bound)
        print(f"resident: {most >> 20} MiB at most, {self.app.memory() >> 20} MiB then")

    def test_what_only_the_start_needed_is_given_back(self):
        self.wait_given_back(12 << 20, 30)
        self.start_node(self.app.port)
        self.tray.choose("Settings…")
        wait_for(lambda: visible_windows(self.app.pid), "the main window")

    def test_what_only_opening_the_window_needed_is_given_back_and_it_goes_on(self):
        # What is given back after the start must not stand in for it.
        self.wait_given_back(12 << 20, 30)
        window, _ = self.open_window()
        self.wait_given_back(12 << 20, 30)
        run("xdotool", "windowsize", str(window), "900", "600")
        wait_for(lambda: "900x600" in self.geometry(window), "the size")
        wait_for(lambda: colors(window) > 1, "the view in it")

    def test_the_view_of_a_closed_window_gives_its_memory_back_and_returns_as_it_was(self):
        window, first = self.open_window()
        run("xdotool", "windowsize", str(window), "900", "600", "windowmove", str(window), "77", "66")
        wait_for(lambda: "900x600" in self.geometry(window), "the size")
        before = self.geometry(window)
        # What the start or the opening needed is not what this is about.
        self.wait_given_back(12 << 20, 30)
        close_window(window)
        wait_for(lambda: not visible_windows(self.app.pid), "the window has gone")
        closed = self.app.memory()
        wait_for(lambda: self.app.memory() < closed - (3 << 20), "the memory is given back", 60)
        rest = self.app.memory()
        window, again = self.open_window()
        self.assertEqual(self.geometry(window), before)
        print(f"resident: {closed >> 20} MiB just closed, {rest >> 20} MiB later; shown in {first * 1000:.0f} ms "
              f"at first and {again * 1000:.0f} ms again")


class Views(AppTest):
    """The library of the views, which the program finds by where it lies itself."""

    LIBRARY = "libvelloway-views.so"

    def setUp(self):
        self.tray = self.use_tray()
        self.prefix = self.make_folder()
        (self.prefix / "bin").mkdir()
        self.program = shutil.copy(APP, self.prefix / "bin" / "velloway")

    def start_installed(self):
        app = self.start_app(program=self.program).wait_listening()
        wait_for(lambda: self.tray.status(), "the menu")
        return app

    def test_they_come_into_memory_with_the_first_window_from_the_folder_of_an_installed_program(self):
        library = self.prefix / "lib" / "velloway" / self.LIBRARY
        library.parent.mkdir(parents=True)
        shutil.copy(pathlib.Path(APP).with_name(self.LIBRARY), library)
        app = self.start_installed()
        self.assertNotIn("libQt6Quick", pathlib.Path(f"/proc/{app.pid}/maps").read_text())
        self.tray.choose("Settings…")
        wait_for(lambda: visible_windows(app.pid), "the main window")
        self.assertIn(str(library), pathlib.Path(f"/proc/{app.pid}/maps").read_text())

    def test_without_them_a_line_in_the_log_says_why_no_window_comes_and_all_else_goes_on(self):
        app = self.start_installed()
        self.tray.choose("Settings…")
        line = app.wait_line(r"^\[Windows\] No window can be shown: ")
        self.assertIn(self.LIBRARY, line)
        phone = self.start_node(app.port)
        phone.send({"action": "incoming_call", "number": "+49 151 5551000", "name": "Ada Winter"})
        wait_for(lambda: sum("No window can be shown" in each for each in app.lines) == 2, "the line of the panel")
        phone.send({"action": "call_ended"})
        self.tray.choose("Quit Velloway")
        self.assertEqual(app.wait_end(), 0)


if __name__ == "__main__":
    unittest.main()
