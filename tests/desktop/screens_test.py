# SPDX-License-Identifier: MIT
"""The panel where the desktop has several screens, or its bar elsewhere than at the top."""

from desktop_test_case import DesktopTestCase, main


class ScreensTest(DesktopTestCase):
    def check(self, *monitors):
        """The bar is on the first of the monitors; so must be the panel, and under the bar."""
        self.open_desktop(monitors=monitors)
        program = self.start_known_to_user()
        x, y, width, height = monitors[0]
        item = self.until(program.settled_item_place, "the item is on the screen")
        self.assertTrue(x <= item[0] < x + width, item)
        self.assertTrue(y <= item[1] < y + height, item)
        bar = max(self.desktop.host_windows(), key=lambda window: window.width)
        panel = program.open_panel()
        self.assert_open(program)
        self.assertGreaterEqual(panel.x, x)
        self.assertLessEqual(panel.x + panel.width, x + width)
        self.assertGreaterEqual(panel.y, bar.y + bar.height)
        self.assertLessEqual(panel.y + panel.height, y + height)
        self.assertTrue(panel.x <= item[0] < panel.x + panel.width, item)

    def test_opens_on_the_left_screen_and_not_across_its_edge(self):
        self.check((0, 0, 640, 800), (640, 0, 640, 800))

    def test_opens_on_the_right_screen_which_begins_lower(self):
        self.check((500, 140, 780, 660), (0, 0, 500, 800))

    def open_at_edge(self, edge):
        """A short bar along an edge of the screen; the bar and the panel."""
        self.open_desktop(host="tint2", edge=edge)
        program = self.start_known_to_user()
        bar = max(self.desktop.host_windows(), key=lambda window: window.width * window.height)
        panel = program.open_panel()
        self.assert_open(program)
        width, height = self.desktop.screen.size
        self.assertGreaterEqual(panel.x, 0)
        self.assertGreaterEqual(panel.y, 0)
        self.assertLessEqual(panel.x + panel.width, width)
        self.assertLessEqual(panel.y + panel.height, height)
        return bar, panel

    def test_opens_above_a_bar_at_the_bottom(self):
        bar, panel = self.open_at_edge("bottom")
        self.assertGreater(bar.y, self.desktop.screen.size[1] // 2)
        self.assertLessEqual(panel.y + panel.height, bar.y)

    def test_opens_beside_a_bar_at_the_side(self):
        bar, panel = self.open_at_edge("right")
        self.assertGreater(bar.height, bar.width)
        self.assertLessEqual(panel.x + panel.width, bar.x)


main()
