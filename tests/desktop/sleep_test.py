# SPDX-License-Identifier: MIT
"""Waking from sleep, as the login manager tells it on the system bus."""

import time

from gi.repository import GLib

from desktop_test_case import REFRESH_BYTES, DesktopTestCase, bytes_read, main
from private_desktop.session_bus import answers, connect

_BUS = ("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus")
_MANAGER = ("org.freedesktop.login1", "/org/freedesktop/login1", "org.freedesktop.login1.Manager")


class LoginManager:
    """What sends the machine to sleep, on the bus that stands for the system's, too."""

    def __init__(self, address):
        self._connection = connect(address)
        name, path, interface = _BUS
        self._connection.call_sync(name, path, interface, "RequestName",
                                   GLib.Variant("(su)", (_MANAGER[0], 0)), None, 0, -1, None)

    def prepare_for_sleep(self, begins):
        _, path, interface = _MANAGER
        self._connection.emit_signal(None, path, interface, "PrepareForSleep",
                                     GLib.Variant("(b)", (begins,)))
        self._connection.flush_sync(None)

    def close(self):
        self._connection.close_sync(None)


class SleepTest(DesktopTestCase):
    def setUp(self):
        self.open_desktop()
        self.address = self.desktop.env["DBUS_SESSION_BUS_ADDRESS"]
        self.manager = LoginManager(self.address)
        self.addCleanup(self.manager.close)

    def test_refreshes_at_once_when_the_machine_wakes(self):
        program = self.start_known_to_user(DBUS_SYSTEM_BUS_ADDRESS=self.address)
        self.wait_for_refresh(program)
        start = bytes_read(program)
        self.manager.prepare_for_sleep(True)
        time.sleep(0.5)
        self.assertLess(bytes_read(program), start + REFRESH_BYTES, "it is not awake yet")
        start = bytes_read(program)
        begin = time.monotonic()
        self.manager.prepare_for_sleep(False)
        self.until(lambda: bytes_read(program) >= start + REFRESH_BYTES, "a refresh after waking")
        self.assertLess(time.monotonic() - begin, 5, "that was the next refresh by itself")
        self.assertEqual(program.output(), "")

    def test_runs_on_when_the_system_bus_ends(self):
        address = "unix:path=" + self.desktop.path("runtime/system_bus")
        bus = self.desktop.processes.start(
            ["dbus-daemon", "--nofork", "--nopidfile", "--nosyslog", "--address=" + address,
             "--config-file=" + self.desktop.path("bus.conf")], self.desktop.env, "system_bus")
        self.until(lambda: answers(address), "the system bus listens")
        program = self.start_known_to_user(DBUS_SYSTEM_BUS_ADDRESS=address)
        self.desktop.processes.end(bus)
        self.wait_for_refresh(program)
        self.assertTrue(program.runs())
        self.assertEqual(program.output(), "")

    def test_runs_on_without_a_system_bus(self):
        program = self.start_known_to_user()
        self.manager.prepare_for_sleep(False)
        self.wait_for_refresh(program)
        self.assertTrue(program.runs())
        self.assertEqual(program.output(), "")


main()
