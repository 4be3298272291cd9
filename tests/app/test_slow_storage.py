"""Files that arrive on storage which takes long for every call: who waits for it and who does not."""

import base64
import os
import pathlib
import re
import time
import unittest

from support import App, AppTest, free_port, run, terminate, wait_for

PIECE = 600_000
# How long storage takes for each call, and within which time the others are served.
SLOW = 0.8
AT_ONCE = 0.5


def pointer():
    found = re.search(r"x:(\d+) y:(\d+)", run("xdotool", "getmouselocation"))
    return int(found[1]), int(found[2])


class SlowStorage(AppTest):
    def setUp(self):
        self.tray = self.use_tray()
        self.service = self.use_notification_service(["body", "actions"])
        self.report = self.make_folder() / "calls"
        self.report.touch()

    def start_slow_app(self, seconds=SLOW):
        downloads = pathlib.Path(os.environ["HOME"]) / "Downloads"
        self.app = self.start(App(free_port(), env=dict(
            os.environ, LD_PRELOAD=os.environ["VELLOWAY_SLOW_STORAGE"], SLOW_STORAGE_FOLDER=f"{downloads}/",
            SLOW_STORAGE_MILLISECONDS=str(int(seconds * 1000)), SLOW_STORAGE_REPORT=str(self.report))))
        self.app.wait_listening()
        return self.start_node(self.app.port)

    def send_file(self, phone, name, pieces):
        """Returns what the file is to hold."""
        content = os.urandom(PIECE * pieces)
        phone.send({"action": "file_transfer_start", "fileName": name, "fileSize": len(content)})
        for number in range(pieces):
            piece = content[number * PIECE:(number + 1) * PIECE]
            phone.send({"action": "file_chunk", "fileName": name, "fileData": base64.b64encode(piece).decode(),
                        "isLast": number == pieces - 1})
        return content

    def calls(self):
        return self.report.read_text().split("\n")[:-1]

    def is_written(self):
        return any("File handle closed for slow.bin" in each for each in list(self.app.lines))

    def move_and_measure(self, phone):
        """Seconds until the pointer has moved."""
        before = pointer()
        start = time.monotonic()
        phone.send({"action": "remote_control", "command": "move", "type": "mouse_move",
                    "dx": 1 if before[0] < 600 else -1, "dy": 0})
        wait_for(lambda: pointer() != before, "the pointer moves")
        return time.monotonic() - start

    def test_the_pointer_does_not_wait_for_files_of_any_phone(self):
        sender = self.start_slow_app()
        other = self.start_node(self.app.port)
        content = self.send_file(sender, "slow.bin", 4)
        wait_for(self.calls, "the first call to the storage")
        times = [self.move_and_measure(phone) for phone in (other, sender) for _ in range(5)]
        self.assertFalse(self.is_written(), "the file came too fast for this test")
        print("seconds until the pointer moved:", " ".join(f"{each:.3f}" for each in times))
        self.assertLess(max(times), AT_ONCE)
        self.service.wait_shown("File Received")
        self.assertEqual((self.app.downloads / "slow.bin").read_bytes(), content)
        self.assertEqual({each.split(" ", 1)[1] for each in self.calls()}, {"ws.files"})

    def test_what_a_phone_says_after_a_file_takes_effect_after_it_and_what_another_says_at_once(self):
        sender = self.start_slow_app()
        other = self.start_node(self.app.port)
        self.send_file(sender, "slow.bin", 2)
        sender.send({"app": "After the file", "title": "Anna", "body": "Hi", "key": "1"})
        wait_for(self.calls, "the first call to the storage")
        other.send({"app": "Of another", "title": "Anna", "body": "Hi", "key": "2"})
        self.service.wait_shown("After the file")
        titles = [each["summary"] for each in self.service.shown]
        self.assertEqual(sorted(titles.index(each) for each in ("Of another", "File Received", "After the file")),
                         [titles.index(each) for each in ("Of another", "File Received", "After the file")], titles)

    def test_memory_does_not_grow_with_what_storage_has_not_taken(self):
        sender = self.start_slow_app(0.2)
        before = self.app.memory()
        self.send_file(sender, "slow.bin", 60)
        highest = before
        while not self.is_written():
            highest = max(highest, self.app.memory())
            self.assertTrue(self.app.is_running())
            time.sleep(0.05)
        print(f"resident: {before >> 20} MiB before, at most {highest >> 20} MiB for a file of {60 * PIECE >> 20} MiB")
        self.assertLess(highest - before, 24 << 20)

    def test_the_end_does_not_wait_for_storage(self):
        sender = self.start_slow_app(30)
        self.send_file(sender, "slow.bin", 2)
        wait_for(self.calls, "the first call to the storage")
        start = time.monotonic()
        terminate(self.app)
        self.assertEqual(self.app.wait_end(), 0)
        self.assertLess(time.monotonic() - start, 1.5)

    def test_at_the_end_what_has_come_is_written(self):
        sender = self.start_slow_app(0.03)
        content = self.send_file(sender, "slow.bin", 5)
        wait_for(lambda: sum("Received complete message of 8" in each for each in list(self.app.lines)) == 5,
                 "the pieces have come")
        terminate(self.app)
        self.assertEqual(self.app.wait_end(), 0)
        self.assertEqual((self.app.downloads / "slow.bin").read_bytes(), content)


if __name__ == "__main__":
    unittest.main()
