# SPDX-License-Identifier: MIT
"""A file system that stops answering altogether, whatever is asked of it: the program goes on."""

import contextlib
import os
import re
import shutil
import signal
import subprocess
import tempfile
import time

from gi.repository import GLib

from desktop_test_case import DesktopTestCase, main

_FIXTURES = os.path.join(os.path.dirname(__file__), "..", "fixtures")
# A name space of mounts of its own, in which a program in between serves one folder. While that
# program is stopped, whoever asks for anything below the folder waits.
_START = """
set -e
[ -z "$2" ] || mount --bind "$2" /sys
numbers=$1
shift 2
while [ "$1" != -- ]; do
    folder=$1
    # A link to a folder of each process; the program will be this one.
    [ "$1" != /proc/net ] || folder=/proc/$$/net
    bindfs -f "$folder" "$folder" & echo $! >>"$numbers"
    until mountpoint -q "$folder"; do sleep 0.05; done
    shift
done
shift
exec "$@"
"""

# Stops these programs before the command begins.
_STOPPED = ["sh", "-c", 'kill -STOP $(cat "$0"); exec "$@"']
# Whether such a server can be had; it ends with its folder.
_TRY = 'bindfs "$1" "$1" && umount "$1"'
# Seconds; for so long a window waits for the home.
_PATIENCE = 3


class StuckDiskTest(DesktopTestCase):
    def start_on(self, folders, machine="", is_stopped=False, **options):
        """The program, known to its user, with a server for each folder; on a recorded machine.

        Names of folders may be those of the desktop. `options` are those of the desktop. The
        servers are listed in `servers`; they may be stopped from the beginning.
        """
        for tool in ("bindfs", "fusermount3"):
            if shutil.which(tool) is None or not os.path.exists("/dev/fuse"):
                self.skipTest("this machine lacks bindfs, fuse3 or the device of file systems")
        with tempfile.TemporaryDirectory() as folder:
            tried = subprocess.run(["unshare", "-m", "sh", "-c", _TRY, "sh", folder], check=False,
                                   capture_output=True)
        if tried.returncode:
            self.skipTest("this machine lacks the right to mount file systems")
        self.open_desktop(accessibility=True, **options)
        # As the home of many users, it holds programs, too.
        self.desktop.env["PATH"] = self.desktop.path("home/bin") + ":" + self.desktop.env["PATH"]
        first = self.program("first").start()
        self.until(lambda: self.is_in_store("settings.hasPresentedInitialSettings"),
                   "the greeting is over")
        self.assertEqual(first.end(), 0, first.output())
        folders = [self.desktop.path(each) for each in folders or ["home"]]
        numbers = self.desktop.path("servers")
        stopped = [*_STOPPED, numbers] if is_stopped else []
        program = self.program(before=["unshare", "-m", "sh", "-c", _START, "sh", numbers,
                                       machine and os.path.join(_FIXTURES, machine, "sys"),
                                       *folders, "--", *stopped]).start()
        program.wait_for_tray()
        with open(numbers, encoding="ascii") as file:
            self.servers = [int(line) for line in file]
        for server in self.servers:
            self.addCleanup(os.kill, server, signal.SIGKILL)
        return program

    def stop(self, program, servers):
        # The kernel lets nobody end who waits for an answer that a server has begun.
        self.wait_until_calm(program)
        for server in servers:
            os.kill(server, signal.SIGSTOP)

    def go_on(self):
        for server in self.servers:
            os.kill(server, signal.SIGCONT)

    def use(self, program, role, name, action):
        """Uses a control of the settings window, which is open."""
        with self.desktop.accessibility_bus() as bus:
            def used():
                with contextlib.suppress(GLib.Error):
                    root = bus.program(program.pid)
                    control = root and root.find(role, name)
                    if control:
                        control.do(action)
                        return True
                return False

            self.until(used, f"{name} is pressed")

    def lists_processes(self, program):
        with self.desktop.accessibility_bus() as bus, contextlib.suppress(GLib.Error):
            root = bus.program(program.pid)
            return root is not None and any(re.fullmatch(r"[^,]+, [0-9.]+% \([^)]+\)", each.name)
                                            for each in root.descendants())
        return False

    def assert_item(self, program):
        item = program.wait_for_item()
        self.until(lambda: self.desktop.bus.item_property(item, "Title"), "the item answers")

    def assert_item_and_panel(self, program):
        self.assert_item(program)
        program.open_panel()
        self.assert_open(program)
        self.wait_for_refresh(program)
        self.press(program, "Refresh")

    def assert_quits(self, program):
        program.process.terminate()
        self.until(lambda: not program.runs(), "the program ends")
        self.assertEqual(program.process.returncode, 0, program.output())

    def test_home(self):
        program = self.start_on([])
        self.stop(program, self.servers)
        self.assert_item_and_panel(program)
        self.choose_settings(program)
        # This changes a file below the home, and this looks for a browser.
        self.use(program, "check box", "Launch on login", "Toggle")
        self.use(program, "page tab", "About", "Press")
        self.use(program, "link", "Learn More", "Press")
        self.wait_for_refresh(program)
        self.assert_item_and_panel(program)
        self.assert_quits(program)

    def test_home_under_a_compositor(self):
        # The toolkit reads below the home when the first window is shown.
        program = self.start_on([], host="waybar")
        self.stop(program, self.servers)
        program.click_item()
        # Both are asked for behind the click.
        self.assert_item(program)
        self.wait_for_refresh(program)
        self.assertIsNone(program.panel())
        # The refresh may have come at once. After this time the user has gone on.
        time.sleep(_PATIENCE)
        self.go_on()
        self.wait_until_calm(program)
        self.assertIsNone(program.panel())
        program.open_panel()
        self.assert_open(program)
        self.stop(program, self.servers)
        # To close it needs no home, although the pointer has been in no window yet.
        program.click_item()
        self.assert_closed(program)
        self.go_on()
        # Two quick presses would be a double click.
        time.sleep(0.5)
        panel = program.open_panel()
        self.assert_open(program)
        self.desktop.screen.move_pointer(panel.centre)
        program.close_panel()
        self.stop(program, self.servers)
        self.assert_item_and_panel(program)
        self.assert_quits(program)

    def test_settings_that_come_late(self):
        program = self.start_on(["home/.config/tarnwick"], is_stopped=True)
        self.assertFalse(program.wait_for_greeting())
        self.go_on()
        # What a known user has from the second start on.
        self.until(lambda: self.stored().get("settings.shortcutKeyCode") == 37,
                   "the settings are taken over")
        self.assertFalse(program.wait_for_greeting())
        self.assert_quits(program)

    def test_sensors(self):
        program = self.start_on(["/sys/class/" + name
                                 for name in ("thermal", "power_supply", "drm")], "laptop")
        for server in self.servers:
            self.stop(program, [server])
            self.assert_item_and_panel(program)
            program.close_panel()
            os.kill(server, signal.SIGCONT)
        self.stop(program, self.servers)
        self.assert_item_and_panel(program)
        self.assert_quits(program)

    def check_network(self, folder):
        program = self.start_on([folder])
        self.stop(program, self.servers)
        self.assert_item_and_panel(program)
        # This page lists processes whatever the machine does, after the first refresh that comes
        # to its end while the panel is open.
        self.press(program, "What's Using Memory?")
        self.until(lambda: self.lists_processes(program), "the other figures are fresh")
        self.assert_quits(program)

    def test_network_counters(self):
        self.check_network("/proc/net")

    def test_network_links(self):
        self.check_network("/sys/class/net")


main()
