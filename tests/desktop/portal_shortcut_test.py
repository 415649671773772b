# SPDX-License-Identifier: MIT
"""The shortcut where a Wayland compositor has the keys: the desktop's portal tells of presses."""

import time

from gi.repository import Gio, GLib

from desktop_test_case import DesktopTestCase, main

_PATH = "/org/freedesktop/portal/desktop"
_SHORTCUTS = "org.freedesktop.portal.GlobalShortcuts"
_REQUEST = "org.freedesktop.portal.Request"
_INTERFACE = Gio.DBusNodeInfo.new_for_xml(f"""
<node><interface name="{_SHORTCUTS}">
  <method name="CreateSession"><arg type="a{{sv}}" direction="in"/>
    <arg type="o" direction="out"/></method>
  <method name="BindShortcuts"><arg type="o" direction="in"/>
    <arg type="a(sa{{sv}})" direction="in"/><arg type="s" direction="in"/>
    <arg type="a{{sv}}" direction="in"/><arg type="o" direction="out"/></method>
  <property name="version" type="u" access="read"/>
</interface></node>""").interfaces[0]
_GRANTED = 0
# Long enough for a panel that should not be there to show itself.
_A_WHILE = 0.5


class ShortcutsPortal:
    """Grants every shortcut that programs ask for; at once, or when it is told to."""

    def __init__(self, settings):
        self._connection = settings.serve(_INTERFACE, self._answer, self._get)
        self.asks_first = False
        # Bus name of the program that has bound its shortcut last.
        self.client = None
        self.preferred = None
        self._session = None
        self._shortcut = None
        self._response = None

    def agree(self):
        """The user agrees to what was asked last."""
        self._send(*self._response)

    def press(self):
        """The user presses the keys of the shortcut that was bound last."""
        self._send(_PATH, _SHORTCUTS, "Activated",
                   GLib.Variant("(osta{sv})", (self._session, self._shortcut, 1, {})))

    def _send(self, path, interface, name, arguments):
        self._connection.emit_signal(self.client, path, interface, name, arguments)
        self._connection.flush_sync(None)

    def _get(self, _connection, _sender, _path, _interface, _name):
        return GLib.Variant("u", 1)

    def _answer(self, _connection, sender, _path, _interface, method, arguments, call):
        *values, options = arguments.unpack()
        # What is set last tells the test that all of it is done.
        self.client, self.preferred = sender, None
        client = sender[1:].replace(".", "_")
        request = f"{_PATH}/request/{client}/{options['handle_token']}"
        call.return_value(GLib.Variant("(o)", (request,)))
        if method == "CreateSession":
            session = f"{_PATH}/session/{client}/{options['session_handle_token']}"
            results = {"session_handle": GLib.Variant("s", session)}
        else:
            self._session, shortcuts, _window = values
            self._shortcut, properties = shortcuts[0]
            preferred = properties["preferred_trigger"]
            results = {"shortcuts": GLib.Variant("a(sa{sv})", [(
                self._shortcut,
                {"trigger_description": GLib.Variant("s", preferred)})])}
        self._response = (request, _REQUEST, "Response",
                          GLib.Variant("(ua{sv})", (_GRANTED, results)))
        if method == "CreateSession" or not self.asks_first:
            self.agree()
        if method == "BindShortcuts":
            self.preferred = preferred


class PortalShortcutTest(DesktopTestCase):
    def setUp(self):
        self.open_desktop(host="waybar")
        self.portal = ShortcutsPortal(self.desktop.settings)

    def start(self):
        program = self.start_known_to_user()
        self.portal_knows(program)
        return program

    def portal_knows(self, program):
        self.until(lambda: self.portal.client and self.portal.preferred
                   and self.desktop.bus.owner(self.portal.client) == program.pid,
                   "the program asks for its shortcut")

    def assert_toggles(self, program):
        self.portal.press()
        self.assert_open(program)
        self.portal.press()
        self.assert_closed(program)

    def test_portal_shortcut_opens_and_closes(self):
        program = self.start()
        self.assertEqual(self.portal.preferred, "LOGO+l")
        for _ in range(3):
            self.assert_toggles(program)
        self.portal.press()
        self.assert_open(program)
        self.assertEqual(program.output(), "")

    def test_portal_shortcut_waits_until_the_user_agrees(self):
        self.portal.asks_first = True
        program = self.start()
        self.portal.press()
        time.sleep(_A_WHILE)
        self.assertIsNone(program.panel())
        self.portal.agree()
        self.assert_toggles(program)
        self.assertEqual(program.output(), "")

    def test_portal_shortcut_closes_what_a_click_has_opened(self):
        program = self.start()
        program.open_panel()
        self.assert_open(program)
        self.portal.press()
        self.assert_closed(program)


main()
