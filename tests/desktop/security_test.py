# SPDX-License-Identifier: MIT
"""What docs/security.md says of the program: whom it speaks to, what it writes, what it starts."""

import glob
import os
import pathlib
import re
import shutil
import signal
import stat
import subprocess
import xml.etree.ElementTree

from gi.repository import GLib

from desktop_test_case import DesktopTestCase, main

_PAGE = (pathlib.Path(__file__).parents[2] / "docs/security.md").read_text(encoding="utf-8")
_OBJECT = "/org/tarnwick/Tarnwick"
_ITEM = "/StatusNotifierItem"
_MENU = "/StatusNotifierMenu"
# Of the bus library, on every object.
_COMMON = {"org.freedesktop.DBus.Properties", "org.freedesktop.DBus.Introspectable",
           "org.freedesktop.DBus.Peer"}
_BUS = ("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus")

_CALLS = "trace=%network,execve,execveat,open,openat,openat2,creat,mkdir,mkdirat,rename,renameat," \
         "renameat2,link,linkat,symlink,symlinkat,truncate,chmod,fchmodat"


class SecurityTest(DesktopTestCase):
    def setUp(self):
        tracer = shutil.which("strace")
        if tracer is None or subprocess.run([tracer, "-qq", "-o", "/dev/null", "true"], check=False,
                                            capture_output=True).returncode:
            self.skipTest("this machine lacks strace, or the right to use it")
        self.open_desktop(accessibility=True)
        self.trace = self.desktop.path("trace")
        # -D: the program keeps the number of the process that is started.
        self.traced = self.program(before=[tracer, "-D", "-f", "-qq", "-s", "300", "-o", self.trace,
                                           "-e", _CALLS])

    def use(self):
        """A first start, the panel, the settings and the end; the lines of the trace."""
        self.traced.start()
        self.wait_until_up(self.traced)
        self.until(lambda: self.is_in_store("settings.hasPresentedInitialSettings"), "it has greeted")
        self.assert_mode("home/.config/tarnwick/settings.json", 0o600)
        self.assertEqual(len(glob.glob(self.desktop.path("runtime/tarnwick-*.lock"))), 1)
        self.press(self.traced, "Refresh")
        self.wait_for_refresh(self.traced)
        self.choose_settings(self.traced)
        self.edit_store({"settings.launchOnLogin": True})
        entry = self.desktop.path("home/.config/autostart/org.tarnwick.Tarnwick.desktop")
        self.until(lambda: os.path.exists(entry), "it starts at login")
        self.wait_for_refresh(self.traced)
        self.traced.process.terminate()
        self.assert_ends(self.traced)
        with open(self.trace, encoding="utf-8", errors="replace") as file:
            return file.read().splitlines()

    def assert_mode(self, name, mode):
        found = stat.S_IMODE(os.stat(self.desktop.path(name)).st_mode)
        self.assertEqual(oct(found), oct(mode), name)

    def test_does_what_the_page_says_and_no_more(self):
        lines = self.use()
        self.assert_speaks_to_the_display_and_the_buses_alone(lines)
        self.assert_writes_its_settings_and_the_autostart_entry_alone(lines)
        started = [line for line in lines if re.search(r"\bexecve(at)?\(", line)]
        self.assertEqual(len(started), 1, started)

    def assert_speaks_to_the_display_and_the_buses_alone(self, lines):
        for line in lines:
            self.assertNotRegex(line, r"\b(listen|accept4?)\(")
            if match := re.search(r"\bsocket\((\w+)", line):
                self.assertEqual(match[1], "AF_UNIX", line)
            if match := re.search(r'\bconnect\(.*sun_path=@?"([^"]*)"', line):
                self.assertRegex(match[1], r"/\.X11-unix/X\d+$|/runtime/(bus|no_system_bus)$|"
                                           r"/at-spi/bus|^/tmp/dbus-\w+$", line)
        text = "\n".join(lines)
        self.assertRegex(text, r"connect\(.*X11-unix")
        self.assertRegex(text, r"connect\(.*/runtime/bus")

    def assert_writes_its_settings_and_the_autostart_entry_alone(self, lines):
        home, runtime = (re.escape(self.desktop.path(name)) for name in ("home", "runtime"))
        allowed = re.compile(
            rf"{home}/\.config(/tarnwick(/\.?settings\.json(\.new)?)?"
            rf"|/autostart(/org\.tarnwick\.Tarnwick\.desktop(\.\w+)?)?)?$"
            rf"|{runtime}(/tarnwick[^/]*\.lock(\.rmlock)?)?$|/dev/null$")
        written = []
        for line in lines:
            call = re.search(r'\b(\w+)\((?:AT_FDCWD, )?"([^"]*)"', line)
            if not call or call[1] in ("execve", "execveat"):
                continue
            is_open = call[1].startswith("open")
            if is_open and not re.search(r"O_WRONLY|O_RDWR|O_CREAT", line):
                continue
            self.assertRegex(call[2], allowed, line)
            written.append(call[2])
        self.assertTrue(any(path.endswith("/tarnwick/.settings.json.new") for path in written))
        self.assert_mode("home/.config/tarnwick", 0o700)
        self.assert_mode("home/.config/autostart/org.tarnwick.Tarnwick.desktop", 0o600)
        self.assertEqual(glob.glob(self.desktop.path("runtime/tarnwick*")), [])
        for path, mode in (("~/.config/tarnwick/", "0700"),
                           ("~/.config/tarnwick/settings.json", "0600"),
                           ("~/.config/autostart/org.tarnwick.Tarnwick.desktop", "0600")):
            self.assertIn(f"| `{path}` | {mode} |", _PAGE)


