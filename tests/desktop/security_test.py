# SPDX-License-Identifier: MIT
"""What SECURITY.md says of the program: whom it speaks to, what it writes, what it starts."""

import os
import re
import shutil
import stat
import subprocess

from desktop_test_case import DesktopTestCase, main

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


main()
