#!/usr/bin/python3
"""Stands in for the desktop portal's GlobalShortcuts on a private session bus.

Behaviour comes from the command line; the test drives the desktop's side
(activations, ending a session) and reads what was asked of it through the
org.corvane.test.FakePortal interface on the portal's object.
"""
import argparse

import dbus
import dbus.mainloop.glib
import dbus.service
from gi.repository import GLib

BUS_NAME = 'org.freedesktop.portal.Desktop'
PORTAL_PATH = '/org/freedesktop/portal/desktop'
SHORTCUTS = 'org.freedesktop.portal.GlobalShortcuts'
CONTROL = 'org.corvane.test.FakePortal'


def sender_part(sender):
    return sender.lstrip(':').replace('.', '_')


def shown(trigger):
    # The desktop's own way of writing a trigger: "CTRL+ALT+Right" -> "Ctrl+Alt+Right".
    return '+'.join(part.capitalize() if part.isupper() and len(part) > 1 else part for part in trigger.split('+'))


class Request(dbus.service.Object):
    @dbus.service.signal('org.freedesktop.portal.Request', signature='ua{sv}')
    def Response(self, code, results):
        pass


class Session(dbus.service.Object):
    def __init__(self, portal, path):
        super().__init__(portal.connection, path)
        self.portal = portal
        self.path = path
        self.bound = {}

    @dbus.service.method('org.freedesktop.portal.Session')
    def Close(self):
        self.portal.calls.append('Close')
        self.portal.end(self)

    @dbus.service.signal('org.freedesktop.portal.Session', signature='a{sv}')
    def Closed(self, details):
        pass


class Portal(dbus.service.Object):
    def __init__(self, bus, options):
        super().__init__(bus, PORTAL_PATH)
        self.options = options
        self.calls = []
        self.sessions = {}

    def respond(self, sender, options, code, results):
        request = Request(self.connection, '/org/freedesktop/portal/desktop/request/%s/%s'
                          % (sender_part(sender), options['handle_token']))

        def answer():
            if self.options.silent:
                return False
            request.Response(dbus.UInt32(code), dbus.Dictionary(results, signature='sv'))
            request.remove_from_connection()
            return False
        GLib.timeout_add(20, answer)
        return dbus.ObjectPath(request._object_path)

    def granted(self, session):
        return dbus.Array([(id_, dbus.Dictionary({'description': props.get('description', ''),
                                                  'trigger_description': shown(props.get('preferred_trigger', ''))},
                                                 signature='sv'))
                           for id_, props in session.bound.items()], signature='(sa{sv})')

    def end(self, session):
        session.remove_from_connection()
        self.sessions.pop(session.path, None)

    @dbus.service.method('org.freedesktop.DBus.Properties', in_signature='ss', out_signature='v')
    def Get(self, interface, name):
        if interface == SHORTCUTS and name == 'version':
            return dbus.UInt32(self.options.version)
        raise dbus.exceptions.DBusException('no such property', name='org.freedesktop.DBus.Error.InvalidArgs')

    @dbus.service.method(SHORTCUTS, in_signature='a{sv}', out_signature='o', sender_keyword='sender')
    def CreateSession(self, options, sender=None):
        token = str(options['session_handle_token'])
        self.calls.append('CreateSession:' + token)
        path = '/org/freedesktop/portal/desktop/session/%s/%s' % (sender_part(sender), token)
        session = Session(self, path)
        self.sessions[path] = session
        results = {'session_handle': path}
        if self.options.draft:
            session.bound = {str(id_): dict(props) for id_, props in options.get('shortcuts', [])}
            results['shortcuts'] = self.granted(session)
        return self.respond(sender, options, 0, results)

    @dbus.service.method(SHORTCUTS, in_signature='oa(sa{sv})sa{sv}', out_signature='o', sender_keyword='sender')
    def BindShortcuts(self, session_path, shortcuts, parent_window, options, sender=None):
        self.calls.append('BindShortcuts')
        session = self.sessions.get(str(session_path))
        if self.options.refuse:
            return self.respond(sender, options, 1, {})
        if self.options.draft:
            return self.respond(sender, options, 0, {'shortcuts': dbus.Array([], signature='(sa{sv})')})
        session.bound = {str(id_): dict(props) for id_, props in shortcuts}
        return self.respond(sender, options, 0, {'shortcuts': self.granted(session)})

    @dbus.service.method(SHORTCUTS, in_signature='osa{sv}', out_signature='')
    def ConfigureShortcuts(self, session_path, parent_window, options):
        if self.options.version < 2:
            raise dbus.exceptions.DBusException('unknown method', name='org.freedesktop.DBus.Error.UnknownMethod')
        self.calls.append('ConfigureShortcuts')

    @dbus.service.signal(SHORTCUTS, signature='osta{sv}')
    def Activated(self, session, id_, timestamp, options):
        pass

    @dbus.service.signal(SHORTCUTS, signature='osta{sv}')
    def Deactivated(self, session, id_, timestamp, options):
        pass

    @dbus.service.signal(SHORTCUTS, signature='oa(sa{sv})')
    def ShortcutsChanged(self, session, shortcuts):
        pass

    # The test's side.
    @dbus.service.method(CONTROL, out_signature='as')
    def Calls(self):
        return self.calls

    @dbus.service.method(CONTROL, out_signature='a{ss}')
    def Bound(self):
        bound = {}
        for session in self.sessions.values():
            bound.update({id_: str(props.get('preferred_trigger', '')) for id_, props in session.bound.items()})
        return dbus.Dictionary(bound, signature='ss')

    @dbus.service.method(CONTROL, out_signature='ao')
    def Sessions(self):
        return dbus.Array(list(self.sessions), signature='o')

    @dbus.service.method(CONTROL, in_signature='osbs')
    def Fire(self, session, id_, press, activation_token):
        options = dbus.Dictionary({'activation_token': activation_token} if activation_token else {}, signature='sv')
        signal = self.Activated if press else self.Deactivated
        signal(session, id_, dbus.UInt64(1234), options)

    @dbus.service.method(CONTROL, in_signature='os')
    def ChangeTrigger(self, session_path, id_):
        session = self.sessions[str(session_path)]
        session.bound[id_]['preferred_trigger'] = 'LOGO+F12'
        self.ShortcutsChanged(session_path, self.granted(session))

    @dbus.service.method(CONTROL, in_signature='o')
    def EndSession(self, session_path):
        session = self.sessions[str(session_path)]
        session.Closed(dbus.Dictionary({}, signature='sv'))
        self.end(session)


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument('--version', type=int, default=1)
    parser.add_argument('--draft', action='store_true', help='bind only what CreateSession carries (Plasma 5.27)')
    parser.add_argument('--refuse', action='store_true', help='the user refuses the shortcuts')
    parser.add_argument('--silent', action='store_true', help='never answer a request')
    options = parser.parse_args()
    dbus.mainloop.glib.DBusGMainLoop(set_as_default=True)
    bus = dbus.SessionBus()
    Portal(bus, options)
    name = dbus.service.BusName(BUS_NAME, bus, do_not_queue=True)
    GLib.MainLoop().run()
    del name


if __name__ == '__main__':
    main()
