# SPDX-License-Identifier: MIT
"""The status item in the tray of each real host, driven with the pointer."""

import time

from PIL import ImageChops

from desktop_test_case import NO_TRAY, DesktopTestCase, ground, main

# Where the entries of the item's menu lie, as shares of its height.
_OPEN_PANEL = 0.17
_SETTINGS = 0.5
_QUIT = 0.85
_SETTINGS_WIDTH = 520
# A place in the panel without a button, and the menu's entry from the place where it was opened.
_IN_PANEL = (100, 90)
_SETTINGS_ENTRY = (30, 70)
# Of the panel to the bar above it.
_GAP = 6
# Around the panel, which may be found by the colour of its ground.
_HAIRLINE = 2
_SETTLED = 0.5
# For how long a hand holds the button in a click, seconds: usually, and when it is slow.
_SLOW = (0.15, 0.6)
# Memory is above its upper threshold, and the rest hardly ever, so that the text tells of that.
_THRESHOLDS = {
    "settings.cpuModerateThreshold": 99.0,
    "settings.cpuHighThreshold": 100.0,
    "settings.gpuModerateThreshold": 99.0,
    "settings.gpuHighThreshold": 100.0,
    "settings.memoryModerateThreshold": 1.0,
    "settings.memoryHighThreshold": 2.0,
    "settings.storageModerateThreshold": 99.0,
    "settings.storageCriticalThreshold": 100.0,
}
# Of the memory: what is in use, and then so much more that every whole percentage changes.
_USED = 0.3
_MORE = 0.015
# The least that counts as seen: so much stronger is a colour's strongest part than its weakest, or
# a letter than its ground; of so many pixels.
_SATURATED = 70
_FEWEST_PIXELS = 20
# Where the text lies, from the middle of the icon.
_TEXT_FROM = 14
_TEXT_TO = 80


