"""The program with a phone that was written from docs/protocol.md alone."""

import hashlib
import json
import os
import pathlib
import unittest

from support import APP, AppTest, NODE_CLIENT, TIMEOUT, Process, clipboard, visible_windows, wait_for


class PaperPhone(Process):
    """tests/app/node/phone.mjs"""

    def __init__(self, port, folder):
        super().__init__("node", str(pathlib.Path(NODE_CLIENT).with_name("phone.mjs")), f"ws://127.0.0.1:{port}", folder)

    def do(self, what, **rest):
        self.write(json.dumps({"do": what, **rest}))

    def events(self, what):
        return [event for event in map(json.loads, list(self.lines)) if event["what"] == what]

    def wait(self, what, count=1, seconds=TIMEOUT):
        wait_for(lambda: len(self.events(what)) >= count, f"{count} times {what}; so far {self.lines[-20:]}", seconds)
        return self.events(what)[-1]


class Protocol(AppTest):
    def setUp(self):
        self.tray = self.use_tray()
        self.service = self.use_notification_service(["body", "actions", "inline-reply"])
        self.folder = self.make_folder()
        (self.folder / "phone").mkdir()
        self.app = self.start_app().wait_listening()
        self.phone = self.start(PaperPhone(self.app.port, str(self.folder / "phone")))
        self.phone.wait("welcome")

    def wait_windows(self, count, what):
        wait_for(lambda: len(visible_windows(self.app.pid)) == count, f"{count} windows: {what}")

    def make(self, name, size):
        file = self.folder / name
        file.write_bytes(os.urandom(size))
        return file

    def test_the_connection(self):
        self.assertEqual(self.phone.events("open")[0]["extensions"], "", "nothing is compressed, although offered")
        self.phone.do("ping", payload="are you there")
        self.assertEqual(self.phone.wait("pong")["payload"], "are you there")
        self.phone.do("headers", size=8000)
        self.phone.wait("accepted")
        self.phone.do("headers", size=17000)
        self.phone.wait("refused")
        self.phone.do("raw", bytes="ff")
        self.assertEqual(self.phone.wait("closed")["code"], 1007)
        self.phone.wait("welcome", 2)

    def test_the_phone_connects_again_after_a_restart_of_the_computer(self):
        self.app.stop()
        self.phone.wait("closed")
        self.start_app(port=self.app.port).wait_listening()
        self.phone.wait("welcome", 2)

    def test_an_answer_finds_its_notification_by_the_key(self):
        for key in ("sms:17", None):
            title = "Ada Winter" if key else "Bob"
            self.phone.do("notify", app="Messages", title=title, body=f"Are you coming, {key}?", key=key)
            shown = wait_for(lambda: next((each for each in self.service.shown if f"{key}?" in each["body"]), None),
                             "the notification")
            self.service.NotificationReplied(shown["id"], "On my way / soon")
        self.assertEqual(self.phone.wait("reply"), {"what": "reply", "to": "Ada Winter", "message": "On my way / soon"})
        self.assertEqual(self.phone.wait("unmatched")["key"], "Messages:Bob:Are you coming, None?")

    def test_only_the_computer_opens_the_window_of_a_call(self):
        self.phone.do("ring", number="+49 151 5551074", name="Chiara Moss")
        self.wait_windows(1, "the ringing one")
        # Answered on the phone.
        self.phone.do("send", message={"action": "call_state_changed", "state": "OFFHOOK"})
        self.wait_windows(0, "answered elsewhere")
        self.phone.do("send", message={"action": "call_update", "duration": 5})
        self.phone.do("notify", app="A", title="B", body="the messages before this one have been read")
        self.service.wait_shown("A")
        self.assertEqual(visible_windows(self.app.pid), set())

    def test_a_duration_of_minus_one_ends_a_call_in_any_message(self):
        for action in ("incoming_call", "call_state_changed", "call_update", "call_ended"):
            self.phone.do("ring", number="5551", name="Ada")
            self.wait_windows(1, "the ringing one")
            self.phone.do("send", message={"action": action, "duration": -1})
            self.wait_windows(0, action)

    def test_logs_are_asked_for_and_answered(self):
        self.tray.choose("Send SMS…")
        self.wait_windows(1, "the main window")
        self.tray.choose("Call…")
        self.assertTrue(self.phone.is_running())
        self.assertEqual(self.phone.events("unknown") + self.phone.events("broken"), [])

    def test_a_file_from_the_computer_comes_in_frames_of_more_than_a_mebibyte(self):
        file = self.make("plan with spaces.bin", 3_500_000)
        self.assertEqual(self.start(Process(APP, str(file))).wait_end(), 0)
        got = self.phone.wait("file")
        self.assertEqual((got["name"], got["announced"], got["size"]), (file.name, 3_500_000, 3_500_000))
        self.assertEqual(got["sha256"], hashlib.sha256(file.read_bytes()).hexdigest())
        self.assertGreater(got["largestFrame"], 1_390_000)
        self.assertLess(got["largestFrame"], 1_430_000)

    def test_a_name_that_breaks_the_announcement_leaves_its_chunks_readable(self):
        file = self.make('say "hello".bin', 1000)
        self.assertEqual(self.start(Process(APP, str(file))).wait_end(), 0)
        self.assertEqual(self.phone.wait("file")["sha256"], hashlib.sha256(file.read_bytes()).hexdigest())
        self.assertEqual(len(self.phone.events("broken")), 1)

    def test_a_file_from_the_phone_goes_on_after_a_lost_connection(self):
        file = self.make("lake.jpg", 2_500_000)
        arrived = self.app.downloads / "lake.jpg"
        self.phone.do("file", file=str(file), pieces=1)
        wait_for(lambda: arrived.exists() and arrived.stat().st_size == 1 << 20, "the first chunk, left as it is")
        self.phone.do("drop")
        self.phone.wait("welcome", 2)
        self.phone.do("file", file=str(file), **{"from": 1})
        self.service.wait_shown("File Received")
        self.assertEqual(arrived.read_bytes(), file.read_bytes())

    def test_a_text_goes_both_ways(self):
        self.phone.do("send", message={"action": "clipboard", "text": "Code: 4417 🚲"})
        wait_for(lambda: clipboard() == "Code: 4417 🚲", "the text on the clipboard")
        self.copy("back / to the phone")
        self.tray.choose("Send Clipboard")
        self.assertEqual(self.phone.wait("clipboard")["text"], "back / to the phone")


if __name__ == "__main__":
    unittest.main()
