"""Phone notifications on a real notification service, and the answers that go back."""

import json
import os
import pathlib
import unittest

import dbus

from support import AppTest, Bystander, Process, clipboard, run, screenshot, turn, visible_windows, wait_for


class WithDunst(AppTest):
    """dunst has no reply field, so the answer is typed into a panel of the program's own."""

    def setUp(self):
        self.tray = self.use_tray()
        self.bystander = Bystander()
        self.start(Process("dunst", "-config", str(self.dunst_settings())))
        bus = dbus.SessionBus()
        wait_for(lambda: bus.name_has_owner("org.freedesktop.Notifications"), "dunst")
        self.app = self.start_app().wait_listening()
        self.node = self.start_node(self.app.port)

    def dunst_settings(self):
        """dunst asks a menu program which action to take; ours always takes the reply."""
        folder = pathlib.Path(os.environ["HOME"])
        chooser = folder / "choose-reply"
        chooser.write_text("#!/bin/sh\nexec grep -m 1 Reply\n")
        chooser.chmod(0o755)
        demo = pathlib.Path(__file__).parents[2] / "tools" / "demo" / "dunstrc"
        settings = folder / "dunstrc"
        settings.write_text(demo.read_text().replace("[global]", f"[global]\n    dmenu = {chooser}"))
        return settings

    def history(self):
        answer = json.loads(run("dunstctl", "history"))
        return [(entry["summary"]["data"], entry["body"]["data"]) for entry in answer["data"][0]]

    def test_a_notification_is_shown_and_answered_with_its_key(self):
        self.node.send({"app": "Chat", "title": "Ada Winter", "body": "See you at <seven> & bring \"it\"?",
                        "key": "chat:ada|17"})
        heard = self.bystander.wait_notification("Chat")
        self.assertEqual(heard[0], "Velloway")
        self.assertIn("Ada Winter", heard[4])
        wait_for(lambda: run("dunstctl", "count", "displayed").strip() == "1", "one notification on screen")
        screenshot("app-dunst-notification")

        before = visible_windows(self.app.pid)
        run("dunstctl", "context")
        window = wait_for(lambda: visible_windows(self.app.pid) - before, "the reply panel").pop()
        run("xdotool", "windowfocus", "--sync", str(window))
        run("xdotool", "type", "--delay", "20", "On my way / \"soon\"")
        turn(0.3)
        screenshot("app-reply-panel")
        run("xdotool", "key", "Return")
        answer = self.node.wait_message("reply")
        self.assertEqual(answer, {"action": "reply", "key": "chat:ada|17", "message": "On my way / \"soon\""})
        raw = next(text for text in self.node.raw_messages() if "\"reply\"" in text)
        self.assertIn("On my way \\/ ", raw)
        wait_for(lambda: not visible_windows(self.app.pid) - before, "the reply panel has gone")

    def test_markup_in_a_notification_is_shown_as_it_was_written(self):
        self.node.send({"app": "Mail", "title": "Bruno", "body": "1 < 2 && <b>not bold</b>", "key": "m1"})
        self.bystander.wait_notification("Mail")
        wait_for(lambda: run("dunstctl", "count", "displayed").strip() == "1", "one notification on screen")
        run("dunstctl", "close-all")
        [(summary, body)] = wait_for(self.history, "the history of dunst")
        self.assertEqual(summary, "Mail")
        self.assertIn("1 &lt; 2 &amp;&amp; &lt;b&gt;not bold&lt;/b&gt;", body)

    def test_text_from_the_phone_is_announced_and_lands_on_the_clipboard(self):
        self.node.send({"action": "clipboard", "text": "grüße / 🚲"})
        self.bystander.wait_notification("Clipboard Synced")
        wait_for(lambda: clipboard() == "grüße / 🚲", "the text on the clipboard")


class WithReplyField(AppTest):
    """A service that has a reply field of its own is used, and no panel comes up."""

    def setUp(self):
        self.tray = self.use_tray()
        self.service = self.use_notification_service(["body", "actions", "inline-reply"])
        self.app = self.start_app().wait_listening()
        self.node = self.start_node(self.app.port)

    def test_what_is_typed_there_goes_to_the_phone_under_the_key(self):
        self.node.send({"app": "Chat", "title": "Elif", "body": "Coffee?", "key": "k/42"})
        shown = self.service.wait_shown("Chat")
        self.assertEqual(shown["body"], "Elif\nCoffee?")
        self.assertIn("inline-reply", shown["actions"])
        self.service.NotificationReplied(shown["id"], "Yes!\nIn ten minutes")
        self.assertEqual(self.node.wait_message("reply"),
                         {"action": "reply", "key": "k/42", "message": "Yes!\nIn ten minutes"})
        self.assertEqual(visible_windows(self.app.pid), set())

    def test_a_second_notification_under_a_key_takes_the_place_of_the_first(self):
        self.node.send({"app": "Chat", "title": "Elif", "body": "Coffee?", "key": "k1"})
        first = self.service.wait_shown("Chat")
        self.node.send({"app": "Chat too", "title": "Elif", "body": "Or tea?", "key": "k1"})
        self.assertEqual(self.service.wait_shown("Chat too")["replaces"], first["id"])

    def test_a_falling_battery_warns_once_a_step(self):
        self.node.send({"action": "connected", "deviceName": "Paper Phone"})
        for level in (26, 25, 24, 19):
            self.node.send({"action": "battery_status", "level": level, "isCharging": False})
        self.service.wait_shown("🟡 Paper Phone — 19% Battery")
        self.assertEqual([each["summary"] for each in self.service.shown],
                         ["🔋 Paper Phone — 25% Battery", "🟡 Paper Phone — 19% Battery"])


if __name__ == "__main__":
    unittest.main()
