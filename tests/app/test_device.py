"""A real phone's commands, played by scripts on the PATH, between velloway-phone --device and the real program."""

import datetime
import json
import os
import pathlib
import re
import subprocess
import unittest

os.environ["QT_LINUX_ACCESSIBILITY_ALWAYS_ON"] = "1"

from accessible import Tree, start_accessibility
from support import APP, AppTest, Process, clipboard, run, screenshot, terminate, visible_windows, wait_for

REFUSAL = '{"error": "Please grant the following permission to use this command: android.permission.READ_SMS"}'


def when(seconds_ago=0):
    """A time as the phone's commands write it."""
    return (datetime.datetime.now() - datetime.timedelta(seconds=seconds_ago)).strftime("%Y-%m-%d %H:%M:%S")


def sms(number, text, sender, message_id, kind="inbox", seconds_ago=600):
    entry = {"threadid": 3, "type": kind, "read": True, "sender": sender, "address": number, "number": number,
             "received": when(seconds_ago), "body": text, "_id": message_id}
    return {key: value for key, value in entry.items() if value is not None}


def notification(key, title, content, package="org.example.chat", seconds_ago=0):
    return {"id": 1, "tag": "", "key": key, "group": "", "packageName": package, "title": title,
            "content": content, "when": when(seconds_ago)}


class Commands:
    """The folder of scripts. Each writes down how it was called and what it was given, then answers."""

    def __init__(self, folder):
        self.folder = folder / "bin"
        self.folder.mkdir()
        self.log = folder / "calls"
        self.log.write_text("")
        self.inputs = folder / "inputs"
        self.inputs.mkdir()

    def put(self, name, answer="", reads=False, first="", last=""):
        """`first` and `last` are lines of shell before and after the answer, which may be a text or JSON."""
        text = answer if isinstance(answer, str) else json.dumps(answer)
        page = self.folder / f"{name}.answer"
        page.with_suffix(".new").write_text(text)
        page.with_suffix(".new").rename(page)
        script = self.folder / f"{name}.new"
        keep = f"cat > '{self.inputs}/{name}'" if reads else ":"
        script.write_text(f"""#!/bin/sh
{keep}
line={name}
for word in "$@"; do line="$line|$word"; done
echo "$line" >> '{self.log}'
{first}
cat '{page}'
{last}
""")
        script.chmod(0o755)
        script.rename(self.folder / name)

    def later(self, answers):
        """Lines of shell that change answers, one after the other."""
        lines = []
        for name, answer in answers.items():
            page = self.folder / f"{name}.later"
            page.write_text(json.dumps(answer))
            lines.append(f"[ ! -e '{page}' ] || mv '{page}' '{page.with_suffix('.answer')}'")
        return "\n".join(lines)

    def put_all(self):
        self.put("getprop", "Paper Phone\n")
        self.put("termux-wifi-connectioninfo", {"ssid": "Attic Wi-Fi"})
        self.put("termux-telephony-deviceinfo", {"sim_operator_name": "Blue Mobile", "phone_count": 1})
        self.put("termux-contact-list", [{"name": "Bruno Falk", "number": "0151 5552000"}])
        self.put("termux-sms-list", [])
        self.put("termux-call-log", [])
        self.put("termux-notification-list", [])
        self.put("termux-battery-status", {"health": "GOOD", "percentage": 80, "plugged": "UNPLUGGED",
                                           "status": "DISCHARGING", "temperature": 25.1})
        self.put("termux-clipboard-get", "from the phone's clipboard")
        self.put("termux-volume", [{"stream": "music", "volume": 5, "max_volume": 15}])
        for name in ("termux-sms-send", "termux-clipboard-set"):
            self.put(name, reads=True)
        for name in ("termux-telephony-call", "termux-media-player", "termux-media-scan", "termux-notification",
                     "termux-torch", "termux-vibrate"):
            self.put(name)

    def calls(self, name):
        return [line.split("|")[1:] for line in self.log.read_text().splitlines() if line.split("|")[0] == name]

    def wait_call(self, name, *words):
        return wait_for(lambda: list(words) in self.calls(name), f"{name} {words}; so far {self.calls(name)}")

    def input(self, name):
        path = self.inputs / name
        return path.read_text() if path.exists() else None


