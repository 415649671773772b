# SPDX-License-Identifier: MIT
"""How the program ends: by a signal, with its session, with its display; and what it survives."""

import os
import signal
import subprocess
import time

from private_desktop import Program

from desktop_test_case import DesktopTestCase, main

# Of a client that no session is to start again.
_RESTART_NEVER = "restart 3"


class EndTest(DesktopTestCase):
    def test_ends_by_each_signal_of_a_session(self):
        self.open_desktop()
        for number in (signal.SIGTERM, signal.SIGHUP, signal.SIGINT):
            program = self.start_known_to_user()
            program.process.send_signal(number)
            self.assert_ends(program)
            self.assertEqual(program.output(), "")

    def test_ends_by_a_signal_while_the_panel_is_open(self):
        self.open_desktop()
        program = self.start_known_to_user()
        program.open_panel()
        program.process.send_signal(signal.SIGHUP)
        self.assert_ends(program)
        self.assertEqual(program.output(), "")

    def start_in_a_session(self):
        """A session manager and the program, started for the first time and greeting."""
        manager = subprocess.Popen(
            [os.environ["TARNWICK_SESSION_MANAGER"]], env={"HOME": self.desktop.path("home")},
            stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True)
        self.addCleanup(manager.wait)
        self.addCleanup(manager.stdout.close)
        self.addCleanup(manager.stdin.close)
        address = manager.stdout.readline().strip()
        program = self.program().start(SESSION_MANAGER=address)
        program.wait_for_item()
        self.until(lambda: self.is_in_store("settings.hasPresentedInitialSettings"),
                   "the greeting is over")
        self.assertEqual(manager.stdout.readline().strip(), _RESTART_NEVER)
        self.assertEqual(manager.stdout.readline().strip(), "registered")
        return manager, program

    def settings_window(self, program):
        return next((window for window in self.desktop.screen.windows(program.pid)
                     if self.desktop.screen.window_name(window) == "Tarnwick Settings"), None)

    def test_ends_at_log_out_and_is_not_restored(self):
        self.open_desktop()
        manager, program = self.start_in_a_session()
        print("logout", file=manager.stdin, flush=True)
        self.assert_ends(program)
        self.assertEqual(program.output(), "")

    def test_ends_at_log_out_with_its_windows_open(self):
        self.open_desktop()
        manager, program = self.start_in_a_session()
        self.until(lambda: self.settings_window(program), "the settings window is open")
        if not program.wait_for_greeting():
            program.open_panel()
        self.assert_open(program)
        self.assertIsNotNone(self.settings_window(program))
        print("logout", file=manager.stdin, flush=True)
        self.assert_ends(program)
        self.assertEqual(program.output(), "")

    def test_ends_by_a_signal_while_the_settings_window_is_open(self):
        self.open_desktop(host=None)
        program = self.program().start()
        self.until(lambda: self.settings_window(program), "the settings window is open")
        program.process.send_signal(signal.SIGTERM)
        self.assert_ends(program)

    def test_outlives_its_terminal_where_it_is_told_to(self):
        self.open_desktop()
        first = self.start_known_to_user()
        self.assertEqual(first.end(), 0, first.output())
        program = Program(self.desktop, ["nohup", os.environ["TARNWICK"]], "program").start()
        program.wait_for_tray()
        program.process.send_signal(signal.SIGHUP)
        # Behind what the signal might have caused.
        program.open_panel()
        self.assert_open(program)
        program.process.send_signal(signal.SIGTERM)
        self.assert_ends(program)

    def test_a_start_at_the_end_of_the_first_is_heard_by_it_or_takes_its_place(self):
        self.open_desktop()
        first = self.start_known_to_user()
        # Stopped, the first can neither answer nor end before the second has asked.
        first.process.send_signal(signal.SIGSTOP)
        first.process.send_signal(signal.SIGTERM)
        second = self.program("second").start()
        self.until(lambda: self.desktop.bus.is_connected(second.pid), "the second is on the bus")
        first.process.send_signal(signal.SIGCONT)
        self.until(lambda: not first.runs(), "the first ends")
        self.assertEqual(first.process.returncode, 0, first.output())
        self.until(lambda: not second.runs() or self.desktop.bus.item_of(second.pid),
                   "the second has made up its mind")
        print("the second", "took its place" if second.runs() else "was heard")
        if second.runs():
            second.process.send_signal(signal.SIGTERM)
        self.assert_ends(second)
        self.assertEqual(second.output(), "")

    def test_ends_with_its_display(self):
        self.open_desktop()
        program = self.start_known_to_user()
        self.desktop.kill_display()
        self.assert_ends(program)

    def test_ends_with_its_display_while_the_panel_is_open(self):
        self.open_desktop()
        program = self.start_known_to_user()
        program.open_panel()
        self.desktop.kill_display()
        self.assert_ends(program)

    def test_ends_with_its_display_on_the_first_launch(self):
        self.open_desktop(host=None)
        program = self.program().start()
        self.wait_until_up(program)
        self.until(lambda: self.is_in_store("settings.hasPresentedInitialSettings"),
                   "the greeting is over")
        self.desktop.kill_display()
        self.assert_ends(program)

    def test_ends_with_its_compositor(self):
        self.open_desktop(host="waybar")
        program = self.start_known_to_user()
        self.desktop.kill_display()
        # The toolkit exits at once without asking the program: with status 1, or with 255 in newer
        # versions.
        self.assert_ends(program, succeeds=False)

    def test_outlives_the_session_bus(self):
        self.open_desktop()
        program = self.start_known_to_user()
        self.desktop.kill_bus()
        self.assert_one_line(program, "no tray")
        self.assertTrue(program.runs())
        second = self.program("second").start()
        self.until(lambda: not second.runs(), "the second start ends")
        self.assertEqual(second.process.returncode, 1)
        self.assert_one_line(second, "another Tarnwick is running")
        program.process.send_signal(signal.SIGTERM)
        self.assert_ends(program)

    def test_stays_in_an_embedding_tray_without_the_session_bus(self):
        self.open_desktop(host="tint2")
        first = self.program("first").start()
        self.until(lambda: self.is_in_store("settings.hasPresentedInitialSettings"),
                   "the greeting is over")
        self.assertEqual(first.end(), 0, first.output())
        program = self.program().start()
        self.until(program.docked_window, "the tray holds the icon")
        self.desktop.kill_bus()

        def stays_open():
            """The focus goes to and fro when the window manager leaves, which closes a panel."""
            if program.panel() is None:
                program.click_item()
            time.sleep(1)
            return program.panel_picture()

        self.until(stays_open, "the panel opens and stays")
        self.assertEqual(program.output(), "")

main()
