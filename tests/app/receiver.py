"""A phone that receives one file, keeps its checksum and nothing else, and stops reading when it is told to."""

import base64
import os
import socket
import struct
import threading
import zlib


class Receiver(threading.Thread):
    """Connects at once and reads in a thread of its own."""

    def __init__(self, port, pause_after=None):
        super().__init__(daemon=True)
        self.size = 0
        self.checksum = 0
        self.error = None
        self.announced_size = None
        self.is_complete = False
        self.paused = threading.Event()
        self.resume = threading.Event()
        self._pause_after = pause_after
        self._socket = socket.create_connection(("127.0.0.1", port), timeout=60)
        shake_hands(self._socket)
        self.start()

    def run(self):
        try:
            while not self.is_complete:
                self._take(self._read_frame())
        except (OSError, EOFError, ValueError) as error:
            self.error = repr(error)

    def _read(self, count):
        data = bytearray(count)
        view = memoryview(data)
        while view:
            got = self._socket.recv_into(view)
            if got == 0:
                raise EOFError
            view = view[got:]
        return data

    def _read_frame(self):
        opcode, length = self._read(2)
        if opcode != 0x81:
            raise ValueError(f"first byte {opcode:#x}")
        if length == 126:
            length, = struct.unpack(">H", self._read(2))
        elif length == 127:
            length, = struct.unpack(">Q", self._read(8))
        return self._read(length)

    def _take(self, message):
        if b'"file_transfer_start"' in message[:64]:
            self.announced_size = int(message[message.rindex(b":") + 1:-1])
        if b'"file_chunk"' not in message[:64]:
            return
        begin = message.index(b'"fileData":"') + len(b'"fileData":"')
        # What is not of the alphabet, such as the backslashes, is skipped.
        data = base64.b64decode(message[begin:message.rindex(b'","isLast":')])
        self.size += len(data)
        self.checksum = zlib.crc32(data, self.checksum)
        self.is_complete = message.endswith(b"true}")
        if self._pause_after is not None and self.size >= self._pause_after:
            self._pause_after = None
            self.paused.set()
            self.resume.wait()


def shake_hands(connection):
    key = base64.b64encode(os.urandom(16)).decode()
    connection.sendall((f"GET / HTTP/1.1\r\nHost: phone\r\nUpgrade: websocket\r\nConnection: Upgrade\r\n"
                        f"Sec-WebSocket-Key: {key}\r\nSec-WebSocket-Version: 13\r\n\r\n").encode())
    answer = b""
    while not answer.endswith(b"\r\n\r\n"):
        byte = connection.recv(1)
        if not byte:
            raise EOFError
        answer += byte


def checksum_of(path):
    checksum = 0
    with open(path, "rb") as file:
        while block := file.read(1 << 20):
            checksum = zlib.crc32(block, checksum)
    return checksum