class Device(AppTest):
    @classmethod
    def setUpClass(cls):
        start_accessibility(cls)

    def setUp(self):
        self.tray = self.use_tray()
        self.service = self.use_notification_service(["body", "actions", "inline-reply"])
        self.folder = self.make_folder()
        self.received = self.folder / "received"
        self.commands = Commands(self.folder)
        self.commands.put_all()
        self.app = self.start_app().wait_listening()

    def start_device(self, *words):
        device = self.start_phone(
            self.app.port, "--device", "--poll", "0.3", "--save-to", str(self.received), *words,
            env={**os.environ, "PATH": f"{self.commands.folder}:/usr/bin:/bin"})
        device.wait_line("connected to")
        return device

    def wait_looked(self):
        """Until the phone has looked at its notifications once more."""
        count = len(self.commands.calls("termux-notification-list"))
        wait_for(lambda: len(self.commands.calls("termux-notification-list")) > count + 1, "two more looks")

    def shown(self, summary):
        return [each for each in self.service.shown if each["summary"] == summary]

    def open(self, row):
        wait_for(lambda: row in self.tray.titles(), f"the menu row {row}")
        self.tray.choose(row)
        wait_for(lambda: visible_windows(self.app.pid), "the main window")

    def test_only_what_is_new_on_the_phone_is_shown_and_once(self):
        old = notification("0|old", "Old", "was there before", seconds_ago=900)
        self.commands.put("termux-notification-list", [old])
        self.start_device()
        self.wait_looked()
        fresh = notification("0|org.example.chat|7", "Ada Winter", "See you at seven? \"Yes\" / ok")
        progress = notification("0|load", "Load", "10 %", package="org.example.loader")
        own = notification("0|own", "lake.jpg", "From the computer. Tap to open.", package="com.termux.api")
        self.commands.put("termux-notification-list", [old, fresh, progress, own])
        body = self.service.wait_shown("Chat")["body"]
        self.assertIn("Ada Winter", body)
        self.assertIn("See you at seven?", body)
        self.service.wait_shown("Loader")
        self.commands.put("termux-notification-list", [old, fresh, {**progress, "content": "20 %"}, own])
        self.wait_looked()
        self.assertEqual([each["summary"] for each in self.service.shown], ["Chat", "Loader"])

    def test_a_message_is_announced_once_and_its_reply_is_sent_as_a_message(self):
        first = sms("+49 151 5551000", "first", "Ada Winter", 41)
        self.commands.put("termux-sms-list", [first])
        self.start_device()
        self.wait_looked()
        text = "Are you coming?"
        # It comes just after a look at the messages, in the log first.
        self.commands.put("termux-sms-list", [first], last=self.commands.later({
            "termux-sms-list": [first, sms("+49 151 5551000", text, "Ada Winter", 42, seconds_ago=0)],
            "termux-notification-list": [notification("0|sms|1", "Ada Winter", text, package="org.example.messaging")],
        }))
        note = self.service.wait_shown("Messages")
        self.assertIn("Ada Winter", note["body"])
        self.wait_looked()
        self.assertEqual(sum(text in each["body"] for each in self.service.shown), 1, self.service.shown)
        self.service.NotificationReplied(note["id"], "-n yes; \"of course\" $HOME")
        self.commands.wait_call("termux-sms-send", "-n", "+491515551000")
        wait_for(lambda: self.commands.input("termux-sms-send") == "-n yes; \"of course\" $HOME", "the text of the reply")

    def test_another_notification_takes_no_reply_and_says_so(self):
        device = self.start_device()
        self.wait_looked()
        self.commands.put("termux-notification-list", [notification("0|c", "Ada", "hello")])
        self.service.NotificationReplied(self.service.wait_shown("Chat")["id"], "hi")
        device.wait_line("cannot reply to this notification")
        self.assertEqual(self.commands.calls("termux-sms-send"), [])

    def test_the_battery_is_reported_when_it_changes(self):
        device = self.start_device()
        device.wait_line("> battery_status  level=80  isCharging=false")
        for status, level in (("DISCHARGING", 19), ("CHARGING", 20)):
            self.commands.put("termux-battery-status", {"percentage": level, "status": status})
            device.wait_line(f"> battery_status  level={level}")
        self.service.wait_shown("🔋 Paper Phone — 19% Battery")
        self.assertEqual(sum("> battery_status" in line for line in device.lines), 3)

    def test_real_logs_are_shown_and_messages_and_calls_go_out(self):
        # Two messages of one second must both be there.
        self.commands.put("termux-sms-list", [
            sms("+49 151 5551000", "one", "Ada Winter", 7), sms("+49 151 5551000", "two", "Ada Winter", 8),
            sms("0151 5552000", "sent by me", "You", 9, kind="sent", seconds_ago=300),
            sms("+49 1", "a draft", None, 10, kind="draft")])
        self.commands.put("termux-call-log", [
            {"name": "UNKNOWN_CALLER", "phone_number": "01515552000", "type": "MISSED", "date": when(900),
             "duration": "00:00", "sim_id": "1"},
            {"name": "Ada Winter", "phone_number": "+491515551000", "type": "OUTGOING", "date": when(60),
             "duration": "01:02:05", "sim_id": "1"}])
        device = self.start_device("--json")
        tree = Tree(self.app.pid)
        self.open("Send SMS…")
        self.commands.wait_call("termux-sms-list", "-t", "all", "-l", "500")

        def row(start):
            return wait_for(lambda: tree.find_if(lambda part: part.get_role_name() in ("list item", "push button")
                                                 and start + ", " in (part.get_name() or "")),
                            f"a row {start}; there are:\n{tree.describe()}")

        row("Bruno Falk")
        tree.press(row("Ada Winter").get_name(), "list item")
        for text in ("one", "two"):
            wait_for(lambda: any(text in (part.get_name() or "") for part in tree.parts()), f"the message {text}")
        screenshot("app-device-sms")
        tree.write("Text Message", "On my way")
        tree.press("Send", "push button")
        # The computer keeps the digits of a number only; the phone knows what was before them.
        self.commands.wait_call("termux-sms-send", "-n", "+491515551000", "-s", "0")
        self.assertEqual(self.commands.input("termux-sms-send"), "On my way")

        self.tray.choose("Call…")
        row("Bruno Falk")
        for digit in "16216":
            tree.press(digit, "push button")
        tree.press("Call", "push button")
        self.commands.wait_call("termux-telephony-call", "16216")
        tree.press("Hang up", "push button")
        device.wait_line("the phone's commands cannot do this: ending a call")

    def test_a_new_call_in_the_log_brings_the_log_unasked(self):
        device = self.start_device()
        wait_for(lambda: self.commands.calls("termux-call-log"), "a look at the log")
        self.wait_looked()
        self.commands.put("termux-call-log", [
            {"name": "Ada Winter", "phone_number": "5551", "type": "INCOMING", "date": when(), "duration": "02:05"}])
        line = device.wait_line("> call_history")
        self.assertIn('"duration":125', line)
        self.assertIn('"type":1', line)

    def test_the_clipboard_goes_either_way(self):
        device = self.start_device()
        device.write("clipboard")
        wait_for(lambda: clipboard() == "from the phone's clipboard", "the phone's text on the computer")
        self.copy("-n from the computer\n  🚲")
        self.tray.choose("Send Clipboard")
        wait_for(lambda: self.commands.input("termux-clipboard-set") == "-n from the computer\n  🚲",
                 "the computer's text on the phone")

    def send_to_phone(self, name, text):
        path = self.folder / name
        path.write_text(text)
        self.assertEqual(self.start(Process(APP, str(path))).wait_end(), 0)

    def test_files_stay_in_their_folder_under_harmless_names(self):
        self.received.mkdir()
        (self.received / "plan.txt").write_text("mine")
        outside = self.folder / "outside"
        (self.received / "link.txt").symlink_to(outside)
        device = self.start_device()
        names = {"plan.txt": "plan (2).txt", "link.txt": "link (2).txt", ".profile": "_.profile",
                 "-rf": "_-rf", "it's; $(rm) `x`": "it_s; _(rm) _x_", "a \"b\" c.txt": "a _b_ c.txt", "empty": "empty"}
        for name, kept in names.items():
            text = "" if name == "empty" else f"the text of {name}"
            self.send_to_phone(name, text)
            path = self.received / kept
            wait_for(lambda: path.exists() and path.read_text() == text, f"{kept}; there is {os.listdir(self.received)}")
            self.commands.wait_call("termux-media-scan", str(path))
        self.assertEqual((self.received / "plan.txt").read_text(), "mine")
        self.assertFalse(outside.exists())
        shown = self.commands.calls("termux-notification")
        self.assertIn(f"bash -l -c 'termux-share -a view '\\''{self.received}/plan (2).txt'\\'''", shown[0])
        device.wait_line("as announced")

    def test_a_file_goes_from_the_phone_to_the_computer(self):
        device = self.start_device()
        path = self.folder / "lake.jpg"
        path.write_bytes(os.urandom(3_000_000))
        device.write(f"file '{path}'")
        device.wait_line("sent lake.jpg")
        target = self.app.downloads / "lake.jpg"
        wait_for(lambda: target.exists() and target.read_bytes() == path.read_bytes(), "the file on the computer")

    def test_keys_and_pointer_are_driven_from_the_terminal(self):
        run("xdotool", "mousemove", "400", "300")
        device = self.start_device()
        device.write("move 20 -10")
        wait_for(lambda: "X=420" in run("xdotool", "getmouselocation", "--shell"), "the pointer moved")

    def test_what_commands_cannot_do_is_said_once_at_the_start(self):
        (self.commands.folder / "termux-torch").unlink()
        device = self.start_device()
        device.wait_line("notifications and messages are looked for every 0.3 s")
        for words in ("cannot answer or end calls", "a reply can be sent to messages",
                      "termux-torch is not installed: no light"):
            self.assertEqual(sum(words in line for line in device.lines), 1, device.lines)
        self.assertFalse(any("termux-vibrate" in line for line in device.lines), device.lines)

    def test_slow_failing_missing_and_refusing_commands_hold_nothing_up_and_are_named_once(self):
        (self.commands.folder / "termux-clipboard-set").unlink()
        self.commands.put("termux-sms-list", REFUSAL)
        self.commands.put("termux-call-log", first="echo 'the log is gone' >&2; exit 3")
        self.commands.put("termux-battery-status", "no JSON at all")
        self.commands.put("termux-wifi-connectioninfo", first="sleep 1000 & wait")
        self.commands.put("termux-contact-list", [], first="sleep 2")
        device = self.start_device("--command-limit", "3")
        self.wait_looked()
        self.commands.put("termux-notification-list", [notification("0|c", "Ada", "in spite of it all")])
        self.service.wait_shown("Chat")
        self.copy("a text")
        self.tray.choose("Send Clipboard")
        troubles = ["termux-sms-list was refused: Please grant the following permission",
                    "termux-call-log failed with 3: the log is gone",
                    "termux-battery-status did not answer in JSON: no JSON at all",
                    "termux-wifi-connectioninfo took longer than 3 s and was ended",
                    "termux-clipboard-set is not installed$"]
        for trouble in troubles:
            device.wait_line(trouble)
        asked = len(self.commands.calls("termux-sms-list"))
        self.wait_looked()
        for trouble in troubles:
            self.assertEqual(sum(bool(re.search(trouble, line)) for line in device.lines), 1, trouble)
        # Each refused call may bring a dialog up, so that a poll leaves it alone for a while.
        self.assertEqual(len(self.commands.calls("termux-sms-list")), asked)
        left = subprocess.run(["pgrep", "-f", "sleep 1000"], capture_output=True, text=True).stdout.split()
        self.assertEqual([pid for pid in left if self.is_child_of_script(pid)], [])
        self.assertTrue(device.is_running())

    def test_a_phone_that_leaves_takes_its_commands_along(self):
        self.commands.put("termux-sms-list", first="sleep 1000 & wait")
        for leave in (lambda device: device.write("quit"), terminate):
            self.commands.log.write_text("")
            device = self.start_device()
            wait_for(lambda: self.commands.calls("termux-sms-list"), "the slow command")
            leave(device)
            self.assertEqual(device.wait_end(), 0)
            left = subprocess.run(["pgrep", "-f", "sleep 1000|termux-sms-list"], capture_output=True, text=True).stdout
            self.assertEqual([pid for pid in left.split() if self.is_child_of_script(pid)], [])

    def is_child_of_script(self, pid):
        try:
            return str(self.commands.folder) in pathlib.Path(f"/proc/{pid}/environ").read_text()
        except OSError:
            return False

    def test_a_dropped_link_gives_up_half_a_file_and_comes_back_by_itself(self):
        device = self.start_device()
        path = self.folder / "big.bin"
        path.write_bytes(os.urandom(150_000_000))
        self.start(Process(APP, str(path)))
        device.wait_line("receiving big.bin")
        terminate(self.app)
        self.app.wait_end()
        device.wait_line("what had come is deleted|received big.bin")
        if not any("received big.bin" in line for line in device.lines):
            self.assertFalse((self.received / "big.bin").exists())
        self.app = self.start_app(port=self.app.port).wait_listening()
        wait_for(lambda: sum("< connected" in line for line in device.lines) == 2, "a second welcome")
        self.wait_looked()
        self.commands.put("termux-notification-list", [notification("0|c", "Ada", "after the break")])
        self.service.wait_shown("Chat")