def rows(heading):
    """The cells of the table below a heading of the page, as lists of what stands in backticks."""
    part = _PAGE.partition(f"## {heading}\n")[2].partition("\n## ")[0]
    return [[re.findall(r"`([^`]*)`", cell) for cell in line.strip("|").split("|")]
            for line in re.findall(r"^\|.*\|$", part, re.MULTILINE)[2:]]


class BusTest(DesktopTestCase):
    def start(self):
        self.open_desktop()
        self.running = self.start_known_to_user()
        self.item = self.running.wait_for_item()

    def introspected(self, path="/"):
        """Objects, interfaces and methods below a path, but for those of the bus library."""
        (text,) = self.desktop.bus.call(
            (self.item.name, path, "org.freedesktop.DBus.Introspectable"), "Introspect")
        node = xml.etree.ElementTree.fromstring(text)
        found = [(path, interface.get("name"), f"{method.get('name')}({self.types(method)})")
                 for interface in node.findall("interface") if interface.get("name") not in _COMMON
                 for method in interface.findall("method")]
        for child in node.findall("node"):
            found += self.introspected(f"{path.rstrip('/')}/{child.get('name')}")
        return found

    @staticmethod
    def types(method):
        return "".join(each.get("type") for each in method.findall("arg")
                       if each.get("direction", "in") == "in")

    def call(self, path, interface, method, types=None, values=()):
        arguments = GLib.Variant(f"({types})", values) if types else None
        return self.desktop.bus.call((self.item.name, path, interface), method, arguments)

    def test_objects_have_the_methods_of_the_page_and_no_more(self):
        self.start()
        listed = [(path, interface, method) for [path], [interface], [method], *_
                  in rows("What a client of the session bus can call")]
        self.assertEqual(sorted(self.introspected()), sorted(listed))
        self.assertEqual(len(listed), len(set(listed)))

    def test_names_are_those_of_the_page(self):
        self.start()
        names = self.desktop.bus.call(_BUS, "ListNames")[0]
        own = {name for name in names if not name.startswith(":")
               and self.desktop.bus.owner(name) == self.running.pid}
        self.assertEqual(own, {"org.tarnwick.Tarnwick",
                               f"org.kde.StatusNotifierItem-{self.running.pid}-1"})
        for name in ("`org.tarnwick.Tarnwick`", "`org.kde.StatusNotifierItem-PID-1`"):
            self.assertIn(name, _PAGE)

    def test_a_client_sets_nothing_and_starts_nothing(self):
        self.start()
        self.until(lambda: self.is_in_store("settings.shortcutKeyCode"), "the start is stored")
        before = self.settings()
        for path, interface, _ in self.introspected():
            for name in ("Title", "Status", "Version", "nothing"):
                with self.assertRaises(GLib.Error):
                    self.call(path, "org.freedesktop.DBus.Properties", "Set", "ssv",
                              (interface, name, GLib.Variant("s", "forged")))
        address = GLib.Variant("s", "file:///etc/passwd")
        self.call(_OBJECT, "org.freedesktop.Application", "Open", "asa{sv}",
                  (["file:///etc/passwd"], {}))
        for action in ("quit", "activity-monitor", "/bin/true", "settings"):
            self.call(_OBJECT, "org.freedesktop.Application", "ActivateAction", "sava{sv}",
                      (action, [address], {}))
        for entry in range(-1, 3):
            self.call_if_there(entry)
        self.call(_ITEM, "org.kde.StatusNotifierItem", "Scroll", "is", (5, "vertical"))
        self.call(_ITEM, "org.kde.StatusNotifierItem", "ContextMenu", "ii", (5, 5))
        self.wait_until_calm(self.running)
        self.assertTrue(self.running.runs())
        self.assertEqual(self.settings(), before)
        threads = pathlib.Path(f"/proc/{self.running.pid}/task")
        self.assertEqual([path.read_text() for path in threads.glob("*/children")
                          if path.read_text()], [])
        self.assertEqual(self.running.output(), "")

    def call_if_there(self, entry):
        try:
            self.call(_MENU, "com.canonical.dbusmenu", "Event", "isvu",
                      (entry, "clicked", GLib.Variant("s", "/bin/true"), 0))
        except GLib.Error as error:
            self.assertIn("No menu entry", str(error))

    def settings(self):
        with open(self.store(), encoding="utf-8") as file:
            return file.read()

    def test_what_it_asks_for_and_hears_is_on_the_page(self):
        self.open_desktop()
        log = self.desktop.path("log/calls")
        with open(log, "wb") as file:
            monitor = subprocess.Popen(
                ["dbus-monitor", "--address", self.desktop.env["DBUS_SESSION_BUS_ADDRESS"],
                 "--profile"], stdout=file, stderr=subprocess.DEVNULL)
        self.addCleanup(monitor.wait)
        self.addCleanup(monitor.send_signal, signal.SIGTERM)
        self.until(lambda: os.path.getsize(log), "the calls are written down")
        self.running = self.start_known_to_user()
        self.item = self.running.wait_for_item()
        self.running.open_panel()
        sender = self.desktop.bus.call(_BUS, "GetNameOwner", GLib.Variant(
            "(s)", ("org.tarnwick.Tarnwick",)))[0]

        def calls():
            with open(log, encoding="utf-8") as file:
                lines = [line.rstrip("\n").split("\t") for line in file]
            return {tuple(line[6:8]) for line in lines
                    if line[0] == "mc" and len(line) == 8 and line[3] == sender}

        self.until(lambda: any(method == "RegisterStatusNotifierItem" for _, method in calls()),
                   "the item is registered")
        listed = {(interface, method) for _, [interface], methods
                  in rows("What it asks other programs") for method in methods}
        self.assertEqual(calls() - listed, set())
        self.assertGreater(len(calls()), 5)
        self.assert_hears(sender)

    def assert_hears(self, name):
        rules = self.desktop.bus.call((*_BUS[:2], "org.freedesktop.DBus.Debug.Stats"),
                                      "GetAllMatchRules")[0][name]
        heard = {"{interface}.{member}".format_map(dict(re.findall(r"(\w+)='([^']*)'", rule)))
                 for rule in rules if "member=" in rule}
        listed = {each for cells in rows("What it listens to on the buses") for each in cells[2]}
        self.assertEqual(heard - listed - {"org.freedesktop.DBus.Local.Disconnected"}, set())
        self.assertIn("org.freedesktop.portal.Settings.SettingChanged", heard)


main()
