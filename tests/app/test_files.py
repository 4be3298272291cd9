"""Files in both directions between the program and the simulated phone."""

import base64
import hashlib
import os
import pathlib
import socket
import unittest

from receiver import Receiver, checksum_of, shake_hands
from support import APP, AppTest, Process, open_files, turn, visible_windows, wait_for

MIB = 1 << 20
# How many files that are being received the program keeps open.
MOST_OPEN = 64
# tools/checks/huge-file asks for more.
SPARSE_MIB = int(os.environ.get("VELLOWAY_SPARSE_MIB", "768"))


def digest(path):
    return hashlib.sha256(pathlib.Path(path).read_bytes()).hexdigest()


class Files(AppTest):
    def setUp(self):
        self.tray = self.use_tray()
        self.service = self.use_notification_service(["body", "actions"])
        self.folder = self.make_folder()
        self.app = self.start_app().wait_listening()

    def make(self, name, size):
        path = self.folder / name
        path.write_bytes(os.urandom(size))
        return path

    def received(self, name, path):
        target = self.app.downloads / name
        return target.exists() and target.stat().st_size == path.stat().st_size and digest(target) == digest(path)

    def test_64_mib_arrive_byte_for_byte_in_flat_memory(self):
        path = self.make("big.bin", 64 * MIB)
        target = self.app.downloads / "big.bin"
        sender = self.start_phone(self.app.port, "--exec", f"file '{path}'")
        wait_for(lambda: target.exists() and target.stat().st_size >= 8 * MIB, "the first 8 MiB")
        settled = self.app.memory()
        highest = settled
        while sender.is_running():
            highest = max(highest, self.app.memory())
            turn()
        self.assertEqual(sender.wait_end(), 0)
        self.service.wait_shown("File Received")
        self.assertTrue(self.received("big.bin", path))
        print(f"resident: {settled / MIB:.1f} MiB after 8 MiB of the file, at most {highest / MIB:.1f} MiB")
        self.assertLess(highest - settled, 16 * MIB)

    def test_64_mib_reach_every_phone_byte_for_byte(self):
        path = self.make("outgoing.bin", 64 * MIB)
        phones = []
        for number in (1, 2):
            folder = self.folder / f"phone{number}"
            folder.mkdir()
            each = self.start_phone(self.app.port, "--save-to", str(folder), "--exec",
                                    'expect {"action":"file_chunk","isLast":true} 60')
            each.wait_line("connected to")
            each.wait_line("< connected")
            phones.append((each, folder))
        second = self.start(Process(APP, str(path)))
        self.assertEqual(second.wait_end(), 0)
        for each, folder in phones:
            self.assertEqual(each.wait_end(90), 0, "\n".join(each.lines[-5:]))
            self.assertEqual(digest(folder / "outgoing.bin"), digest(path))
        self.service.wait_shown("File Sent")

    def make_sparse(self, name, size):
        """Zeros without a block on the disk, with random bytes at the start, in the middle and at the end."""
        path = self.folder / name
        with open(path, "wb") as file:
            for place in (0, size // 2 + 12345, size - MIB):
                file.seek(place)
                file.write(os.urandom(MIB))
        return path

    def sent_count(self):
        return sum(each["summary"] == "File Sent" for each in self.service.shown)

    def open_window(self):
        """Handing over a file opens the window, which takes more memory than sending does."""
        self.assertEqual(self.start(Process(APP, str(self.make("small.bin", 5)))).wait_end(), 0)
        wait_for(lambda: self.sent_count() == 1 and visible_windows(self.app.pid), "the window")
        last = [0]

        def is_steady():
            turn(0.5)
            before, last[0] = last[0], self.app.memory()
            return last[0] - before < MIB

        wait_for(is_steady, "memory that no longer grows")

    def never_reading(self):
        connection = socket.create_connection(("127.0.0.1", self.app.port))
        self.addCleanup(connection.close)
        shake_hands(connection)

    def test_a_large_file_reaches_phones_that_read_when_they_like_in_little_memory(self):
        size = SPARSE_MIB * MIB
        seconds = 60 + SPARSE_MIB // 20
        path = self.make_sparse("sparse.bin", size)
        self.open_window()
        for _ in range(20):
            self.never_reading()
        quick = Receiver(self.app.port)
        resting = Receiver(self.app.port, pause_after=16 * MIB)
        before = highest = self.app.memory()
        second = self.start(Process(APP, str(path)))
        self.assertEqual(second.wait_end(), 0)

        def is_done(receiver):
            nonlocal highest
            highest = max(highest, self.app.memory())
            self.assertIsNone(receiver.error)
            return receiver.is_complete

        wait_for(lambda: is_done(quick), "the whole file at the phone that reads", seconds)
        wait_for(lambda: self.sent_count() == 2, "the notification")
        self.assertTrue(resting.paused.is_set())
        self.assertLess(resting.size, size)
        resting.resume.set()
        wait_for(lambda: is_done(resting), "the whole file at the phone that has rested", seconds)
        expected = (size, size, checksum_of(path))
        for receiver in (quick, resting):
            self.assertEqual((receiver.announced_size, receiver.size, receiver.checksum), expected)
        print(f"resident: {before / MIB:.1f} MiB before {SPARSE_MIB} MiB were sent, at most {highest / MIB:.1f} MiB")
        self.assertLess(highest - before, 32 * MIB)

    def test_a_phone_killed_in_mid_transfer_goes_on_where_it_stopped(self):
        path = self.make("broken.bin", 5 * MIB + 17)
        first = self.start_phone(self.app.port, "--once", "--exec", f"file '{path}' --kill-after-chunks 3")
        self.assertEqual(first.wait_end(), 0)
        target = self.app.downloads / "broken.bin"
        wait_for(lambda: target.exists() and target.stat().st_size == 3 * MIB, "the first three chunks")
        second = self.start_phone(self.app.port, "--exec", f"file '{path}' --no-start --first-chunk 3")
        self.assertEqual(second.wait_end(), 0)
        self.service.wait_shown("File Received")
        self.assertTrue(self.received("broken.bin", path))

    def test_a_phone_killed_in_mid_transfer_may_start_over(self):
        path = self.make("again.bin", 4 * MIB)
        first = self.start_phone(self.app.port, "--once", "--exec", f"file '{path}' --kill-after-chunks 2 --unescaped")
        self.assertEqual(first.wait_end(), 0)
        second = self.start_phone(self.app.port, "--exec", f"file '{path}' --unescaped --chunk 300000")
        self.assertEqual(second.wait_end(), 0)
        self.service.wait_shown("File Received")
        self.assertTrue(self.received("again.bin", path))

    def test_300_files_at_the_same_time_arrive_whole_and_few_of_them_are_open(self):
        contents = {f"part{number}.bin": os.urandom(3000) for number in range(300)}
        sender = self.start_node(self.app.port)
        downloads = self.app.downloads
        highest = 0

        def send_pieces(names, index):
            for name in names:
                piece = contents[name][1000 * index:1000 * (index + 1)]
                sender.send({"action": "file_chunk", "fileName": name, "isLast": index == 2,
                             "fileData": base64.b64encode(piece).decode()})

        def open_downloads():
            nonlocal highest
            count = sum(os.path.dirname(file) == str(downloads) for file in open_files(self.app.pid))
            highest = max(highest, count)
            return count

        def have_come(size):
            open_downloads()
            return all((downloads / name).exists() and (downloads / name).stat().st_size == size
                       for name in contents)

        for name, content in contents.items():
            sender.send({"action": "file_transfer_start", "fileName": name, "fileSize": len(content)})
        send_pieces(contents, 0)
        wait_for(lambda: have_come(1000), "the first piece of every file")
        send_pieces(reversed(contents), 1)
        wait_for(lambda: have_come(2000), "the second piece of every file")
        self.assertGreater(open_downloads(), 0, "the files that came last")
        send_pieces(contents, 2)
        wait_for(lambda: have_come(3000), "the last piece of every file")
        closed = {f"[WebSocketServer] File handle closed for {name}" for name in contents}
        wait_for(lambda: closed <= set(self.app.lines), "the end of every file")
        self.assertEqual(open_downloads(), 0)
        self.assertLessEqual(highest, MOST_OPEN + 6)
        for name, content in contents.items():
            self.assertEqual((downloads / name).read_bytes(), content, name)

    def test_a_whole_file_in_one_message_and_a_file_of_no_bytes_arrive(self):
        path = self.make("whole.bin", 3 * MIB + 1)
        empty = self.make("empty.bin", 0)
        sender = self.start_phone(self.app.port, "--exec", f"file '{path}' --whole; file '{empty}'")
        self.assertEqual(sender.wait_end(), 0)
        wait_for(lambda: sum(each["summary"] == "File Received" for each in self.service.shown) >= 4,
                 "both files are told")
        self.assertTrue(self.received("whole.bin", path))
        self.assertTrue(self.received("empty.bin", empty))


if __name__ == "__main__":
    unittest.main()
