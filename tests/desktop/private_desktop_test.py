# SPDX-License-Identifier: MIT
"""The private desktop itself: nothing of it outlives the script that made it."""

import os
import shutil
import signal
import subprocess
import sys
import time
import unittest

from desktop_test_case import main
from private_desktop.processes import descendants

_SCRIPT = """
import sys, time
from private_desktop import PrivateDesktop
from private_desktop.processes import end_on_signals
end_on_signals()
with PrivateDesktop() as desktop:
    print(desktop.folder, flush=True)
    time.sleep(300)
"""


class PrivateDesktopTest(unittest.TestCase):
    def end(self, number):
        """Ends a script with a signal: the folder and the processes of its desktop."""
        script = subprocess.Popen([sys.executable, "-B", "-c", _SCRIPT], stdout=subprocess.PIPE,
                                  text=True)
        self.addCleanup(script.stdout.close)
        folder = script.stdout.readline().strip()
        self.assertTrue(os.path.isdir(folder))
        processes = descendants(script.pid)
        # Display, bus, window manager and tray host at the least.
        self.assertGreaterEqual(len(processes), 4)
        script.send_signal(number)
        self.assertNotEqual(script.wait(), 0)
        return folder, processes

    def assert_gone(self, processes):
        end = time.monotonic() + 30
        while processes and time.monotonic() < end:
            processes = [pid for pid in processes if is_alive(pid)]
            time.sleep(0.02)
        self.assertEqual(processes, [])

    def test_nothing_is_left_after_a_signal(self):
        for number in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP):
            with self.subTest(number):
                folder, processes = self.end(number)
                self.assertFalse(os.path.exists(folder))
                self.assertEqual([pid for pid in processes if is_alive(pid)], [])

    def test_no_process_is_left_after_a_kill(self):
        folder, processes = self.end(signal.SIGKILL)
        self.addCleanup(shutil.rmtree, folder)
        self.assert_gone(processes)


def is_alive(pid):
    try:
        with open(f"/proc/{pid}/stat", encoding="utf-8", errors="replace") as file:
            return file.read().rpartition(")")[2].split()[0] != "Z"
    except OSError:
        return False


main()
