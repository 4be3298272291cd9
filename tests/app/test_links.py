"""Clients that we did not write, and several at once."""

import json
import os
import pathlib
import unittest

from support import AppTest, NodePhone, terminate, wait_for


class Links(AppTest):
    def setUp(self):
        self.tray = self.use_tray()
        self.app = self.start_app().wait_listening()

    def test_the_first_message_is_the_welcome_with_a_name(self):
        node = self.start(NodePhone(self.app.port))
        welcome = node.wait_message("connected")
        self.assertEqual(set(welcome), {"action", "deviceName"})
        self.assertTrue(welcome["deviceName"])
        self.assertEqual(len(node.messages()), 1)

    def test_one_phone_may_leave_while_the_other_stays(self):
        first, second = self.start_node(self.app.port), self.start_node(self.app.port)
        first.process.stdin.close()
        first.process.kill()
        first.wait_end()
        self.start_node(self.app.port)
        self.assertTrue(second.is_running())

    def test_the_simulated_phone_plays_its_demonstration(self):
        script = pathlib.Path(__file__).parents[2] / "tools" / "demo" / "demo.jsonl"
        short = [line for line in script.read_text().splitlines() if line.startswith("{")]
        self.assertGreater(len(short), 10)
        quick = [{key: value for key, value in json.loads(line).items() if key not in ("at", "after")}
                 for line in short]
        file = pathlib.Path(os.environ["HOME"]) / "quick.jsonl"
        file.write_text("\n".join(json.dumps(line) for line in quick))
        player = self.start_phone(self.app.port, "--script", str(file))
        self.assertEqual(player.wait_end(60), 0, "\n".join(player.lines[-10:]))
        self.assertTrue(self.app.is_running())

    def test_the_phone_dials_in_again_by_itself(self):
        one = self.start_phone(self.app.port, "--stay", "--exec", "sleep 0")
        one.wait_line("< connected")
        terminate(self.app)
        self.app.wait_end()
        one.wait_line("the connection ended")
        again = self.start_app(port=self.app.port).wait_listening()
        wait_for(lambda: sum("< connected" in line for line in one.lines) == 2, "a second welcome")
        self.assertTrue(again.is_running())


if __name__ == "__main__":
    unittest.main()
