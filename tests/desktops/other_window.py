"""Another program's window over the whole screen: other_window.py [maximized]

Prints when the window gets and loses the keyboard and what is typed into it. For each line that it reads it prints the
token that a desktop's launcher would hand to a program it starts.
"""

import sys

import gi

gi.require_version("Gtk", "3.0")
from gi.repository import Gio, GLib, Gtk


def say(*words):
    print(*words, flush=True)


def asked(source, condition, window):
    if not sys.stdin.readline():
        return False
    launch = window.get_display().get_app_launch_context()
    launch.set_timestamp(Gtk.get_current_event_time())
    started = Gio.AppInfo.create_from_commandline("true", "Velloway", Gio.AppInfoCreateFlags.SUPPORTS_STARTUP_NOTIFICATION)
    say("token", launch.get_startup_notify_id(started, []))
    return True


window = Gtk.Window(title="Other")
style = Gtk.CssProvider()
style.load_from_data(b"window { background: #102040; }")
window.get_style_context().add_provider(style, Gtk.STYLE_PROVIDER_PRIORITY_USER)
window.connect("focus-in-event", lambda *_: say("focus in"))
window.connect("focus-out-event", lambda *_: say("focus out"))
window.connect("key-press-event", lambda _, event: say("key", event.string))
GLib.io_add_watch(sys.stdin.fileno(), GLib.IO_IN | GLib.IO_HUP, asked, window)
window.maximize() if "maximized" in sys.argv else window.fullscreen()
window.show_all()
Gtk.main()
