# SPDX-License-Identifier: MIT
"""The private session bus: status items that are registered on it, and the colour scheme."""

import dataclasses
import threading

from gi.repository import Gio, GLib

from .wait import PATIENCE, Timeout

_WATCHER = ("org.kde.StatusNotifierWatcher", "/StatusNotifierWatcher",
            "org.kde.StatusNotifierWatcher")
_ITEM = "org.kde.StatusNotifierItem"
_PROPERTIES = "org.freedesktop.DBus.Properties"
_BUS = ("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus")
_CALL_MS = 5000

# The answers of a private desktop to programs that ask for light or dark.
_PORTAL = Gio.DBusNodeInfo.new_for_xml("""
<node><interface name="org.freedesktop.portal.Settings">
  <method name="Read"><arg type="s" direction="in"/><arg type="s" direction="in"/>
    <arg type="v" direction="out"/></method>
  <method name="ReadOne"><arg type="s" direction="in"/><arg type="s" direction="in"/>
    <arg type="v" direction="out"/></method>
  <method name="ReadAll"><arg type="as" direction="in"/>
    <arg type="a{sa{sv}}" direction="out"/></method>
  <signal name="SettingChanged"><arg type="s"/><arg type="s"/><arg type="v"/></signal>
  <property name="version" type="u" access="read"/>
</interface></node>""").interfaces[0]
_PORTAL_PATH = "/org/freedesktop/portal/desktop"
_SCHEME = ("org.freedesktop.appearance", "color-scheme")


def answers(address):
    """Whether the bus accepts connections."""
    try:
        connect(address).close_sync(None)
        return True
    except GLib.Error:
        return False


def connect(address):
    return Gio.DBusConnection.new_for_address_sync(
        address,
        Gio.DBusConnectionFlags.AUTHENTICATION_CLIENT
        | Gio.DBusConnectionFlags.MESSAGE_BUS_CONNECTION, None, None)


@dataclasses.dataclass(frozen=True)
class Item:
    """A status item as a watcher lists it."""

    name: str
    path: str
    pid: int


class SessionBus:
    def __init__(self, address):
        self._connection = connect(address)

    def close(self):
        if not self._connection.is_closed():
            self._connection.close_sync(None)

    def call(self, target, method, arguments=None):
        """Calls `method` of (name, path, interface) and gives its answers as a tuple."""
        name, path, interface = target
        return self._connection.call_sync(
            name, path, interface, method, arguments, None,
            Gio.DBusCallFlags.NO_AUTO_START, _CALL_MS, None).unpack()

    def owner(self, name):
        """Process id of the owner of a name, or None."""
        try:
            return self.call(_BUS, "GetConnectionUnixProcessID", GLib.Variant("(s)", (name,)))[0]
        except GLib.Error:
            return None

    def is_connected(self, pid):
        """Whether a process has a connection to the bus."""
        names = self.call(_BUS, "ListNames")[0]
        return any(self.owner(name) == pid for name in names if name.startswith(":"))

    def watcher(self):
        """Process id of the watcher of status items, or None."""
        return self.owner(_WATCHER[0])

    def has_watcher(self):
        return self.watcher() is not None

    def items(self):
        """Every registered item, in the order of the watcher; none without a watcher."""
        try:
            listed = self.call(
                (_WATCHER[0], _WATCHER[1], _PROPERTIES), "Get",
                GLib.Variant("(ss)", (_WATCHER[2], "RegisteredStatusNotifierItems")))[0]
        except GLib.Error:
            return []
        found = []
        for entry in listed:
            name, slash, path = entry.partition("/")
            pid = self.owner(name)
            if pid is not None:
                found.append(Item(name, slash + path if slash else "/StatusNotifierItem", pid))
        return found

    def item_of(self, pid):
        return next((item for item in self.items() if item.pid == pid), None)

    def item_properties(self, item):
        """All properties of an item at one moment; none when it does not answer."""
        try:
            return self.call((item.name, item.path, _PROPERTIES), "GetAll",
                             GLib.Variant("(s)", (_ITEM,)))[0]
        except GLib.Error:
            return {}

    def item_property(self, item, name):
        """One property of an item, or None when it has no such property."""
        try:
            return self.call((item.name, item.path, _PROPERTIES), "Get",
                             GLib.Variant("(ss)", (_ITEM, name)))[0]
        except GLib.Error:
            return None


class Settings:
    """Answers questions for light or dark, as a portal does."""

    def __init__(self, address, dark):
        self._dark = dark
        self._loop = None
        self._connection = None
        self._ready = threading.Event()
        self._fault = None
        self._thread = threading.Thread(target=self._try_to_serve, args=(address,), daemon=True)
        self._thread.start()
        if not self._ready.wait(PATIENCE):
            raise Timeout(f"the portal is on the bus: not within {PATIENCE:g} s")
        if self._fault is not None:
            raise self._fault

    def set_dark(self, dark):
        """Changes the colour scheme and announces the change."""
        self._dark = dark
        self._connection.emit_signal(
            None, _PORTAL_PATH, _PORTAL.name, "SettingChanged",
            GLib.Variant("(ssv)", (*_SCHEME, self._value())))

    def serve(self, interface, answer, get):
        """Serves one more interface of the portal, from a thread of its own; the connection."""
        served = threading.Event()

        def register(*_):
            self._connection.register_object(_PORTAL_PATH, interface, answer, get, None)
            served.set()
            return GLib.SOURCE_REMOVE

        source = GLib.idle_source_new()
        source.set_callback(register)
        source.attach(self._loop.get_context())
        if not served.wait(_CALL_MS / 1000):
            raise RuntimeError("the portal does not run")
        return self._connection

    def close(self):
        self._loop.quit()
        self._thread.join()

    def _value(self):
        return GLib.Variant("u", 1 if self._dark else 2)

    def _try_to_serve(self, address):
        try:
            self._serve(address)
        except Exception as fault:  # Raised again in the thread that waits for this one.
            self._fault = fault
            self._ready.set()

    def _serve(self, address):
        context = GLib.MainContext()
        context.push_thread_default()
        self._loop = GLib.MainLoop(context)
        self._connection = connect(address)
        self._connection.register_object(_PORTAL_PATH, _PORTAL, self._answer, self._get, None)
        name, path, interface = _BUS
        self._connection.call_sync(
            name, path, interface, "RequestName",
            GLib.Variant("(su)", ("org.freedesktop.portal.Desktop", 0)), None,
            Gio.DBusCallFlags.NONE, _CALL_MS, None)
        self._ready.set()
        self._loop.run()
        if not self._connection.is_closed():
            self._connection.close_sync(None)
        context.pop_thread_default()

    def _get(self, _connection, _sender, _path, _interface, _name):
        return GLib.Variant("u", 2)

    def _answer(self, _connection, _sender, _path, _interface, method, arguments, call):
        if method == "ReadAll":
            space, key = _SCHEME
            call.return_value(GLib.Variant("(a{sa{sv}})", ({space: {key: self._value()}},)))
        elif arguments.unpack() != _SCHEME:
            call.return_dbus_error(
                "org.freedesktop.portal.Error.NotFound", "Requested setting not found")
        elif method == "Read":
            # The older call wraps its value twice.
            call.return_value(GLib.Variant("(v)", (GLib.Variant("v", self._value()),)))
        else:
            call.return_value(GLib.Variant("(v)", (self._value(),)))
