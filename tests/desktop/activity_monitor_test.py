"""The button that opens the desktop's own system monitor."""

import contextlib
import os
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
_ENTRY = """\
[Desktop Entry]
Type=Application
Name={name}
Exec={program}
"""


class ActivityMonitorTest(DesktopTestCase):
    def setUp(self):
        self.open_desktop(accessibility=True)

    def install(self, name):
        """Installs a system monitor for the user; the file in which it tells how it started."""
        told = self.desktop.path(name + ".told")
        program = self.desktop.path(name)
        with open(program, "w", encoding="ascii") as file:
            file.write(_MONITOR.format(told=told))
        os.chmod(program, stat.S_IRWXU)
        folder = self.desktop.path("home/.local/share/applications")
        os.makedirs(folder, exist_ok=True)
        with open(f"{folder}/{name}.desktop", "w", encoding="ascii") as file:
            file.write(_ENTRY.format(name=name, program=program))
        return told

    def press_button(self, program):
        program.open_panel()
        self.assert_open(program)
        self.press(program, "Activity Monitor")

    def told(self, file):
        """What a monitor that has started tells, as (key, value) lines."""
        self.until(lambda: os.path.exists(file), "the system monitor has started")
        with open(file, encoding="utf-8") as lines:
            return lines.read().splitlines()

    def start(self, desktops):
        # Beside those of a sandbox no folder but the user's own is looked at.
        return self.start_known_to_user(XDG_CURRENT_DESKTOP=desktops,
                                        XDG_DATA_DIRS=self.desktop.path("nothing"))

    def test_opens_the_one_of_the_desktop_on_its_own(self):
        own, other = self.install("mate-system-monitor"), self.install("xfce4-taskmanager")
        program = self.start("MATE")
        self.press_button(program)
        told = self.told(own)
        self.assert_closed(program)
        pid = int(told[0].split()[1])
        # The limit of this test, not the one that the program has raised for itself.
        with open("/proc/self/limits", encoding="ascii") as file:
            limit = next(line.split()[3] for line in file if line.startswith("Max open files"))
        self.assertEqual(told[1:7], [
            f"limit {limit}", f"session {pid}", "SigBlk:\t0000000000000000",
            "SigIgn:\t0000000000000000", "file /dev/null", "file /dev/null"])
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

    def test_opens_another_where_the_desktop_has_none(self):
        other = self.install("xfce4-taskmanager")
        program = self.start("GNOME")
        self.press_button(program)
        os.kill(int(self.told(other)[0].split()[1]), signal.SIGKILL)

    def test_does_nothing_where_none_is_installed(self):
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
