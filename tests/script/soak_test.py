# SPDX-License-Identifier: MIT
"""What script/soak takes as growth, as a hang and as a crash, and what it says before it starts."""

import os
import pathlib
import subprocess
import sys
import unittest

SCRIPT = pathlib.Path(os.environ["TARNWICK_SCRIPTS"]) / "soak"
sys.path.insert(0, str(SCRIPT.parent / "lib"))

import failed_calls  # noqa: E402
from soak_growth import MEMORY_LIMIT, Sample, growth  # noqa: E402


def samples(memory=(), descriptors=(), threads=()):
    count = max(len(memory), len(descriptors), len(threads))

    def filled(values, usual):
        return list(values) or [usual] * count

    return [Sample(*each, 60) for each in zip(filled(memory, 4000), filled(descriptors, 30),
                                              filled(threads, 7))]


class Growth(unittest.TestCase):
    def test_is_none_while_all_stays(self):
        self.assertIsNone(growth(samples(memory=[4000] * 9)))

    def test_is_none_where_memory_settles_below_the_limit(self):
        self.assertIsNone(growth(samples(memory=[4000] * 3 + [4000 + MEMORY_LIMIT] * 6)))

    def test_is_none_where_something_comes_and_goes(self):
        self.assertIsNone(growth(samples(threads=[7, 7, 7, 9, 9, 9, 9, 7, 9])))
        self.assertIsNone(growth(samples(descriptors=[30, 30, 30, 40, 40, 40, 30, 40, 40])))

    def test_is_told_in_a_line(self):
        for grown, word in ((samples(memory=[4000] * 3 + [5000] * 6), "4,000 kB"),
                            (samples(descriptors=range(30, 39)), "32 descriptors"),
                            (samples(threads=[7, 7, 7, 8, 8, 8, 8, 8, 8]), "7 threads")):
            line = growth(grown)
            self.assertIn(word, line)
            self.assertNotIn("\n", line)


class FailedCalls(unittest.TestCase):
    def test_each_call_fails_at_several_times_and_none_later_than_it_is_made(self):
        points = failed_calls.plan({"openat": 100, "socket": 2, "mmap": 2, "exit_group": 1})
        # The loader itself makes the first call for memory.
        self.assertEqual(sorted(points), [("mmap", 2)] + [("openat", number) for number in
                                          (1, 2, 3, 25, 50, 75, 100)]
                         + [("socket", 1), ("socket", 2)])

    def test_the_counts_are_those_of_the_tracer(self):
        # Of two threads, one of which is interrupted by the other.
        self.assertEqual(failed_calls.counted("""\
71 openat(AT_FDCWD, "/etc/ld.so.cache", O_RDONLY|O_CLOEXEC) = 3
71 read(3, "read(4) = 1", 832) = 832
71 openat(AT_FDCWD, "/lib/libc.so.6", O_RDONLY|O_CLOEXEC <unfinished ...>
102 openat(AT_FDCWD, "/proc/stat", O_RDONLY) = 5
71 <... openat resumed>) = 3
102 read(5, "cpu", 4096) = 3
102 read(5, "", 4096) = 0
102 +++ exited with 0 +++
"""), {"openat": 2, "read": 2})

    def test_what_became_of_a_start_is_told_apart(self):
        line = "tarnwick: the session bus does not answer\n"
        loader = "tarnwick: error while loading shared libraries: libQt6Core.so.6: EIO\n"
        toolkit = "This application failed: no Qt platform plugin could be initialized.\n"
        for found, outcome in (((True, 0, ""), failed_calls.STARTED),
                               ((False, 1, line), failed_calls.SAID),
                               ((False, 0, ""), failed_calls.LATE),
                               ((False, -15, ""), failed_calls.LATE),
                               ((True, -15, ""), failed_calls.STARTED),
                               ((False, 127, loader), failed_calls.FOREIGN),
                               ((False, -6, "Fatal glibc error: no entropy\n"),
                                failed_calls.FOREIGN),
                               ((False, -6, toolkit), failed_calls.FOREIGN),
                               ((False, 0, "The X11 connection broke\n"), failed_calls.FOREIGN),
                               ((True, None, ""), failed_calls.HANG),
                               ((False, None, line), failed_calls.HANG),
                               ((False, -6, line), failed_calls.CRASH),
                               ((False, -11, "qt.qpa.xcb: no such extension\n"),
                                failed_calls.CRASH),
                               ((True, -11, ""), failed_calls.CRASH),
                               ((False, 1, ""), failed_calls.CRASH)):
            self.assertEqual(failed_calls.judged(*found), outcome, found)

    def test_a_crash_of_the_toolkit_is_not_the_programs(self):
        def is_own(*frames):
            return failed_calls.is_own("1 recvmsg(3) = -1 EINVAL (INJECTED)\n > /p/tarnwick(ask+1)\n"
                                       "1 --- SIGSEGV {si_signo=SIGSEGV} ---\n"
                                       + "".join(f" > {frame} [0x1]\n" for frame in frames),
                                       "/p/tarnwick")

        start = ("/lib/libc.so.6(__libc_start_main+0x8)", "/p/tarnwick(_start+0x2)")
        self.assertFalse(is_own("/lib/libQt6XcbQpa.so.6(screens()+0x12)",
                                "/p/tarnwick(main+0x3)", *start))
        self.assertTrue(is_own("/lib/libQt6Gui.so.6(draw()+0x12)", "/p/tarnwick(paint()+0x3)",
                               "/p/tarnwick(main+0x3)", *start))
        # Without a trace nobody else can be blamed.
        self.assertTrue(is_own())


class Options(unittest.TestCase):
    def test_are_told_at_once(self):
        # Without these two nothing could be installed or built.
        found = subprocess.run(
            ["/bin/bash", "-c", 'apt-get() { exit 9; }; cmake() { exit 9; }; '
             'export -f apt-get cmake; exec "$0" --minutes 3 --help', SCRIPT],
            capture_output=True, text=True, timeout=60)
        self.assertEqual((found.returncode, found.stderr), (0, ""))
        for option in ("--refreshes", "--kills", "--minutes", "--failed-calls", "--starts"):
            self.assertIn(option, found.stdout)
        self.assertNotIn("BASH_SOURCE", found.stdout)

    def test_that_are_wrong_are_refused_at_once(self):
        for options in (["--minutes"], ["--minutes", "x"], ["--minutes", "2"], ["--kills", "-1"], ["--bogus"]):
            found = subprocess.run([SCRIPT, *options], capture_output=True, text=True, timeout=60)
            self.assertEqual(found.returncode, 1, options)
            self.assertEqual(len(found.stderr.splitlines()), 1, found.stderr)


if __name__ == "__main__":
    unittest.main()
