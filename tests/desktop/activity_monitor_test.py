# SPDX-License-Identifier: MIT
"""The button that opens the desktop's own system monitor."""

import contextlib
import glob
import os
import resource
import signal
import stat
import time

from desktop_test_case import DesktopTestCase, main

# Stands for a system monitor: says how it was started, and waits for its end.
_MONITOR = """\
#!/bin/sh
(
    echo "pid $$"
    echo "limit $(ulimit -n)"
    echo "session $(cut -d ' ' -f 6 /proc/$$/stat)"
    grep -E '^Sig(Blk|Ign)' /proc/$$/status
    for each in /proc/$$/fd/*; do echo "file $(readlink $each)"; done
    tr '\\0' '\\n' < /proc/$$/environ
) > {told}.part
mv {told}.part {told}
exec sleep 600
"""
# Stands for the service manager's command: notes its arguments and runs what follows the options.
_SYSTEMD_RUN = """\
#!/bin/sh
printf '%s\\n' "$@" > {asked}
while [ "${{1#--}}" != "$1" ]; do shift; done
exec "$@"
"""
_ENTRY = """\
[Desktop Entry]
Type=Application
Name={name}
Exec={program}
"""
# They are looked at whatever the environment says.
_OF_SANDBOXES = ("/var/lib/flatpak/exports/share/applications/*.desktop",
                 "/var/lib/snapd/desktop/applications/*.desktop")
# Open files; fewer than the program wants for itself.
_LIMIT = 1000


