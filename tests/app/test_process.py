"""How the process starts twice and how it ends."""

from support import *


class Life(AppTest):
    def setUp(self):
        self.tray = TrayWatcher()
        self.addCleanup(self.tray.remove_from_connection)
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

    def test_quit_in_the_menu_ends_the_process_with_0_and_tells_the_phone_nothing(self):
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

    def test_closing_the_window_leaves_the_process_running(self):
        self.tray.choose("Settings…")
        window = wait_for(lambda: visible_windows(self.app.pid), "the main window").pop()
        close_window(window)
        wait_for(lambda: not visible_windows(self.app.pid), "the window has gone")
        self.assertTrue(self.app.is_running())
        self.start_node(self.app.port)


if __name__ == "__main__":
    unittest.main()
