"""A notification service that prints the text of every call; "silent" never answers one: "silent" or "answering"."""
import sys

import dbus
import dbus.mainloop.glib
import dbus.service
from gi.repository import GLib

NAME = 'org.freedesktop.Notifications'


class Service(dbus.service.Object):
    answers = sys.argv[1] == 'answering'
    last = 0

    @dbus.service.method(NAME, out_signature='as')
    def GetCapabilities(self):
        return ['body', 'actions']

    @dbus.service.method(NAME, out_signature='ssss')
    def GetServerInformation(self):
        return ('check', 'velloway checks', '1', '1.2')

    @dbus.service.method(NAME, in_signature='susssasa{sv}i', out_signature='u', async_callbacks=('done', 'failed'))
    def Notify(self, app, replaces, icon, summary, body, actions, hints, timeout, done, failed):
        print('call', body, flush=True)
        if self.answers:
            Service.last += 1
            done(replaces or Service.last)

    @dbus.service.method(NAME, in_signature='u')
    def CloseNotification(self, number):
        pass


dbus.mainloop.glib.DBusGMainLoop(set_as_default=True)
bus = dbus.SessionBus()
name = dbus.service.BusName(NAME, bus, do_not_queue=True)
service = Service(bus, '/org/freedesktop/Notifications')
print('ready', flush=True)
GLib.MainLoop().run()
