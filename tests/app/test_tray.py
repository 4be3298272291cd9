"""The tray menu over the bus, and what its rows do."""

import unittest

from support import AppTest, colors, screenshot, visible_windows, wait_for

ROWS = [
    "Velloway", None, "Server: listening on :{port}", None, "Call…", "Send SMS…", "File Drop…", "Notifications…",
    "Remote Control…", "Send Clipboard", "Clipboard History…", "Settings…", "Info…", None, "Quit Velloway",
]


class Tray(AppTest):
    def setUp(self):
        self.tray = self.use_tray()
        self.app = self.start_app().wait_listening()
        wait_for(lambda: self.tray.status() == f"Server: listening on :{self.app.port}", "the status line")

    def test_the_menu_has_fifteen_rows_in_order(self):
        self.assertEqual(self.tray.titles(), [row and row.format(port=self.app.port) for row in ROWS])

    def test_only_the_header_and_the_status_line_cannot_be_chosen(self):
        disabled = [str(row["label"]) for _, row in self.tray.menu()
                    if row.get("type") != "separator" and not row.get("enabled", True)]
        self.assertEqual(disabled, ["Velloway", f"Server: listening on :{self.app.port}"])

    def test_send_clipboard_reaches_both_phones_and_shows_nothing(self):
        phones = [self.start_node(self.app.port), self.start_node(self.app.port)]
        self.copy("a \"quoted\" / text\nin two lines 🚲")
        self.tray.choose("Send Clipboard")
        for each in phones:
            self.assertEqual(each.wait_message("clipboard"),
                             {"action": "clipboard", "text": "a \"quoted\" / text\nin two lines 🚲"})
            self.assertEqual(len(each.messages()), 2)
        self.assertEqual(visible_windows(self.app.pid), set())

    def test_send_clipboard_with_nothing_to_send_sends_nothing(self):
        one = self.start_node(self.app.port)
        self.tray.choose("Send Clipboard")
        self.copy("now there is some")
        self.tray.choose("Send Clipboard")
        one.wait_message("clipboard")
        self.assertEqual([each["action"] for each in one.messages()], ["connected", "clipboard"])
        self.assertEqual(one.messages()[1]["text"], "now there is some")

    def test_a_row_opens_the_main_window_and_asks_the_phone_for_its_logs(self):
        one = self.start_node(self.app.port)
        self.tray.choose("Send SMS…")
        window = wait_for(lambda: visible_windows(self.app.pid), "the main window").pop()
        one.wait_message("get_sms_history")
        wait_for(lambda: colors(window) > 30, "something drawn in the main window")
        screenshot("app-main-window")


if __name__ == "__main__":
    unittest.main()
