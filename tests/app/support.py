"""What the tests of the whole program share: the program itself, phones, and the desktop services around it.

Everything runs on the desktop that tests/desktop/with-desktop gives, on one thread. Services that the program
calls are offered from here, so waiting always keeps the message loop turning.
"""

import contextlib
import ctypes
import json
import os
import pathlib
import re
import select
import signal
import socket
import subprocess
import tempfile
import threading
import time
import unittest

import dbus
import dbus.bus
import dbus.mainloop.glib
import dbus.service
from gi.repository import GLib

dbus.mainloop.glib.DBusGMainLoop(set_as_default=True)

APP = os.environ["VELLOWAY_APP"]
PHONE = os.environ["VELLOWAY_PHONE"]
NODE_CLIENT = os.environ["VELLOWAY_NODE_CLIENT"]
SCREENSHOTS = pathlib.Path(os.environ["VELLOWAY_SCREENSHOTS"])

# How long anything may take that is to happen at once, on a busy machine.
TIMEOUT = 20


def turn(seconds=0.02):
    """Lets the services offered from here answer."""
    context = GLib.MainContext.default()
    while context.iteration(False):
        pass
    time.sleep(seconds)


def wait_for(condition, what, seconds=TIMEOUT):
    """Returns the first true answer of `condition`; fails the test when there is none in time."""
    end = time.monotonic() + seconds
    while True:
        answer = condition()
        if answer:
            return answer
        if time.monotonic() > end:
            raise AssertionError(f"not within {seconds} s: {what}")
        turn()


def stays(condition, what, seconds):
    """Fails the test when `condition` turns false within the time."""
    end = time.monotonic() + seconds
    while time.monotonic() < end:
        if not condition():
            raise AssertionError(f"no longer: {what}")
        turn()


def call(target, interface, method, *arguments):
    """A call over the bus that lets us answer calls while it is under way."""
    answers = []
    dbus.Interface(target, interface).__getattr__(method)(
        *arguments,
        reply_handler=lambda *values: answers.append((values, None)),
        error_handler=lambda error: answers.append(((), error)),
    )
    values, error = wait_for(lambda: answers and answers[0], f"an answer to {method}")
    if error:
        raise error
    return values[0] if len(values) == 1 else values


def free_port():
    with socket.socket() as probe:
        probe.bind(("127.0.0.1", 0))
        return probe.getsockname()[1]


def run(*words, **options):
    return subprocess.run(words, check=True, capture_output=True, text=True, timeout=TIMEOUT, **options).stdout


def screenshot(name):
    SCREENSHOTS.mkdir(parents=True, exist_ok=True)
    run("import", "-silent", "-window", "root", str(SCREENSHOTS / f"{name}.png"))


def colors(window):
    """How many colours a window shows: a blank one has one."""
    picture = subprocess.run(["import", "-silent", "-window", str(window), "png:-"], capture_output=True,
                             check=True, timeout=TIMEOUT).stdout
    return int(subprocess.run(["identify", "-format", "%k", "png:-"], input=picture, capture_output=True,
                              check=True, timeout=TIMEOUT).stdout)


class Process:
    """A child with its lines of output collected."""

    def __init__(self, *words, **options):
        self.lines = []
        self.process = subprocess.Popen(
            words, stdin=subprocess.PIPE, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True,
            errors="replace", **options)
        self.reader = threading.Thread(target=self._read, daemon=True)
        self.reader.start()

    def _read(self):
        for line in self.process.stdout:
            self.lines.append(line.rstrip("\n"))

    @property
    def pid(self):
        return self.process.pid

    def is_running(self):
        return self.process.poll() is None

    def write(self, line):
        self.process.stdin.write(line + "\n")
        self.process.stdin.flush()

    def wait_line(self, pattern, seconds=TIMEOUT):
        def find():
            return next((line for line in list(self.lines) if re.search(pattern, line)), None)

        try:
            return wait_for(lambda: find() or (not self.is_running() and "ended"), pattern, seconds)
        except AssertionError as error:
            raise AssertionError(f"{error}\n" + "\n".join(self.lines[-40:])) from None

    def wait_end(self, seconds=TIMEOUT):
        try:
            wait_for(lambda: not self.is_running(), "the end of the process", seconds)
        except AssertionError as error:
            raise AssertionError(f"{error}\n" + "\n".join(self.lines[-40:])) from None
        self.reader.join(TIMEOUT)
        return self.process.returncode

    def stop(self):
        if self.is_running():
            self.process.kill()
        self.process.wait()
        self.reader.join(TIMEOUT)
        self.process.stdin.close()
        self.process.stdout.close()

    def memory(self):
        """Resident bytes."""
        return self._bytes("VmRSS")

    def most_memory(self):
        """The most resident bytes that it ever had."""
        return self._bytes("VmHWM")

    def _bytes(self, name):
        status = pathlib.Path(f"/proc/{self.pid}/status").read_text()
        return int(re.search(name + r":\s+(\d+) kB", status)[1]) * 1024