class ActivityMonitorTest(DesktopTestCase):
    def setUp(self):
        _, most = resource.getrlimit(resource.RLIMIT_NOFILE)
        resource.setrlimit(resource.RLIMIT_NOFILE, (_LIMIT, most))
        self.open_desktop(accessibility=True)

    def install(self, name):
        """Installs a system monitor for the user. Returns the file that tells how it started."""
        told = self.desktop.path(name + ".told")
        program = self.make_program(name, _MONITOR.format(told=told))
        folder = self.desktop.path("home/.local/share/applications")
        os.makedirs(folder, exist_ok=True)
        with open(f"{folder}/{name}.desktop", "w", encoding="ascii") as file:
            file.write(_ENTRY.format(name=name, program=program))
        return told

    def make_program(self, name, text):
        path = self.desktop.path(name)
        with open(path, "w", encoding="ascii") as file:
            file.write(text)
        os.chmod(path, stat.S_IRWXU)
        return path

    def press_button(self, program):
        program.open_panel()
        self.assert_open(program)
        self.press(program, "Activity Monitor")

    def told(self, file):
        """What a monitor that has started tells, as (key, value) lines."""
        self.until(lambda: os.path.exists(file), "the system monitor has started")
        with open(file, encoding="utf-8") as lines:
            return lines.read().splitlines()

    def start(self, desktops, **changes):
        # Beside those of a sandbox no folder but the user's own is looked at.
        return self.start_known_to_user(XDG_CURRENT_DESKTOP=desktops,
                                        XDG_DATA_DIRS=self.desktop.path("nothing"), **changes)

    def test_opens_the_one_of_the_desktop_on_its_own(self):
        own, other = self.install("mate-system-monitor"), self.install("xfce4-taskmanager")
        program = self.start("MATE")
        self.press_button(program)
        told = self.told(own)
        self.assert_closed(program)
        pid = int(told[0].split()[1])
        # The limit of this test, not the one that the program has raised for itself.
        self.assertEqual(told[1], f"limit {_LIMIT}")
        self.assertNotIn(told[2], [f"session {os.getsid(each)}" for each in (0, program.pid)])
        self.assertEqual(told[3:7], [
            "SigBlk:\t0000000000000000", "SigIgn:\t0000000000000000", "file /dev/null",
            "file /dev/null"])
        # Its shell's own script is all that is open besides.
        self.assertEqual(sum(line.startswith("file ") for line in told), 4, told)
        self.assertIn("XDG_CURRENT_DESKTOP=MATE", told)
        self.assertTrue(any(line.startswith("DESKTOP_STARTUP_ID=tarnwick-") for line in told), told)
        self.assertFalse(os.path.exists(other))

        self.assertEqual(self.children(program), [])
        self.assertEqual(program.end(), 0)
        self.assertEqual(program.output(), "")
        # It is still there.
        os.kill(pid, signal.SIGKILL)

    def test_opens_it_in_a_unit_of_its_own_where_the_user_has_a_service_manager(self):
        told = self.install("mate-system-monitor")
        asked = self.desktop.path("asked")
        self.make_program("systemd-run", _SYSTEMD_RUN.format(asked=asked))
        os.mkdir(self.desktop.path("runtime/systemd"))
        with open(self.desktop.path("runtime/systemd/private"), "wb"):
            pass
        program = self.start("MATE", PATH=f"{self.desktop.folder}:{self.desktop.env['PATH']}",
                             NOTIFY_SOCKET="/nowhere", XDG_ACTIVATION_TOKEN="of-an-earlier-press")
        self.press_button(program)
        lines = self.told(told)
        self.assert_closed(program)
        os.kill(int(lines[0].split()[1]), signal.SIGKILL)
        # These are for this program's own start.
        self.assertFalse([line for line in lines
                          if line.startswith(("NOTIFY_SOCKET", "XDG_ACTIVATION_TOKEN"))])
        with open(asked, encoding="ascii") as file:
            arguments = file.read().splitlines()
        self.assertEqual(arguments[:5] + arguments[6:],
                         ["--user", "--scope", "--quiet", "--collect", "--slice=app.slice",
                          self.desktop.path("mate-system-monitor")])
        # A list of processes finds the application by this name.
        self.assertRegex(arguments[5], r"^--unit=app-tarnwick-mate\\x2dsystem\\x2dmonitor-\d+\.scope$")

    def test_opens_it_plainly_where_the_service_manager_refuses(self):
        self.open_plainly("echo 'Failed to connect to bus: Connection refused' >&2; exit 1")

    def test_opens_it_plainly_where_the_service_manager_does_not_answer(self):
        self.open_plainly("exec sleep 600")

    def open_plainly(self, answer):
        told = self.install("mate-system-monitor")
        self.make_program("systemd-run", f"#!/bin/sh\n{answer}\n")
        os.mkdir(self.desktop.path("runtime/systemd"))
        with open(self.desktop.path("runtime/systemd/private"), "wb"):
            pass
        program = self.start("MATE", PATH=f"{self.desktop.folder}:{self.desktop.env['PATH']}")
        self.press_button(program)
        lines = self.told(told)
        self.assert_closed(program)
        os.kill(int(lines[0].split()[1]), signal.SIGKILL)
        self.assertEqual(program.output(), "")

    def test_opens_another_where_the_desktop_has_none(self):
        # The first of those that are not this desktop's own.
        other = self.install("io.elementary.monitor")
        program = self.start("LXDE")
        self.press_button(program)
        os.kill(int(self.told(other)[0].split()[1]), signal.SIGKILL)

    def test_does_nothing_where_none_is_installed(self):
        if any(map(glob.glob, _OF_SANDBOXES)):
            self.skipTest("this machine lacks a way to hide the applications of its sandboxes")
        program = self.start("GNOME")
        self.press_button(program)
        time.sleep(0.5)
        self.assertIsNotNone(program.panel())
        self.assertEqual(self.children(program), [])
        self.assertEqual(program.output(), "")

    def children(self, program):
        found = []
        for task in os.listdir(f"/proc/{program.pid}/task"):
            with contextlib.suppress(FileNotFoundError):
                with open(f"/proc/{program.pid}/task/{task}/children", encoding="ascii") as file:
                    found += file.read().split()
        return found


main()
