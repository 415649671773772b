"""How the program ends: by a signal, with its session, with its display; and what it survives."""

import os
import signal
import subprocess
import time

from desktop_test_case import DesktopTestCase, main

# Of a client that no session is to start again.
_RESTART_NEVER = "restart 3"
# Many times what it takes: a program that waits for something on its way out would be later.
_AT_MOST = 5.0


class EndTest(DesktopTestCase):
    def assert_ends(self, program, status=0):
        """The program ends by itself, soon and with this status, and its store is whole."""
        begin = time.monotonic()
        self.until(lambda: not program.runs(), "the program ends")
        self.assertLess(time.monotonic() - begin, _AT_MOST)
        self.assertEqual(program.process.returncode, status, program.output())
        self.assert_store_is_whole()

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

    def test_ends_at_log_out_and_is_not_restored(self):
        self.open_desktop()
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
        print("logout", file=manager.stdin, flush=True)
        self.assert_ends(program)
        self.assertEqual(program.output(), "")

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
        # The toolkit leaves at once and asks nobody.
        self.assert_ends(program, status=1)

    def test_outlives_the_session_bus(self):
        self.open_desktop()
        program = self.start_known_to_user()
        self.desktop.kill_bus()
        self.assert_one_line(program, "no tray")
        self.assertTrue(program.runs())
        second = self.program("second").start()
        self.until(lambda: not second.runs(), "the second start ends")
        self.assertEqual(second.process.returncode, 0, second.output())
        self.assert_open(program)
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
        # The focus goes to and fro when the window manager leaves, which closes a panel.
        time.sleep(1.5)
        program.open_panel()
        self.assert_open(program)
        self.assertEqual(program.output(), "")

main()