class HostsTest(DesktopTestCase):
    def test_xfce4_panel(self):
        self.check("xfce4-panel")

    def test_lxqt_panel(self):
        self.check("lxqt-panel")

    def test_mate_panel(self):
        self.check("mate-panel", is_wide=True)

    def test_tint2(self):
        self.check("tint2")

    def test_waybar(self):
        self.check("waybar", is_wide=True)

    def check(self, host, is_wide=False):
        self.host = host
        # The digits of the clock beside the small icons differ in width.
        self.slack = 2 if is_wide else 8
        self.open_desktop(host=host)
        self.started = self.start_known_to_user(_THRESHOLDS, **self.with_memory_in_use(_USED))
        self.check_item(is_wide)
        self.check_menu()
        self.check_menu_of_panel()
        self.check_click()
        self.check_slow_clicks()
        self.check_ways_to_close()
        self.check_restart()
        self.check_stays_in_place()
        self.check_text(is_wide)
        self.check_settings()
        # On a busy machine a host may take longer to come back than the program waits for it.
        self.assertIn(self.started.output(), ("", NO_TRAY))
        self.choose(_QUIT)
        self.until(lambda: not self.started.runs(), "the program quits")
        self.assertEqual(self.started.process.returncode, 0)

    def keep(self, what):
        self.keep_picture(f"{self.host}_{what}")

    def settle(self):
        """A hand takes its time: a click right after a press means the same as that press."""
        time.sleep(_SETTLED)

    def check_item(self, is_wide):
        self.place = self.settled_place()
        if self.desktop.host_watches:
            item = self.started.wait_for_item()
            pictures = self.until(lambda: self.desktop.bus.item_property(item, "IconPixmap"),
                                  "the item has pictures")
            self.assertEqual(len(pictures), 1 if is_wide else 6)
        else:
            self.until(self.docked_colours, "the docked window shows the icon")
        if is_wide:
            self.until(self.shows_text, "the text is beside the icon")
        self.keep("item")

    def settled_place(self):
        return self.until(self.started.settled_item_place, "the item is on the screen")

    def docked_colours(self):
        """Whether the docked window, which has a place before it has a picture, shows the icon."""
        docked = self.started.docked_window()
        if docked is None:
            return False
        colours = self.desktop.screen.picture(docked.box).getdata()
        return sum(max(each) - min(each) >= _SATURATED for each in colours) >= _FEWEST_PIXELS

    def shows_text(self):
        """Whether enough pixels right of the icon stand out from the bar."""
        place = self.started.item_place()
        if place is None:
            return False
        text = self.desktop.screen.picture(
            (place[0] + _TEXT_FROM, 0, place[0] + _TEXT_TO, self.bar_height()))
        bar = ground(text)
        return sum(max(abs(a - b) for a, b in zip(colour, bar)) >= _SATURATED
                   for colour in text.getdata()) >= _FEWEST_PIXELS

    def bar_height(self):
        return min(window.height for window in self.desktop.host_windows())

    def check_click(self):
        self.started.click_item()
        self.assert_open(self.started)
        self.assert_place()
        self.keep("panel")
        self.started.click_item()
        self.assert_closed(self.started)
        # The host hears of that click, too, and must not open the panel again.
        self.settle()
        self.assertIsNone(self.started.panel())

    def check_slow_clicks(self):
        """However long the button is held, one click opens the panel and the next one closes it."""
        for hold in _SLOW:
            self.started.click_item(hold=hold)
            self.assert_open(self.started)
            self.started.click_item(hold=hold)
            self.assert_closed(self.started)
            self.settle()
            self.assertIsNone(self.started.panel(), f"held for {hold} s")

    def assert_place(self):
        """The panel is inside the screen and, where a program can say so, under the item."""
        panel = self.started.panel()
        width, height = self.desktop.screen.size
        self.assertGreaterEqual(panel.x, 0)
        self.assertLessEqual(panel.x + panel.width, width)
        self.assertLessEqual(panel.y + panel.height, height)
        self.assertGreaterEqual(panel.y, self.bar_height())
        # A window that is one for the compositor lies where the compositor puts it.
        if not self.desktop.is_wayland or not panel.top_level:
            self.assertLessEqual(panel.y, self.bar_height() + _GAP + _HAIRLINE)
            self.assertLessEqual(panel.x, self.place[0])
            self.assertGreaterEqual(panel.x + panel.width, self.place[0])

    def check_ways_to_close(self):
        self.started.click_item()
        self.assert_open(self.started)
        self.desktop.screen.press_key("Escape")
        self.assert_closed(self.started)
        self.started.click_item()
        self.assert_open(self.started)
        self.desktop.screen.click(self.desktop.nowhere)
        self.assert_closed(self.started)
        self.settle()

    def open_menu(self):
        """Opens the item's menu with the pointer: left, top, right and bottom of it."""
        place = self.settled_place()
        self.desktop.screen.move_pointer(place)
        self.settle()
        if self.desktop.is_wayland:
            return self.open_wayland_menu(place)
        before = set(self.desktop.screen.pop_ups())
        self.desktop.screen.click(place, button=3)

        def menu():
            new = [each for each in set(self.desktop.screen.pop_ups()) - before
                   if each.width >= 40 and each.height >= 40]
            return new and max(new, key=lambda each: each.height)

        self.until(menu, "the menu opens")
        # A tool tip that came with the pointer is gone by then, and the menu has its size.
        self.settle()
        return self.until(menu, "the menu is open").box

    def open_wayland_menu(self, place):
        """No one tells of menus there: it is what has changed below the bar."""
        area = (0, self.bar_height(), *self.desktop.screen.size)
        before = self.desktop.screen.picture(area)
        self.desktop.screen.click(place, button=3)
        self.settle()

        def menu():
            return ImageChops.difference(before, self.desktop.screen.picture(area)).getbbox()

        def settled_menu():
            box = menu()
            return box if box is not None and box == menu() else None

        left, top, right, bottom = self.until(settled_menu, "the menu opens")
        return left, top + area[1], right, bottom + area[1]

    def choose(self, share):
        left, top, right, bottom = self.open_menu()
        if share == _OPEN_PANEL:
            self.keep("menu")
        self.desktop.screen.click(((left + right) // 2, top + round((bottom - top) * share)))

    def check_menu(self):
        self.choose(_OPEN_PANEL)
        self.assert_open(self.started)
        self.assert_place()
        # What comes before the menu has let go of the keyboard is lost.
        self.until(self.closes_by_escape, "the panel is closed")
        self.settle()

    def check_menu_of_panel(self):
        """A right click on the panel; a press of Settings there opens them."""
        self.started.click_item()
        self.assert_open(self.started)
        panel = self.started.panel()
        place = (panel.x + _IN_PANEL[0], panel.y + _IN_PANEL[1])
        self.desktop.screen.move_pointer(place)
        self.settle()
        self.desktop.screen.click(place, button=3)
        self.settle()
        self.keep("panel_menu")
        self.desktop.screen.click((place[0] + _SETTINGS_ENTRY[0], place[1] + _SETTINGS_ENTRY[1]))
        self.until(self.settings_window, "the settings window opens")
        self.assert_closed(self.started)
        self.settle()
        self.until(self.settings_close_by_escape, "the settings window closes")
        self.settle()

    def settings_close_by_escape(self):
        self.desktop.screen.press_key("Escape")
        self.settle()
        return self.settings_window() is None

    def closes_by_escape(self):
        self.desktop.screen.press_key("Escape")
        self.settle()
        return self.started.panel() is None

    def check_settings(self):
        self.choose(_SETTINGS)
        window = self.until(self.settings_window, "the settings window opens")
        self.assert_active(window)
        self.settle()
        self.keep("settings")

    def assert_active(self, window):
        self.until(lambda: self.desktop.screen.active_window() == window.id,
                   "the settings window has the keyboard")

    def settings_window(self):
        return next((window for window in self.desktop.screen.windows(self.started.pid)
                     if window.top_level and window.width == _SETTINGS_WIDTH), None)

    def check_restart(self):
        self.desktop.kill_host()
        if self.desktop.is_wayland:
            self.check_without_tray()
        self.desktop.start_host(self.host)
        ready = time.monotonic()
        self.started.wait_for_tray()
        # How long the host takes to draw it is no matter of the program's.
        took = time.monotonic() - ready
        print(f"{self.host}: back in the tray {took:.2f} s after the host was ready")
        # Many times what it takes: a program that only looks now and then would be later.
        self.assertLess(took, 5)
        self.started.click_item()
        self.assert_open(self.started)
        self.started.close_panel()

    def check_without_tray(self):
        """A second start opens the panel of the first."""
        second = self.program("second").start()
        self.until(lambda: not second.runs(), "the second start ends")
        self.assertEqual(second.process.returncode, 0, second.output())
        self.assert_open(self.started)
        self.desktop.screen.press_key("Escape")
        self.assert_closed(self.started)

    def check_stays_in_place(self):
        """The icon is where it was before, even if the text beside it has changed."""
        place = self.settled_place()
        # The icon of another severity has another shape.
        self.assertLessEqual(abs(place[0] - self.place[0]), self.slack)

    def check_text(self, is_wide):
        """Another text moves nothing."""
        if not self.desktop.host_watches:
            return
        item = self.started.wait_for_item()

        def title():
            return self.desktop.bus.item_property(item, "Title")

        before = self.until(title, "the item has a title")
        self.assertIn(" RAM ", before)
        self.set_memory_in_use(_USED + _MORE)
        self.until(lambda: title() not in (None, before), "the text follows the machine")
        self.settle()
        self.check_stays_in_place()
        if is_wide:
            self.until(self.shows_text, "the text is beside the icon")
            self.keep("text")


main()
