"""A keyboard and a pointer for a Wayland session of KWin, by the protocol that it has for its own helpers.

The messages are written by hand, since there is no library for them in Python: an object's number, the length of the
message with the request's number, and the arguments in words of 32 bits.
"""

import pathlib
import os
import socket
import struct

DISPLAY, REGISTRY, CALLBACK, DEVICES = 1, 2, 3, 4
INTERFACE, VERSION = "org_kde_kwin_fake_input", 4
AUTHENTICATE, BUTTON, MOVE_TO, KEY = 0, 2, 9, 10
LEFT_BUTTON = 0x110
# Of a US keyboard, as the kernel counts keys.
KEYS = {"\n": 28, " ": 57} | {letter: number for row, first in (("qwertyuiop", 16), ("asdfghjkl", 30), ("zxcvbnm", 44))
                              for number, letter in enumerate(row, first)}
LEFT_SHIFT = 42


def text(value):
    raw = value.encode() + b"\0"
    return struct.pack("=I", len(raw)) + raw + b"\0" * (-len(raw) % 4)


def fixed(value):
    return struct.pack("=i", round(value * 256))


class Input:
    def __init__(self, wayland_display):
        self.socket = socket.socket(socket.AF_UNIX)
        self.socket.settimeout(20)
        self.socket.connect(str(pathlib.Path(os.environ["XDG_RUNTIME_DIR"]) / wayland_display))
        self.unread = b""
        self.next = CALLBACK
        self.send(DISPLAY, 1, struct.pack("=I", REGISTRY))
        found = [name for sender, event, body in self.settled(CALLBACK) if (sender, event) == (REGISTRY, 0)
                 for name in [struct.unpack_from("=I", body)[0]] if INTERFACE.encode() + b"\0" in body]
        if not found:
            raise RuntimeError(f"the compositor has no {INTERFACE}")
        self.send(REGISTRY, 0, struct.pack("=I", found[0]) + text(INTERFACE) + struct.pack("=II", VERSION, DEVICES))
        self.send(DEVICES, AUTHENTICATE, text("tests") + text("the user's own keyboard and pointer"))
        self.last = DEVICES
        self.settle()

    def close(self):
        self.socket.close()

    def send(self, sender, request, body):
        self.socket.sendall(struct.pack("=IHH", sender, request, 8 + len(body)) + body)

    def events(self):
        while True:
            while len(self.unread) >= 8:
                sender, event, size = struct.unpack_from("=IHH", self.unread)
                if len(self.unread) < size:
                    break
                yield sender, event, self.unread[8:size]
                self.unread = self.unread[size:]
            piece = self.socket.recv(65536)
            if not piece:
                raise RuntimeError("the compositor has ended the connection")
            self.unread += piece

    def settled(self, callback):
        """What comes until the compositor has handled everything sent so far."""
        self.send(DISPLAY, 0, struct.pack("=I", callback))
        found = []
        for sender, event, body in self.events():
            if sender == DISPLAY and event == 0:
                raise RuntimeError(f"the compositor refuses: {body!r}")
            found.append((sender, event, body))
            if sender == callback:
                # The generator stops before it takes the message off.
                self.unread = self.unread[8 + len(body):]
                return found

    def settle(self):
        self.last += 1
        self.settled(self.last)

    def click(self, x, y):
        self.send(DEVICES, MOVE_TO, fixed(x) + fixed(y))
        self.settle()
        for pressed in (1, 0):
            self.send(DEVICES, BUTTON, struct.pack("=II", LEFT_BUTTON, pressed))
            self.settle()

    def key(self, number, pressed):
        self.send(DEVICES, KEY, struct.pack("=II", number, int(pressed)))
        self.settle()

    def type(self, letters):
        for letter in letters:
            if letter.isupper():
                self.key(LEFT_SHIFT, True)
            self.key(KEYS[letter.lower()], True)
            self.key(KEYS[letter.lower()], False)
            if letter.isupper():
                self.key(LEFT_SHIFT, False)