class Tables(unittest.TestCase):
    """docs/phone.md against docs/protocol.md."""

    def setUp(self):
        docs = pathlib.Path(__file__).parents[2] / "docs"
        self.protocol = (docs / "protocol.md").read_text()
        self.phone = (docs / "phone.md").read_text()

    def first_cells(self, text):
        return {name for line in text.splitlines() if line.startswith("| `")
                for name in re.findall(r"`([a-z_]+)`", line.split("|")[1])}

    def test_every_message_has_its_adapter(self):
        inbound, outbound = self.protocol.split("## From the phone")[1].split("## From the computer")
        named = {name for line in inbound.splitlines() if line.startswith("### ")
                 for name in re.findall(r"`([a-z_]+)`", line)}
        table = self.phone.split("From the phone:")[1].split("From the computer:")
        self.assertIn("remote_control", named)
        self.assertEqual(self.first_cells(table[0]), named)
        self.assertIn("find_device", self.first_cells(outbound))
        self.assertEqual(self.first_cells(table[1].split("The commands of")[0]), self.first_cells(outbound))

    def test_every_remote_command_is_on_the_page_or_named_as_left_out(self):
        part = self.protocol.split("### `remote_control`")[1].split("## From the computer")[0]
        commands = set(re.findall(r"`([a-z]+(?:_[a-z]+)*)`", part)) - {
            "type", "command", "remote", "text", "url", "button", "dx", "dy"}
        left = self.phone.split("The commands of `remote_control`")[1]
        self.assertEqual({name for name in commands if f"`{name}`" not in left}, set())

    def test_the_page_sends_what_the_table_says(self):
        page = (pathlib.Path(__file__).parents[2] / "tools" / "phone" / "web" / "phone.html").read_text()
        sent = set(re.findall(r'data-(?:key|command|media|modifier)="([a-z_]+)"', page))
        table = self.phone.split("The commands of `remote_control`")[1].split("Not sent")[0]
        self.assertEqual(sent - set(re.findall(r"`([a-z_]+)`", table)), set())
        self.assertGreater(len(sent), 20)


if __name__ == "__main__":
    unittest.main()
