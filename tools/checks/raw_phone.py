"""A phone on a bare socket, for checks that must decide themselves when it reads and writes."""
import base64
import json
import os
import socket
import struct
import time

TEXT, CLOSE, PING, PONG = 1, 8, 9, 10


class Phone:
    def __init__(self, port, timeout=20):
        self.messages = []
        self.socket = socket.create_connection(('127.0.0.1', port), timeout)
        key = base64.b64encode(os.urandom(16)).decode()
        self.socket.sendall(f'GET / HTTP/1.1\r\nHost: x\r\nUpgrade: websocket\r\nConnection: Upgrade\r\n'
                            f'Sec-WebSocket-Key: {key}\r\nSec-WebSocket-Version: 13\r\n\r\n'.encode())
        self.buffer = bytearray()
        while b'\r\n\r\n' not in self.buffer:
            self._read()
        head, _, rest = bytes(self.buffer).partition(b'\r\n\r\n')
        if b' 101 ' not in head:
            raise ConnectionError(head.decode(errors='replace'))
        self.buffer = bytearray(rest)

    def _read(self):
        data = self.socket.recv(1 << 20)
        if not data:
            raise ConnectionError('the program has closed the connection')
        self.buffer += data

    @staticmethod
    def frame(opcode, payload):
        """A masked frame; the mask is zero, so that large payloads cost nothing."""
        size = len(payload)
        if size < 126:
            head = struct.pack('!BB', 0x80 | opcode, 0x80 | size)
        elif size < 65536:
            head = struct.pack('!BBH', 0x80 | opcode, 0x80 | 126, size)
        else:
            head = struct.pack('!BBQ', 0x80 | opcode, 0x80 | 127, size)
        return head + bytes(4) + payload

    def send(self, **message):
        self.socket.sendall(self.frame(TEXT, json.dumps(message).encode()))

    def next_frame(self):
        """The opcode and the payload of the next frame of the program, which does not mask and sends whole messages."""
        while True:
            if len(self.buffer) >= 2:
                size, start = self.buffer[1], 2
                if size == 126 and len(self.buffer) >= 4:
                    size, start = struct.unpack('!H', self.buffer[2:4])[0], 4
                elif size == 127 and len(self.buffer) >= 10:
                    size, start = struct.unpack('!Q', self.buffer[2:10])[0], 10
                elif size >= 126:
                    size = 1 << 62
                if len(self.buffer) >= start + size:
                    opcode, payload = self.buffer[0] & 15, bytes(self.buffer[start:start + size])
                    del self.buffer[:start + size]
                    return opcode, payload
            self._read()

    def round_trip(self, timeout=20):
        """Seconds until a ping is answered, which is after all that was sent before it. Keeps the texts that come."""
        start = time.monotonic()
        self.socket.settimeout(timeout)
        payload = os.urandom(8)
        self.socket.sendall(self.frame(PING, payload))
        while True:
            opcode, answer = self.next_frame()
            if opcode == PONG and answer == payload:
                return time.monotonic() - start
            if opcode == CLOSE:
                raise ConnectionError('the program has said good-bye')
            if opcode == TEXT:
                self.messages.append(json.loads(answer))

    def next_message(self, action, timeout=20):
        self.socket.settimeout(timeout)
        while True:
            for index, each in enumerate(self.messages):
                if each.get('action') == action:
                    return self.messages.pop(index)
            opcode, payload = self.next_frame()
            if opcode == TEXT:
                self.messages.append(json.loads(payload))

    def close(self):
        self.socket.close()
