# SPDX-License-Identifier: MIT
"""Starting and ending: in a whole session, in a broken one, a second time."""

import fcntl
import os
import signal
import subprocess
import time

from desktop_test_case import ENDS_WITHIN, DesktopTestCase, main

# Longer than a first launch looks for the item.
A_WHILE = 1.5


class StartTest(DesktopTestCase):
    def test_says_that_its_text_cannot_be_written(self):
        for option in ("--help", "--version"):
            with open("/dev/full", "wb") as full:
                ended = subprocess.run([os.environ["TARNWICK"], option], stdout=full, text=True,
                                       stderr=subprocess.PIPE, check=False, timeout=ENDS_WITHIN)
            self.assertEqual(ended.returncode, 1, option)
            self.assertEqual(ended.stderr, "tarnwick: the output cannot be written\n")

    def test_second_start_opens_the_panel_of_the_first(self):
        self.open_desktop()
        first = self.start_known_to_user()
        second = self.program("second").start()
        self.until(lambda: not second.runs(), "the second start ends")
        self.assertEqual(second.process.returncode, 0, second.output())
        self.assertEqual(second.output(), "")
        self.assert_open(first)
        self.assertEqual(len(self.desktop.bus.items()), 1)

    def test_second_start_opens_the_panel_where_there_is_no_tray(self):
        self.open_desktop(host=None)
        first = self.program().start()
        # The settings window that greets takes the focus, which closes a panel.
        self.until(lambda: self.desktop.screen.active_window() in
                   {window.id for window in self.desktop.screen.windows(first.pid)},
                   "the settings window is the active one")
        self.assert_closed(first)
        second = self.program("second").start()
        self.until(lambda: not second.runs(), "the second start ends")
        self.assertEqual(second.process.returncode, 0, second.output())
        self.assert_open(first)
        # In the upper right corner of the screen.
        panel = self.until(first.panel, "the panel is open")
        self.assertLess(panel.y, 20)
        self.assertGreater(panel.x + panel.width, self.desktop.screen.size[0] - 20)

    def test_second_start_leaves_an_open_panel_open(self):
        self.open_desktop()
        first = self.start_known_to_user()
        panel = first.open_panel()
        self.assert_open(first)
        for number in range(2):
            second = self.program(f"second{number}").start()
            self.until(lambda program=second: not program.runs(), "the second start ends")
            self.assertEqual(second.process.returncode, 0, second.output())
            self.assert_open(first)
            self.assertEqual(first.panel().id, panel.id)

    def test_two_first_launches_at_once_leave_one_with_its_panel_open(self):
        self.open_desktop()
        started = [self.program(f"start{number}").start() for number in range(2)]
        self.until(lambda: sum(program.runs() for program in started) == 1, "one of them ends")
        first, second = sorted(started, key=lambda program: program.runs(), reverse=True)
        self.assertEqual(second.process.returncode, 0, second.output())
        self.assert_open(first)
        # The greeting is over by then.
        time.sleep(A_WHILE)
        self.assertIsNotNone(first.panel())

    def test_second_start_says_that_the_first_does_not_answer(self):
        self.open_desktop()
        first = self.start_known_to_user()
        first.process.send_signal(signal.SIGSTOP)
        self.addCleanup(first.process.send_signal, signal.SIGCONT)
        second = self.program("second").start()
        self.until(lambda: not second.runs(), "the second start ends")
        self.assertEqual(second.process.returncode, 1)
        self.assert_one_line(second, "another Tarnwick is running and does not answer")
        first.process.send_signal(signal.SIGCONT)
        # The user has gone on since then, and it opens no panel any more.
        self.wait_until_calm(first)
        self.assertIsNone(first.panel())
        first.open_panel()

    def test_says_that_there_is_no_display(self):
        self.open_desktop(host=None)
        for empty in (None, ""):
            program = self.program(f"display{empty}").start(DISPLAY=empty)
            self.until(lambda started=program: not started.runs(), "the program ends")
            self.assertEqual(program.process.returncode, 1)
            self.assert_one_line(program, "no display")
        self.assertFalse(os.path.exists(self.store()))

    def test_says_that_the_display_cannot_be_reached(self):
        self.open_desktop(host=None)
        for name, value in (("DISPLAY", ":9876"), ("WAYLAND_DISPLAY", "nowhere")):
            program = self.program(name).start(**{"DISPLAY": None, name: value})
            self.until(lambda started=program: not started.runs(), "the program ends")
            self.assertEqual(program.process.returncode, 1)
            self.assert_one_line(program, f"the display cannot be reached: {value}")
        self.assertFalse(os.path.exists(self.store()))

    def test_says_that_the_toolkit_cannot_start(self):
        self.open_desktop()
        program = self.program().start(QT_QPA_PLATFORM="nothing")
        self.until(lambda: not program.runs(), "the program ends")
        self.assertEqual(program.process.returncode, 1, program.output())
        own = [line for line in program.output().splitlines() if line.startswith("tarnwick: ")]
        self.assertEqual(len(own), 1, program.output())
        self.assertIn("the toolkit cannot start: ", own[0])

    def test_passes_over_what_only_the_toolkit_knows(self):
        self.open_desktop()
        program = self.program(options=["-platform", "nonsense", "-style"]).start()
        program.wait_for_item()
        self.assertEqual(program.output(), "")

    def test_notices_the_first_where_a_bus_came_later(self):
        self.open_desktop(host="tint2")
        first = self.program().start(DBUS_SESSION_BUS_ADDRESS="disabled:")
        self.until(first.docked_window, "the tray holds the icon")
        self.assert_sent_away(self.program("second").start())
        self.assertIsNone(self.desktop.bus.owner("org.tarnwick.Tarnwick"))
        self.assertTrue(first.runs())

    def assert_sent_away(self, second):
        """A start that notices the first and has no way to reach it says so and ends."""
        self.until(lambda: not second.runs(), "the second start ends")
        self.assertEqual(second.process.returncode, 1)
        self.assert_one_line(second, "another Tarnwick is running")

    def test_starts_again_after_a_crash(self):
        self.open_desktop()
        program = self.start_known_to_user()
        for _ in range(2):
            self.assertEqual(program.end(signal.SIGKILL), -signal.SIGKILL)
            program = self.program().start()
            program.wait_for_item()
        self.assertEqual(len(self.desktop.bus.items()), 1)
        self.assertEqual(program.output(), "")

    def test_starts_again_after_a_crash_without_a_session_bus(self):
        self.open_desktop(host="tint2")
        program = self.start_without_a_session_bus()
        self.until(program.docked_window, "the tray holds the icon")
        self.assertEqual(program.end(signal.SIGKILL), -signal.SIGKILL)
        again = self.program("again").start(DBUS_SESSION_BUS_ADDRESS=None,
                                            XDG_RUNTIME_DIR=self.desktop.path("elsewhere"))
        self.until(again.docked_window, "the tray holds the icon")
        self.assert_one_line(again, "no session bus")

    def test_terminating_ends_with_success_and_a_whole_store(self):
        self.open_desktop()
        program = self.start_greeting()
        self.assertEqual(program.end(), 0, program.output())
        self.assertEqual(program.output(), "")
        self.assert_store_is_whole()
        # Nobody else's business.
        self.assertEqual(os.stat(self.store()).st_mode & 0o777, 0o600)
        self.assertEqual(os.stat(os.path.dirname(self.store())).st_mode & 0o777, 0o700)

    def start_without_a_session_bus(self):
        os.mkdir(self.desktop.path("elsewhere"), 0o700)
        program = self.program().start(DBUS_SESSION_BUS_ADDRESS=None,
                                       XDG_RUNTIME_DIR=self.desktop.path("elsewhere"))
        self.until(program.output, "the program says something")
        self.assertIn("no session bus", program.output())
        return program

    def test_lives_without_a_session_bus_and_without_a_tray(self):
        self.open_desktop(host=None)
        program = self.start_without_a_session_bus()
        self.until(lambda: "no tray" in program.output(), "the program says that there is no tray")
        self.assertEqual(len(program.output().splitlines()), 2, program.output())
        self.assertTrue(program.runs())
        self.assertEqual(program.end(), 0)

    def test_uses_an_embedding_tray_without_a_session_bus(self):
        self.open_desktop(host="tint2")
        program = self.start_without_a_session_bus()
        self.until(program.docked_window, "the tray holds the icon")
        self.assert_one_line(program, "no session bus")
        if program.wait_for_greeting():
            program.close_panel()
        program.open_panel()
        self.assert_open(program)

    def test_second_start_is_noticed_without_a_session_bus(self):
        self.open_desktop(host="tint2")
        first = self.start_without_a_session_bus()
        self.until(first.docked_window, "the tray holds the icon")
        self.assert_sent_away(self.program("second").start(
            DBUS_SESSION_BUS_ADDRESS=None, XDG_RUNTIME_DIR=self.desktop.path("elsewhere")))
        self.assertTrue(first.runs())

    def test_damaged_store_is_set_aside_with_one_line(self):
        self.open_desktop()
        os.makedirs(os.path.dirname(self.store()))
        damaged = b'{"settings.cpuHighThreshold": 92,' + bytes(range(256)) * 64
        with open(self.store(), "wb") as file:
            file.write(damaged)
        program = self.program().start()
        program.wait_for_item()
        self.assert_one_line(program, "settings")
        self.assertEqual(program.end(), 0)
        self.assert_store_is_whole()
        folder = os.path.dirname(self.store())
        kept = []
        for name in os.listdir(folder):
            with open(os.path.join(folder, name), "rb") as file:
                kept.append(file.read())
        self.assertIn(damaged, kept)

    def test_a_store_that_cannot_be_written_now_keeps_nobody_out(self):
        self.open_desktop()
        # As another one that writes and does not come to an end.
        folder = os.path.dirname(self.store())
        os.makedirs(folder)
        held = os.open(folder, os.O_RDONLY)
        self.addCleanup(os.close, held)
        fcntl.flock(held, fcntl.LOCK_EX)
        program = self.start_greeting()
        begin = time.monotonic()
        self.assertEqual(program.end(), 0, program.output())
        # What is under way is waited for, but not for long.
        took = time.monotonic() - begin
        self.assertGreater(took, 0.9)
        self.assertLess(took, ENDS_WITHIN)
        self.assertEqual(self.stored(), {})
        self.assertEqual(program.output(), "")

    def test_knows_whether_the_desktop_starts_it_at_login(self):
        self.open_desktop()
        self.start_known_to_user().end()
        self.assertFalse(self.is_in_store("settings.launchOnLogin"))
        folder = self.desktop.path("home/.config/autostart")
        os.makedirs(folder)
        with open(os.path.join(folder, "org.tarnwick.Tarnwick.desktop"), "w", encoding="ascii") as file:
            file.write("[Desktop Entry]\nType=Application\nName=x\nExec=sh\nOnlyShowIn=X;\n")
        program = self.program("elsewhere").start(XDG_CURRENT_DESKTOP="Y")
        program.wait_for_item()
        program.end()
        self.assertFalse(self.is_in_store("settings.launchOnLogin"))
        program = self.program().start(XDG_CURRENT_DESKTOP="X")
        program.wait_for_item()
        self.until(lambda: self.is_in_store("settings.launchOnLogin"), "the preference is true")
        self.assertEqual(program.end(), 0, program.output())

    def test_runs_where_the_home_folder_is_missing(self):
        self.open_desktop()
        program = self.program().start(HOME=self.desktop.path("missing"))
        program.wait_for_item()
        if program.wait_for_greeting():
            program.close_panel()
        program.open_panel()
        self.assert_open(program)
        self.assertLessEqual(len(program.output().splitlines()), 1, program.output())
        self.assertEqual(program.end(), 0)

    def test_runs_where_the_home_folder_cannot_be(self):
        self.open_desktop()
        # Below a file there can be no folder, not even for root.
        with open(self.desktop.path("file"), "w", encoding="ascii"):
            pass
        program = self.program().start(HOME=self.desktop.path("file/home"))
        program.wait_for_item()
        if program.wait_for_greeting():
            program.close_panel()
        program.open_panel()
        self.assert_open(program)
        # One line says that nothing can be read, one that nothing can be written.
        lines = program.output().splitlines()
        self.assertIn(len(lines), (1, 2), lines)
        for line in lines:
            self.assertTrue(line.startswith("tarnwick: settings: "), lines)
        self.assertEqual(program.end(), 0)


main()
