"""The windows of the program, worked through the accessibility tree and with keys of the X server."""

import json
import os
import pathlib
import unittest

os.environ["QT_LINUX_ACCESSIBILITY_ALWAYS_ON"] = "1"

from accessible import Tree, start_accessibility
from support import AppTest, free_port, run, screenshot, turn, visible_windows, wait_for


class Windows(AppTest):
    @classmethod
    def setUpClass(cls):
        start_accessibility(cls)

    def setUp(self):
        self.tray = self.use_tray()
        self.service = self.use_notification_service(["body", "actions"])
        self.folder = self.make_folder()
        self.app = self.start_app().wait_listening()
        self.phone = self.start_phone(self.app.port, "--json", "--save-to", str(self.folder))
        self.phone.wait_line("connected to")
        self.phone.write("hello")
        self.tree = Tree(self.app.pid)

    def open(self, row):
        wait_for(lambda: row in self.tray.titles(), f"the menu row {row}")
        self.tray.choose(row)
        wait_for(lambda: visible_windows(self.app.pid), "the main window")

    def got(self, **members):
        """Waits until the phone has got a message with these members, and returns it."""
        def find():
            for line in list(self.phone.lines):
                if not line.startswith("{"):
                    continue
                message = json.loads(line)
                if all(message.get(key) == value for key, value in members.items()):
                    return message
            return None

        try:
            return wait_for(find, f"the message {members}")
        except AssertionError as error:
            raise AssertionError(f"{error}\n" + "\n".join(self.phone.lines[-15:])) from None

    def test_the_window_has_its_title(self):
        self.open("Info…")
        [window] = visible_windows(self.app.pid)
        self.assertEqual(run("xdotool", "getwindowname", str(window)).strip(), "Velloway Settings")

    def test_a_message_is_sent(self):
        self.open("Send SMS…")
        self.got(action="get_sms_history")
        self.phone.write("sms_history 3 9")
        thread = wait_for(lambda: self.tree.find_if(lambda part: part.get_role_name() == "list item"
                                                    and ", " in (part.get_name() or "")), "a thread")
        self.tree.press(thread.get_name(), "list item")
        self.tree.write("Text Message", "On my way")
        self.tree.press("Send", "push button")
        sent = self.got(action="send_sms", body="On my way")
        self.assertTrue(sent["number"])
        self.tree.write("Text Message", "By Return")
        run("xdotool", "key", "Return")
        self.got(action="send_sms", body="By Return", number=sent["number"])
        screenshot("app-sms")

    def test_a_number_is_dialled_and_the_call_hung_up(self):
        self.open("Call…")
        for digit in "16216":
            self.tree.press(digit, "push button")
        self.tree.press("Call", "push button")
        self.got(action="make_call", number="16216", simSlot=0)
        self.tree.press("Hang up", "push button")
        self.got(action="hangup_call")
        run("xdotool", "key", "BackSpace", "BackSpace", "7", "Return")
        self.got(action="make_call", number="1627")

    def test_a_ringing_call_is_accepted_muted_and_ended(self):
        # The toolkit joins the accessibility bus with the first window that takes the keyboard; a panel takes none.
        self.open("Info…")
        self.tree.wait("Velloway", "heading")
        main = visible_windows(self.app.pid)
        self.phone.write('incoming_call "+44 7700 900123" "Ada Winter"')
        self.tree.wait("Ada Winter")
        self.tree.wait("Incoming Call")
        screenshot("app-panel-ringing")
        self.tree.press("Accept", "push button")
        self.got(action="answer_call")
        self.tree.press("Mute", "push button")
        self.got(action="toggle_mute", enabled=True)
        self.tree.press("Hang up", "push button")
        self.got(action="hangup_call")
        self.phone.write("call_ended")
        wait_for(lambda: visible_windows(self.app.pid) == main, "the panel has gone")

    def test_a_notification_is_answered(self):
        self.phone.write('notification Chat Ada "See you at seven?" k1')
        self.service.wait_shown("Chat")
        self.open("Notifications…")
        self.tree.press("Reply: Ada", "push button")
        self.tree.write("Type reply...", "Yes")
        self.tree.press("Send", "push button")
        answer = self.got(action="reply", message="Yes")
        self.assertRegex(answer["key"], r"^[0-9A-F-]{36}$")

    def test_files_are_chosen_and_sent(self):
        for name in ("one.txt", "two.txt"):
            (pathlib.Path(os.environ["HOME"]) / name).write_text(f"the text of {name}")
        self.open("File Drop…")
        before = visible_windows(self.app.pid)
        self.tree.press("Send Files...", "push button")
        panel = wait_for(lambda: visible_windows(self.app.pid) - before, "the open panel").pop()
        run("xdotool", "windowfocus", "--sync", str(panel))
        run("xdotool", "type", "--delay", "20", '"one.txt" "two.txt"')
        turn(0.5)
        screenshot("app-open-panel")
        run("xdotool", "key", "Return")
        wait_for(lambda: visible_windows(self.app.pid) == before, "the open panel has gone")
        for name in ("one.txt", "two.txt"):
            wait_for(lambda: (self.folder / name).exists()
                     and (self.folder / name).read_text() == f"the text of {name}", f"{name} on the phone")
        wait_for(lambda: any("Sent • " in (part.get_name() or "") for part in self.tree.parts()), "the finished rows")

    def test_the_port_is_changed_and_the_server_restarted(self):
        self.open("Settings…")
        port = free_port()
        self.tree.write("Port", str(port))
        run("xdotool", "key", "Return")
        self.tree.press("Restart", "push button")
        wait_for(lambda: self.tree.find("Restart", "push button") is None, "the button has gone")
        wait_for(lambda: self.tray.status() == f"Server: listening on :{port}", "the new port in the status line")
        second = self.start_phone(port, "--json")
        second.wait_line("connected to")

    def test_keys_of_the_x_server_reach_the_phone_from_the_remote_tab(self):
        self.open("Remote Control…")
        self.tree.wait("App Menu", "push button")
        keys = [("Up", "dpad_up"), ("Left", "dpad_left"), ("Right", "dpad_right"), ("Down", "dpad_down"),
                ("space", "dpad_center"), ("Return", "dpad_center"), ("Escape", "back"), ("Tab", "tab_forward"),
                ("shift+Tab", "tab_backward"), ("super+Return", "home"), ("alt+Tab", "recents"),
                ("super+n", "notifications"), ("alt+space", "search"), ("ctrl+Escape", "app_menu")]
        windows = visible_windows(self.app.pid)
        for pressed, command in keys:
            self.phone.lines.clear()
            run("xdotool", "key", pressed)
            message = self.got(action="nav_command")
            self.assertEqual(message["command"], command, pressed)
        self.assertEqual(visible_windows(self.app.pid), windows)


if __name__ == "__main__":
    unittest.main()
