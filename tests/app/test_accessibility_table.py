"""Role, name and state of every part of every tab, in a screen reader's order, compared with a table.

After an intended change the new table lies in the folder of the screenshots, to be looked at and copied.
"""

import json
import os
import pathlib
import re
import unittest

os.environ["QT_LINUX_ACCESSIBILITY_ALWAYS_ON"] = "1"

from gi.repository import Atspi, GLib

from accessible import Tree, start_accessibility
from support import AppTest, run, turn, visible_windows, wait_for

TABLE = pathlib.Path(__file__).with_name("accessibility_table.txt")

# The rows of the tray menu, each with a part by which its tab is known.
TABS = [("Call…", "Dial pad"), ("Send SMS…", "Refresh"), ("File Drop…", "Send Files..."), ("Notifications…", "Clear All"),
        ("Remote Control…", "App Menu"), ("Clipboard History…", "Send Current Mac Clipboard"), ("Settings…", "Port"),
        ("Info…", "Developer")]

STATES = [("selected", Atspi.StateType.SELECTED), ("checked", Atspi.StateType.CHECKED),
          ("editable", Atspi.StateType.EDITABLE), ("focused", Atspi.StateType.FOCUSED)]

# What differs from one machine or day to the next.
VOLATILE = [(re.compile(r"\d{1,3}(\.\d{1,3}){3}"), "ADDRESS"), (re.compile(r"\bVersion [\d.]+"), "Version N"),
            (re.compile(r"\b\d{1,2}:\d\d\b(\s[AP]M)?"), "TIME"), (re.compile(r"\b1[345]/1[345]/(20)?23\b"), "DATE"),
            (re.compile(r"\b[A-Z][a-z]{2} \d{1,2}, 20\d\d\b"), "DATE")]


def described(part, depth):
    states = part.get_state_set()
    line = f"{'  ' * depth}{part.get_role_name()}: {part.get_name()}"
    for pattern, word in VOLATILE:
        line = pattern.sub(word, line)
    if part.get_description() and part.get_role() != Atspi.Role.APPLICATION:
        line += f" ({part.get_description()})"
    held = [name for name, state in STATES if states.contains(state)]
    return f"{line} [{', '.join(held)}]" if held else line


def lines_of(part, depth=0):
    """The parts that show, below `part` and with it."""
    part.clear_cache()
    if depth > 0 and not part.get_state_set().contains(Atspi.StateType.SHOWING):
        return []
    lines = [described(part, depth)]
    for index in range(part.get_child_count()):
        child = part.get_child_at_index(index)
        if child and child.get_role() != Atspi.Role.TOOL_TIP:
            lines += lines_of(child, depth + 1)
    return lines


class Table(AppTest):
    maxDiff = None

    @classmethod
    def setUpClass(cls):
        start_accessibility(cls)

    def setUp(self):
        self.tray = self.use_tray()
        self.use_notification_service(["body", "actions"])
        self.app = self.start_app().wait_listening()
        self.phone = self.start_phone(self.app.port, "--json")
        self.phone.wait_line("connected to")
        self.phone.write('device_info "Home Network" "Test phone"')
        self.phone.write("sim_info Blue,Red")
        self.phone.write("battery 71")
        self.phone.write('notification Chat Ada "See you at seven?" k1 1700000000')
        self.phone.write('notification Mail "" "A letter" k2 1700000100')
        self.phone.write('clipboard "A text of the phone"')
        self.tree = Tree(self.app.pid)
        # Away from the window, where it would call up tool tips.
        run("xdotool", "mousemove", "0", "0")
        self.open("Info…", "Developer")
        self.send_history()

    def send_history(self):
        messages = [{"address": "+44 7700 900123", "name": "Ada Winter", "body": body, "date": 1700000000000 + at, "type": kind}
                    for at, (body, kind) in enumerate([("Are you there?", 1), ("On my way", 2)])]
        calls = [{"number": number, "name": name, "date": 1700000000000 - at, "duration": 3, "type": at + 1}
                 for at, (number, name) in enumerate([("1", "Ada"), ("2", "Bo"), ("3", "Cy")])]
        self.phone.write("raw " + json.dumps({"action": "sms_history", "messages": messages}))
        self.phone.write("raw " + json.dumps({"action": "call_history", "calls": calls}))

    def open(self, row, known):
        wait_for(lambda: row in self.tray.titles(), f"the menu row {row}")
        self.tray.choose(row)
        wait_for(lambda: visible_windows(self.app.pid), "the main window")
        self.tree.wait(known)

    def shown(self):
        """The lines of the main window once they no longer change."""
        before = []

        def is_calm():
            nonlocal before
            turn(0.2)
            try:
                now = lines_of(self.tree.application())
            except GLib.Error:
                return False
            is_same, before = now == before, now
            return is_same

        wait_for(is_calm, "a tree that does not change")
        return before

    def test_every_part_of_every_tab(self):
        lines = []
        for row, known in TABS:
            self.open(row, known)
            self.send_history()
            if row == "Send SMS…":
                thread = wait_for(lambda: self.tree.find_if(lambda part: part.get_role_name() == "list item"
                                                            and "On my way" in (part.get_name() or "")), "a thread")
                self.tree.press(thread.get_name(), "list item")
                self.tree.wait("Send", "push button")
            if row == "Call…":
                wait_for(lambda: self.tree.find_if(lambda part: "Missed call, Cy" in (part.get_name() or "")), "the calls")
            lines += [f"# {row}", *self.shown()]
        lines = [line.replace(str(self.app.port), "PORT").rstrip() for line in lines]
        actual = "\n".join(lines) + "\n"
        if actual != TABLE.read_text():
            folder = pathlib.Path(os.environ["VELLOWAY_SCREENSHOTS"])
            folder.mkdir(parents=True, exist_ok=True)
            (folder / TABLE.name).write_text(actual)
        self.assertEqual(actual, TABLE.read_text())


if __name__ == "__main__":
    unittest.main()
