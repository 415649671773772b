# SPDX-License-Identifier: MIT
"""What screen readers see of a program: its tree on the accessibility bus."""

from gi.repository import Gio, GLib

from .session_bus import connect

_BUS = ("org.a11y.Bus", "/org/a11y/bus", "org.a11y.Bus")
_REGISTRY = ("org.a11y.atspi.Registry", "/org/a11y/atspi/accessible/root")
_ACCESSIBLE = "org.a11y.atspi.Accessible"
_ACTION = "org.a11y.atspi.Action"
_COMPONENT = "org.a11y.atspi.Component"
_TEXT = "org.a11y.atspi.Text"
_VALUE = "org.a11y.atspi.Value"
_PROPERTIES = "org.freedesktop.DBus.Properties"
_CALL_MS = 20000
# Bits of a state set, by the numbers of the interface.
_STATES = {"checked": 4, "enabled": 8, "focusable": 11, "focused": 12, "pressed": 20,
           "selected": 23, "sensitive": 24, "showing": 25, "visible": 30}


class AccessibilityBus:
    """The accessibility bus of a private desktop that has one; a context manager."""

    def __init__(self, session_address):
        session = connect(session_address)
        try:
            address, = session.call_sync(*_BUS, "GetAddress", None, None,
                                         Gio.DBusCallFlags.NONE, _CALL_MS, None).unpack()
        finally:
            session.close_sync(None)
        self._connection = connect(address)

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self._connection.close_sync(None)

    def program(self, pid):
        """The root of a program's tree, or None while the program has not registered one."""
        registry = Accessible(self._connection, *_REGISTRY)
        return next((each for each in registry.children() if each.pid() == pid), None)


class Accessible:
    """One object of a program's tree, asked anew each time.

    Objects that have gone raise GLib.Error.
    """

    def __init__(self, connection, owner, path):
        self._connection = connection
        self._owner = owner
        self._path = path

    def __eq__(self, other):
        return (self._owner, self._path) == (other._owner, other._path)

    def __hash__(self):
        return hash((self._owner, self._path))

    def _call(self, interface, method, arguments=None):
        return self._connection.call_sync(
            self._owner, self._path, interface, method, arguments, None,
            Gio.DBusCallFlags.NONE, _CALL_MS, None).unpack()

    def _get(self, interface, name):
        return self._call(_PROPERTIES, "Get", GLib.Variant("(ss)", (interface, name)))[0]

    def pid(self):
        return self._connection.call_sync(
            "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
            "GetConnectionUnixProcessID", GLib.Variant("(s)", (self._owner,)), None,
            Gio.DBusCallFlags.NONE, _CALL_MS, None).unpack()[0]

    def children(self):
        return [Accessible(self._connection, owner, path)
                for owner, path in self._call(_ACCESSIBLE, "GetChildren")[0]]

    def descendants(self):
        """Everything below this object, in reading order."""
        for child in self.children():
            yield child
            yield from child.descendants()

    def find(self, role, name):
        """The first object below this one with a role and a name, or None."""
        return next((each for each in self.descendants()
                     if each.role == role and each.name == name), None)

    @property
    def name(self):
        return self._get(_ACCESSIBLE, "Name")

    @property
    def description(self):
        return self._get(_ACCESSIBLE, "Description")

    @property
    def role(self):
        """The role in words, such as "push button"."""
        return self._call(_ACCESSIBLE, "GetRoleName")[0]

    def states(self):
        """The names of its states, as far as they are in _STATES."""
        low, high = self._call(_ACCESSIBLE, "GetState")[0]
        bits = low | high << 32
        return {name for name, bit in _STATES.items() if bits >> bit & 1}

    def interfaces(self):
        return {each.rpartition(".")[2] for each in self._call(_ACCESSIBLE, "GetInterfaces")[0]}

    def parent(self):
        return Accessible(self._connection, *self._get(_ACCESSIBLE, "Parent"))

    def text(self):
        """The text that it shows, or None if it has no text."""
        if "Text" not in self.interfaces():
            return None
        return self._call(_TEXT, "GetText", GLib.Variant("(ii)", (0, -1)))[0]

    def value(self):
        """(least, current, greatest), or None if it has no value."""
        if "Value" not in self.interfaces():
            return None
        return tuple(self._get(_VALUE, name)
                     for name in ("MinimumValue", "CurrentValue", "MaximumValue"))

    def set_value(self, value):
        self._call(_PROPERTIES, "Set",
                   GLib.Variant("(ssv)", (_VALUE, "CurrentValue", GLib.Variant("d", value))))

    def place(self):
        """(x, y, width, height) on the screen."""
        return self._call(_COMPONENT, "GetExtents", GLib.Variant("(u)", (0,)))[0]

    def actions(self):
        """Names of its actions."""
        if "Action" not in self.interfaces():
            return []
        return [name for name, _, _ in self._call(_ACTION, "GetActions")[0]]

    def do(self, action):
        number = self.actions().index(action)
        done, = self._call(_ACTION, "DoAction", GLib.Variant("(i)", (number,)))
        if not done:
            raise RuntimeError(f"{self.name} does not do {action}")