class App(Process):
    """The program, with its settings written before it starts."""

    def __init__(self, port, *files, program=APP, **options):
        self.port = port
        self.downloads = pathlib.Path(os.environ["HOME"]) / "Downloads"
        self.downloads.mkdir(parents=True, exist_ok=True)
        settings = pathlib.Path(os.environ["XDG_CONFIG_HOME"]) / "velloway" / "velloway.conf"
        settings.parent.mkdir(parents=True, exist_ok=True)
        settings.write_text(f"[General]\nport={port}\n")
        super().__init__(program, *files, **options)

    def wait_listening(self):
        def answers():
            if not self.is_running():
                raise AssertionError("the program ended:\n" + "\n".join(self.lines[-40:]))
            with socket.socket() as probe:
                return probe.connect_ex(("127.0.0.1", self.port)) == 0

        wait_for(answers, f"the program listens on {self.port}")
        return self


class NodePhone(Process):
    """A phone that speaks through the `ws` package of Node."""

    def __init__(self, port):
        super().__init__("node", NODE_CLIENT, f"ws://127.0.0.1:{port}")

    def send(self, message):
        self.write(json.dumps(message))

    def messages(self):
        return [json.loads(line[2:]) for line in list(self.lines) if line.startswith("< ")]

    def raw_messages(self):
        return [line[2:] for line in list(self.lines) if line.startswith("< ")]

    def wait_message(self, action, seconds=TIMEOUT):
        def find():
            if not self.is_running():
                raise AssertionError("the client ended:\n" + "\n".join(self.lines[-20:]))
            return next((each for each in self.messages() if each.get("action") == action), None)

        return wait_for(find, f"a message {action}; so far {self.messages()}", seconds)


def phone(port, *words, **options):
    """The simulated phone."""
    return Process(PHONE, "--port", str(port), *words, **options)


class Properties:
    """Read-only properties for services of dbus-python, which has none of its own."""

    def properties_xml(self):
        return "".join(f'<property name="{name}" type="{kind}" access="read"/>'
                       for name, kind, _ in self.property_list())

    @dbus.service.method("org.freedesktop.DBus.Properties", in_signature="ss", out_signature="v")
    def Get(self, interface, name):
        return next(value for each, _, value in self.property_list() if each == name)

    @dbus.service.method("org.freedesktop.DBus.Properties", in_signature="s", out_signature="a{sv}")
    def GetAll(self, interface):
        return {name: value for name, _, value in self.property_list()}


