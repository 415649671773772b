# SPDX-License-Identifier: MIT
"""The panel: what opens it, what closes it, how it looks."""

import contextlib
import pathlib
import time

from gi.repository import GLib
from PIL import Image

from desktop_test_case import (DARK, LIGHT, REFRESH_BYTES, DesktopTestCase, bytes_read, main,
                               process_files)

# The picture shows the panel with so many pixels on its left and below it.
_README_PICTURE = pathlib.Path(__file__).parents[2] / "docs/screenshot.png"
_README_MARGIN = 24
# A request of the X protocol.
_GRAB_POINTER = 26
# Pixels: the buttons at the foot of the home page, without the rounded corners.
_FOOT = 50


class PanelTest(DesktopTestCase):
    def setUp(self):
        self.open_desktop()

    def test_greets_a_new_user_with_the_panel_once(self):
        first = self.start_greeting()
        self.assertEqual(first.end(), 0, first.output())
        second = self.program("second").start()
        second.wait_for_item()
        self.assertFalse(second.wait_for_greeting())

    def test_click_opens_and_a_second_click_closes(self):
        program = self.start_known_to_user()
        for _ in range(3):
            program.click_item()
            self.assert_open(program)
            # A hand takes its time, too: what a click shortly after a press means is the panel's.
            time.sleep(0.5)
            program.click_item()
            self.assert_closed(program)
            time.sleep(0.5)
            self.assertIsNone(program.panel())
        self.assertEqual(program.output(), "")

    def test_has_the_buttons_of_the_picture_in_the_readme(self):
        program = self.start_known_to_user()
        program.open_panel()
        self.assert_open(program)
        self.desktop.screen.move_pointer(self.desktop.nowhere)
        drawn = self.until(program.panel_picture, "the panel is drawn")
        shown = Image.open(_README_PICTURE)
        width, height = shown.size
        left, bottom = _README_MARGIN, height - _README_MARGIN
        shown = shown.crop((left, bottom - drawn.height, left + drawn.width, bottom))

        def letters(picture, begin, end):
            return min(picture.convert("L").crop(
                (int(picture.width * begin), picture.height - _FOOT,
                 int(picture.width * end), picture.height)).getdata())

        for name, *part in (("Activity Monitor", 0, 0.5), ("Quit", 0.5, 1)):
            # Whatever font they are set in, their letters have the colour of a button that works;
            # whether one does may be known a moment after the panel has opened.
            wanted = letters(shown, *part)
            self.until(lambda part=part, wanted=wanted:
                       abs(letters(program.panel_picture(), *part) - wanted) < 40,
                       f"{name} looks as in the readme")

    def test_escape_closes(self):
        program = self.start_known_to_user()
        program.open_panel()
        self.assert_open(program)
        self.desktop.screen.press_key("Escape")
        self.assert_closed(program)

    def test_click_outside_closes(self):
        program = self.start_known_to_user()
        program.open_panel()
        self.assert_open(program)
        self.desktop.screen.click(self.desktop.nowhere)
        self.assert_closed(program)

    def test_another_program_that_comes_to_the_front_closes(self):
        program = self.start_known_to_user()
        program.open_panel()
        self.assert_open(program)
        window = self.desktop.screen.open_window()
        self.until(lambda: self.desktop.screen.active_window() == window, "the window is active")
        self.assert_closed(program)
        time.sleep(0.5)
        program.open_panel()
        self.assert_open(program)

    def test_asks_once_for_a_pointer_that_nobody_holds(self):
        self.start_known_to_user()
        with self.desktop.screen.counted_requests(_GRAB_POINTER) as asked:
            second = self.program("second").start()
            self.until(lambda: not second.runs(), "the second start ends")
            self.until(asked, "the panel asks for the pointer")
            # By then it would have asked three times more.
            time.sleep(0.5)
            self.assertEqual(asked(), 1)

    def test_click_outside_closes_also_when_a_menu_was_open_as_it_opened(self):
        program = self.start_known_to_user()
        self.assertTrue(self.desktop.screen.hold_pointer())
        second = self.program("second").start()
        self.until(lambda: not second.runs(), "the second start ends")
        self.assert_open(program)
        self.desktop.screen.release_pointer()

        def closes():
            self.desktop.screen.click(self.desktop.nowhere)
            return program.panel() is None

        self.until(closes, "a click outside closes the panel")

    def test_click_inside_keeps_it_open(self):
        program = self.start_known_to_user()
        panel = program.open_panel()
        self.assert_open(program)
        self.desktop.screen.click((panel.x + 4, panel.y + panel.height // 2))
        time.sleep(0.5)
        self.assertIsNotNone(program.panel())

    def test_opens_again_after_each_way_of_closing(self):
        program = self.start_known_to_user()
        program.open_panel()
        self.desktop.screen.press_key("Escape")
        self.assert_closed(program)
        program.open_panel()
        program.close_panel()
        program.open_panel()
        self.assert_open(program)

    def test_lies_within_the_screen_under_the_item(self):
        program = self.start_known_to_user()
        panel = program.open_panel()
        width, height = self.desktop.screen.size
        item = self.until(program.settled_item_place, "the item is on the screen")
        self.assertGreaterEqual(panel.x, 0)
        self.assertLessEqual(panel.x + panel.width, width)
        self.assertGreater(panel.y, item[1])
        self.assertLessEqual(panel.y + panel.height, height)
        self.assertLessEqual(panel.x, item[0])
        self.assertGreaterEqual(panel.x + panel.width, item[0])

    def test_shows_new_figures_while_open(self):
        program = self.start_known_to_user(**self.with_memory_in_use(0.3))
        program.open_panel()
        self.desktop.screen.move_pointer(self.desktop.nowhere)
        self.wait_for_refresh(program)
        before = self.until(program.panel_picture, "the panel is open and drawn").tobytes()
        self.set_memory_in_use(0.6)

        def has_changed():
            picture = program.panel_picture()
            return picture is not None and picture.tobytes() != before

        self.until(has_changed, "the figures change")

    def test_middle_click_refreshes(self):
        program = self.start_known_to_user()
        place = self.until(program.settled_item_place, "the item is on the screen")
        # A refresh by itself comes in twice the time; a busy machine may need the click again.
        for _ in range(3):
            self.wait_for_refresh(program)
            start = bytes_read(program)
            begin = time.monotonic()
            self.desktop.screen.click(place, button=2)
            self.until(lambda: bytes_read(program) >= start + REFRESH_BYTES, "a refresh")
            if time.monotonic() - begin < 5:
                break
        else:
            self.fail("every refresh after a middle click was the next one by itself")
        self.assertIsNone(program.panel())

    def test_keeps_the_files_of_processes_open_only_while_it_is_open(self):
        program = self.start_known_to_user()
        self.assertEqual(process_files(program), 0)
        program.open_panel()
        self.until(lambda: process_files(program) > 0, "the files of processes are kept open")
        program.close_panel()
        # They go with the first refresh without the lists; the next by itself is seconds away.
        program.click_item(button=2)
        self.until(lambda: process_files(program) == 0, "the files are closed with the panel")

    def test_follows_the_desktop_from_light_to_dark(self):
        program = self.start_known_to_user()
        program.open_panel()
        self.assert_ground(program, LIGHT)
        self.desktop.settings.set_dark(True)
        self.assert_ground(program, DARK)


class DoubleClickTest(DesktopTestCase):
    def test_on_a_button_that_leads_to_a_shorter_page_keeps_the_panel_open(self):
        self.open_desktop(accessibility=True)
        # In so small a font the page of the memory ends above the button that leads to it.
        program = self.start_known_to_user(QT_FONT_DPI="24")
        program.open_panel()
        self.assert_open(program)
        bus = self.enterContext(self.desktop.accessibility_bus())

        def button(name):
            # What is on its way when the window changes is no longer there to be asked.
            with contextlib.suppress(GLib.Error):
                root = bus.program(program.pid)
                return root and root.find("push button", name)

        x, y, width, height = self.until(lambda: button("What's Using Memory?"),
                                         "the button is there").place()
        place = x + width // 2, y + height // 2
        self.desktop.screen.double_click(place)
        self.until(lambda: button("Back"), "the page of the memory is open")
        time.sleep(0.5)
        panel = program.panel()
        self.assertIsNotNone(panel)
        self.assertGreater(place[1], panel.y + panel.height)
        self.assertTrue(button("Back"))
        self.desktop.screen.click(place)
        self.assert_closed(program)


class LookTest(DesktopTestCase):
    def test_opens_in_dark(self):
        self.open_desktop(dark=True)
        program = self.start_known_to_user()
        program.open_panel()
        self.assert_ground(program, DARK)

    def test_opens_at_twice_the_scale(self):
        self.open_desktop(scale=2)
        program = self.start_known_to_user()
        panel = program.open_panel()
        self.assert_open(program)
        self.assertEqual(panel.width, 640)


main()