class TrayWatcher(Properties, dbus.service.Object):
    """The tray of a desktop, as the bus sees it; reads and uses the program's item and menu."""

    NAME = "org.kde.StatusNotifierWatcher"
    MENU = "com.canonical.dbusmenu"

    def __init__(self):
        self.items = []
        self.bus = dbus.SessionBus()
        self.name = dbus.service.BusName(self.NAME, self.bus, do_not_queue=True)
        super().__init__(self.bus, "/StatusNotifierWatcher")

    def property_list(self):
        return [
            ("IsStatusNotifierHostRegistered", "b", dbus.Boolean(True)),
            ("ProtocolVersion", "i", dbus.Int32(0)),
            ("RegisteredStatusNotifierItems", "as", dbus.Array(self.items, signature="s")),
        ]

    @dbus.service.method("org.freedesktop.DBus.Introspectable", out_signature="s", path_keyword="object_path",
                         connection_keyword="connection")
    def Introspect(self, object_path=None, connection=None):
        xml = dbus.service.Object.Introspect(self, object_path, connection)
        head = f'<interface name="{self.NAME}">'
        return xml.replace(head, head + self.properties_xml())

    @dbus.service.method(NAME, in_signature="s", sender_keyword="sender")
    def RegisterStatusNotifierItem(self, service, sender=None):
        item = (sender, service) if service.startswith("/") else (service, "/StatusNotifierItem")
        self.items.append(item[0] + item[1])
        self.item = item
        self.StatusNotifierItemRegistered(item[0] + item[1])

    @dbus.service.method(NAME, in_signature="s")
    def RegisterStatusNotifierHost(self, service):
        pass

    @dbus.service.signal(NAME, signature="s")
    def StatusNotifierItemRegistered(self, service):
        pass

    def _menu(self):
        wait_for(lambda: self.items, "the program's item in the tray")
        name, path = self.item
        item = self.bus.get_object(name, path, introspect=False)
        menu = call(item, dbus.PROPERTIES_IFACE, "Get", "org.kde.StatusNotifierItem", "Menu")
        return self.bus.get_object(name, menu, introspect=False)

    def menu(self):
        """The rows as (id, properties), from top to bottom."""
        _, root = call(self._menu(), self.MENU, "GetLayout", dbus.Int32(0), dbus.Int32(-1),
                       dbus.Array([], signature="s"))
        return [(int(row[0]), row[1]) for row in root[2]]

    def titles(self):
        """None stands for a line between rows."""
        return [None if row.get("type") == "separator" else str(row.get("label", "")) for _, row in self.menu()]

    def status(self):
        """None while the item is that of a program that has just gone."""
        try:
            return next((title for title in self.titles() if title and title.startswith("Server: ")), None)
        except dbus.DBusException as error:
            if error.get_dbus_name() != "org.freedesktop.DBus.Error.ServiceUnknown":
                raise
            return None

    def choose(self, title):
        number = next(number for number, row in self.menu() if row.get("label") == title)
        call(self._menu(), self.MENU, "Event", dbus.Int32(number), "clicked",
             dbus.String("", variant_level=1), dbus.UInt32(0))


class NotificationService(dbus.service.Object):
    """A notification service that shows nothing, remembers everything and has a reply field."""

    NAME = "org.freedesktop.Notifications"

    def __init__(self, capabilities):
        self.capabilities = capabilities
        self.shown = []
        self.name = dbus.service.BusName(self.NAME, dbus.SessionBus(), do_not_queue=True)
        super().__init__(dbus.SessionBus(), "/org/freedesktop/Notifications")

    @dbus.service.method(NAME, out_signature="as")
    def GetCapabilities(self):
        return self.capabilities

    @dbus.service.method(NAME, out_signature="ssss")
    def GetServerInformation(self):
        return ("test", "velloway tests", "1", "1.2")

    @dbus.service.method(NAME, in_signature="susssasa{sv}i", out_signature="u")
    def Notify(self, app, replaces, icon, summary, body, actions, hints, timeout):
        number = int(replaces) or len(self.shown) + 1
        self.shown.append({
            "id": number, "app": str(app), "replaces": int(replaces), "summary": str(summary), "body": str(body),
            "actions": {str(key): str(title) for key, title in zip(actions[::2], actions[1::2])},
            "hints": hints,
        })
        return number

    @dbus.service.method(NAME, in_signature="u")
    def CloseNotification(self, number):
        self.NotificationClosed(number, 3)

    @dbus.service.signal(NAME, signature="uu")
    def NotificationClosed(self, number, reason):
        pass

    @dbus.service.signal(NAME, signature="us")
    def ActionInvoked(self, number, key):
        pass

    @dbus.service.signal(NAME, signature="us")
    def NotificationReplied(self, number, text):
        pass

    def wait_shown(self, summary):
        return wait_for(lambda: next((each for each in self.shown if each["summary"] == summary), None),
                        f"a notification titled {summary}; so far {self.shown}")


class Bystander:
    """Hears what is said to the notification service of the desktop, without taking part."""

    def __init__(self):
        self.notifications = []
        self.bus = dbus.bus.BusConnection(os.environ["DBUS_SESSION_BUS_ADDRESS"])
        monitor = self.bus.get_object("org.freedesktop.DBus", "/org/freedesktop/DBus", introspect=False)
        self.bus.add_message_filter(self._hear)
        rule = "type='method_call',interface='org.freedesktop.Notifications',member='Notify'"
        monitor.BecomeMonitor([rule], dbus.UInt32(0), dbus_interface="org.freedesktop.DBus.Monitoring")

    def _hear(self, _, message):
        if message.get_member() == "Notify":
            self.notifications.append([*message.get_args_list()])

    def wait_notification(self, summary):
        return wait_for(lambda: next((each for each in self.notifications if each[3] == summary), None),
                        f"a notification titled {summary} on the bus")


class AppTest(unittest.TestCase):
    """A test that starts programs; all of them end with it."""

    maxDiff = None

    def start(self, process):
        self.addCleanup(process.stop)
        return process

    def use_tray(self):
        """A tray to hold the program's icon, until the test is over."""
        tray = TrayWatcher()
        self.addCleanup(tray.remove_from_connection)
        return tray

    def use_notification_service(self, capabilities):
        service = NotificationService(capabilities)
        self.addCleanup(service.remove_from_connection)
        return service

    def make_folder(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        return pathlib.Path(folder.name)

    def start_app(self, *files, port=None, program=APP):
        return self.start(App(port or free_port(), *files, program=program))

    def start_phone(self, port, *words, **options):
        return self.start(phone(port, *words, **options))

    def copy(self, text):
        """Another program owns the clipboard, until the test is over; returns its process."""
        owner = self.start(Process("xclip", "-selection", "clipboard", "-i", "-quiet"))
        owner.process.stdin.write(text)
        owner.process.stdin.close()
        wait_for(lambda: clipboard() == text, "the text on the clipboard")
        return owner

    def start_node(self, port):
        node = self.start(NodePhone(port))
        node.wait_message("connected")
        return node


def clipboard():
    found = subprocess.run(["xclip", "-selection", "clipboard", "-o"], capture_output=True, timeout=TIMEOUT)
    return found.stdout.decode(errors="replace") if found.returncode == 0 else None


def open_files(pid):
    names = set()
    for each in pathlib.Path(f"/proc/{pid}/fd").iterdir():
        # It may be closed by now.
        with contextlib.suppress(FileNotFoundError):
            names.add(os.readlink(each))
    return names


def is_full(pipe):
    """Whether a write to this end of a pipe would wait."""
    return not select.select([], [pipe], [], 0)[1]


def visible_windows(pid):
    found = subprocess.run(["xdotool", "search", "--onlyvisible", "--pid", str(pid)], capture_output=True, text=True)
    return {int(line) for line in found.stdout.split()}


class _ClientMessage(ctypes.Structure):
    _fields_ = [("type", ctypes.c_int), ("serial", ctypes.c_ulong), ("send_event", ctypes.c_int),
                ("display", ctypes.c_void_p), ("window", ctypes.c_ulong), ("message_type", ctypes.c_ulong),
                ("format", ctypes.c_int), ("data", ctypes.c_long * 5), ("padding", ctypes.c_long * 24)]


def close_window(window):
    """Asks a window to close, as the button in its frame does; there is no window manager to draw one."""
    x11 = ctypes.CDLL("libX11.so.6")
    x11.XOpenDisplay.restype = ctypes.c_void_p
    x11.XInternAtom.restype = ctypes.c_ulong
    display = ctypes.c_void_p(x11.XOpenDisplay(None))
    atom = [x11.XInternAtom(display, name, 0) for name in (b"WM_PROTOCOLS", b"WM_DELETE_WINDOW")]
    client_message = 33
    message = _ClientMessage(type=client_message, window=window, message_type=atom[0], format=32)
    message.data[0] = atom[1]
    x11.XSendEvent(display, ctypes.c_ulong(window), 0, ctypes.c_long(0), ctypes.byref(message))
    x11.XCloseDisplay(display)


def terminate(process):
    os.kill(process.pid, signal.SIGTERM)
