# SPDX-License-Identifier: MIT
"""The settings window used: by mouse, by keyboard alone and by assistive technology alone."""

import re

from desktop_test_case import main
from settings_tour_case import HIGH_MEMORY, RECORDER, THRESHOLDS, SettingsTourCase, least_of

ACTIVE = "Shortcut active: "
CONFLICT = "This shortcut is already in use. Choose a different combination."
NO_COMMAND = "Shortcut must include Command."
TOO_MANY = "Use Command by itself or with one of Shift, Option, or Control."


class SettingsTourTest(SettingsTourCase):
    def test_shortcut_is_recorded_rejected_lost_and_cleared(self):
        self.start_tour()
        self.assert_said(ACTIVE + "⌘L")
        self.assert_recorder_reads("⌘L")
        self.record_by_mouse("Super_L", "k")
        self.assert_said(ACTIVE + "⌘K")
        self.assert_recorder_reads("⌘K")
        self.assert_stored("shortcutKeyCode", 40)
        self.assert_stored("shortcutModifiers", 0x100000)
        # Whichever program has the keyboard.
        self.desktop.screen.open_window()
        self.until(lambda: not self.is_focused(*RECORDER), "another program has the keyboard")
        self.assert_toggles_panel("Super_L", "k")
        # Also the one that is active can be pressed in the recorder, and stays active.
        self.choose_settings(self.program)
        self.record_by_mouse("Super_L", "k")
        self.assert_recorder_reads("⌘K")
        self.assert_closed(self.program)
        self.assert_toggles_panel("Super_L", "k")
        # What is rejected says why, and takes nothing away.
        self.choose_settings(self.program)
        self.record_by_mouse("j")
        self.assert_said(NO_COMMAND)
        self.assert_said(ACTIVE + "⌘K")
        self.hold_too_many()
        self.keyboard.press("Escape")
        self.assert_recorder_reads("⌘K")
        self.assert_stored("shortcutKeyCode", 40)
        self.assert_toggles_panel("Super_L", "k")
        self.keyboard.take_from_all("j")
        self.record_by_mouse("Super_L", "j")
        self.assert_said(CONFLICT)
        self.assert_stored("shortcutKeyCode", 38)
        self.keep_picture("settings_shortcut")
        self.keep_tree("General")
        self.click("push button", "Clear")
        self.assert_not_said(CONFLICT)
        self.until(lambda: self.find("push button", "Clear") is None, "nothing is left to clear")
        self.assert_recorder_reads("Click to record")
        self.assert_stored("shortcutKeyCode", -1)
        self.assert_stored("shortcutModifiers", 0)
        self.assertEqual(self.program.output(), "")

    def record_by_mouse(self, *keys):
        self.click(*RECORDER)
        self.wait_until_recording()
        self.keyboard.press(*keys)

    def hold_too_many(self):
        """The reason is said for as long as the modifiers are held."""
        with self.keyboard.held("Super_L", "Alt_L", "Control_L"):
            self.keyboard.press("j")
            self.assert_said(TOO_MANY)
        self.assert_not_said(TOO_MANY)

    def test_mouse_changes_everything(self):
        # This host shows a text beside the icon.
        self.start_tour("mate-panel", HIGH_MEMORY)
        self.assert_state("radio button", "Advanced", "checked")
        self.until(lambda: self.shows_text(True), "the text is beside the icon")
        self.click("radio button", "Icon Only")
        self.assert_state("radio button", "Icon Only", "checked")
        self.assert_state("radio button", "Advanced", "checked", False)
        self.assert_stored("menuBarDisplayMode", "iconOnly")
        self.until(lambda: self.shows_text(False), "the icon is alone")
        self.keep_picture("settings_icon_only")
        self.click("radio button", "Advanced")
        self.until(lambda: self.shows_text(True), "the text is beside the icon again")
        self.click("radio button", "Icon Only")
        self.assert_stored("menuBarDisplayMode", "iconOnly")
        self.click("check box", "Launch on login")
        self.assert_starts_at_login()
        self.keep_tree("General")
        self.click("check box", "Launch on login")
        self.assert_does_not_start_at_login()

        def change_the_reminder():
            self.click("page tab", "Customize")
            self.click("check box", "Remind restart after a week")
            self.assert_stored("remindRestartAfterWeek", 1)
            self.click("page tab", "General")

        self.assert_login_snaps_back(lambda: self.click("check box", "Launch on login"),
                                     change_the_reminder)
        self.click("page tab", "Customize")
        self.check_label_follows()
        for card in THRESHOLDS:
            least = least_of(card)
            self.drag(card, "high", 110, 100)
            self.drag(card, "normal", 110, 99)
            self.drag(card, "normal", -10, least)
            self.drag(card, "high", -10, least + 1)
            self.drag(card, "normal", 110, least)
            self.drag(card, "high", least + 27, least + 27)
            self.drag(card, "normal", 110, least + 26)
            self.drag(card, "normal", least + 14, least + 14)
        self.keep_picture("settings_thumbs")
        self.keep_tree("Customize")
        self.keep_store("changed")
        self.close_by_mouse()
        self.choose_settings(self.program)
        self.wait_for_window()
        self.assert_shows_what_is_stored(lambda tab: self.click("page tab", tab))
        self.click("push button", "Reset to Defaults")
        self.assert_fresh_thresholds()
        self.assert_stored("menuBarDisplayMode", "iconOnly")
        self.assert_stored("remindRestartAfterWeek", 1)
        self.assert_stored("launchOnLogin", 0)
        self.assert_stored("shortcutKeyCode", 37)
        self.click("page tab", "About")
        self.assert_about(lambda name: self.click("link", name))
        self.assert_store_is_whole()
        self.assertEqual(self.program.output(), "")

    def shows_text(self, expected):
        """Whether the item's picture holds the text, too; or one picture of each size does not."""
        item = self.item()
        if item is None:
            return False
        _, _, sizes = item
        if expected:
            return len(sizes) == 1 and sizes[0][0] > sizes[0][1]
        return len(sizes) > 1 and all(width == height for width, height in sizes)

    def check_label_follows(self):
        """The item tells of the thresholds while the thumbs are held."""
        def wait_until(is_so, what):
            def says():
                item = self.item()
                return item is not None and is_so(*item[:2])

            self.until(says, what)

        wait_until(lambda name, colour: (name, colour) == ("RAM", "red"), "memory is high")
        with self.dragged("Memory Usage", "high", 110):
            self.assert_threshold("Memory Usage", "high", 100)
            # All that could be worse is a processor that has no time left.
            wait_until(lambda name, colour: (name, colour) == ("RAM", "yellow") or
                       (name != "RAM" and colour == "red"), "memory is elevated")
        with self.dragged("Memory Usage", "normal", 110):
            self.assert_threshold("Memory Usage", "normal", 99)
            wait_until(lambda name, colour: name != "RAM" or colour == "green",
                       "memory is normal")

    def close_by_mouse(self):
        x, y, width, _ = self.look(lambda window: window.place())
        # The last one of the title bar's buttons.
        self.desktop.screen.click((x + width - 12, y - 12))
        self.wait_until_closed()

    def test_keyboard_alone_changes_everything(self):
        # Keys go by one percent: each thumb has a short way to its lower end.
        self.start_tour(numbers={
            key: least_of(card) + above for card, keys in THRESHOLDS.items()
            for (key, _), above in zip(keys, (5.0, 8.0))})
        press = self.keyboard.press
        self.go_to("radio button", "Icon Only", 3)
        press("space")
        self.assert_stored("menuBarDisplayMode", "iconOnly")
        self.go_to("radio button", "Advanced", 1)
        press("Return")
        self.assert_stored("menuBarDisplayMode", "advanced")
        self.go_to("check box", "Launch on login", 1)
        press("space")
        self.assert_starts_at_login()
        press("space")
        self.assert_does_not_start_at_login()
        self.assert_login_snaps_back(lambda: press("space"), lambda: self.go_to(*RECORDER, 1))
        self.check_recording_by_keyboard()
        self.keep_tree("General")
        press("Control_L", "Tab")
        self.go_to("page tab", "Customize", 0)
        self.go_to("check box", "Remind restart after a week", 2)
        press("space")
        self.assert_stored("remindRestartAfterWeek", 1)
        for card in THRESHOLDS:
            self.check_keys_of(card)
        self.keep_picture("settings_keyboard")
        self.keep_tree("Customize")
        self.keep_store("changed")
        press("Alt_L", "F4")
        self.wait_until_closed()
        # The panel's first button leads here.
        press("Super_L", "Shift_L", "k")
        self.assert_open(self.program)
        press("Tab")
        press("space")
        self.assert_closed(self.program)
        self.wait_for_window()
        self.assert_said(ACTIVE + "⇧⌘K")

        def choose_tab(tab):
            press("Control_L", "Tab")
            self.go_to("page tab", tab, 0)

        self.assert_shows_what_is_stored(choose_tab)
        # From the tabs backwards is from the page's end backwards.
        self.go_to("push button", "Reset to Defaults", 3 + 2 * len(THRESHOLDS))
        press("Return")
        self.assert_fresh_thresholds()
        choose_tab("About")
        self.go_to("link", "Learn More", 1)

        def follow(name):
            self.go_to("link", name, int(name != "Learn More"))
            press("Return" if name == "Learn More" else "space")

        self.assert_about(follow)
        self.assertEqual(self.program.output(), "")

    def go_to(self, role, name, steps):
        self.keyboard.press("Tab", times=steps)
        self.until(lambda: self.is_focused(role, name), f"the keyboard is at {name}")

    def check_recording_by_keyboard(self):
        """The keyboard is at the recorder, and stays there."""
        def record(*keys):
            self.go_to(*RECORDER, 0)
            self.keyboard.press("space")
            self.wait_until_recording()
            self.keyboard.press(*keys)

        record("j")
        self.assert_said(NO_COMMAND)
        self.hold_too_many()
        self.keyboard.press("Escape")
        self.assert_recorder_reads("⌘L")
        self.assert_said(ACTIVE + "⌘L")
        self.assert_toggles_panel("Super_L", "l")
        self.keyboard.take_from_all("j")
        record("Super_L", "j")
        self.assert_said(CONFLICT)
        self.assert_stored("shortcutKeyCode", 38)
        self.go_to("push button", "Clear", 1)
        self.keyboard.press("space")
        self.assert_stored("shortcutKeyCode", -1)
        self.assert_not_said(CONFLICT)
        record("Super_L", "Shift_L", "k")
        self.assert_said(ACTIVE + "⇧⌘K")
        self.assert_stored("shortcutModifiers", 0x120000)

    def check_keys_of(self, card):
        """All ways of both thumbs, the next ones in the order of the keyboard."""
        least = least_of(card)

        def move(thumb, key, times, value):
            self.keyboard.press(key, times=times)
            self.assert_threshold(card, thumb, value)

        self.go_to("slider", f"{card} normal threshold", 1)
        for key in ("Down", "Left", "Up"):
            self.keyboard.press(key)
        move("normal", "Left", 1, least + 3)
        move("normal", "Down", 10, least)
        move("normal", "Right", 12, least + 7)
        move("normal", "Left", 7, least)
        self.go_to("slider", f"{card} high threshold", 1)
        move("high", "Left", 12, least + 1)
        move("high", "Up", 100, 100)
        self.keyboard.press("Shift_L", "Tab")
        self.go_to("slider", f"{card} normal threshold", 0)
        move("normal", "Up", 100, 99)
        move("normal", "Down", 20, 79)
        self.go_to("slider", f"{card} high threshold", 1)
        move("high", "Down", 6, 94)

    def test_assistive_technology_alone_changes_everything(self):
        self.start_tour(numbers=HIGH_MEMORY)
        self.keep_tree("General")
        self.control("radio button", "Icon Only").do("Press")
        self.assert_stored("menuBarDisplayMode", "iconOnly")
        self.assert_state("radio button", "Icon Only", "checked")
        self.assert_state("radio button", "Advanced", "checked", False)
        self.toggle("Launch on login")
        self.assert_starts_at_login()
        self.toggle("Launch on login")
        self.assert_does_not_start_at_login()

        def change_the_mode():
            self.control("radio button", "Advanced").do("Press")
            self.assert_stored("menuBarDisplayMode", "advanced")

        self.assert_login_snaps_back(lambda: self.toggle("Launch on login"), change_the_mode)
        self.check_recording_by_assistive_technology()
        self.control("page tab", "Customize").do("Press")
        self.toggle("Remind restart after a week")
        self.assert_stored("remindRestartAfterWeek", 1)
        self.check_panel_follows()
        for card in THRESHOLDS:
            self.check_values_of(card)
        self.keep_tree("Customize")
        self.keep_store("changed")
        # Closing is the window manager's.
        self.keyboard.press("Alt_L", "F4")
        self.wait_until_closed()
        self.choose_settings(self.program)
        self.wait_for_window()
        self.assert_said(ACTIVE + "⌘K")
        self.assert_shows_what_is_stored(lambda tab: self.control("page tab", tab).do("Press"))
        self.control("push button", "Reset to Defaults").do("Press")
        self.assert_fresh_thresholds()
        self.control("page tab", "General").do("Press")
        self.control("push button", "Clear").do("Press")
        self.assert_stored("shortcutKeyCode", -1)
        self.assert_recorder_reads("Click to record")
        self.control("page tab", "About").do("Press")
        self.assert_about(lambda name: self.control("link", name).do("Press"))
        self.assertEqual(self.program.output(), "")

    def toggle(self, name):
        self.control("check box", name).do("Toggle")

    def check_recording_by_assistive_technology(self):
        """As far as it goes: only keys are recorded."""
        def record(*keys):
            self.control(*RECORDER).do("Press")
            self.wait_until_recording()
            self.keyboard.press(*keys)

        record("j")
        self.assert_said(NO_COMMAND)
        self.keyboard.press("Escape")
        self.assert_not_said(NO_COMMAND)
        self.assert_recorder_reads("⌘L")
        self.keyboard.take_from_all("j")
        record("Super_L", "j")
        self.assert_said(CONFLICT)
        self.assert_recorder_reads("⌘J")
        record("Super_L", "k")
        self.assert_said(ACTIVE + "⌘K")
        self.assert_not_said(CONFLICT)
        self.assert_recorder_reads("⌘K")
        self.assert_stored("shortcutKeyCode", 40)

    def check_panel_follows(self):
        """The open panel tells of the thresholds at once."""
        def assert_memory_is(level):
            def says():
                return self.look(lambda _: any(
                    re.fullmatch(f"Memory, .*, {level}", each.name)
                    for panel in [self.window("Tarnwick")] if panel
                    for each in panel.descendants()))

            self.until(says, f"the panel says that memory is {level}")

        self.keyboard.press("Super_L", "k")
        self.assert_open(self.program)
        assert_memory_is("high")
        self.control("slider", "Memory Usage high threshold").set_value(100)
        assert_memory_is("elevated")
        self.control("slider", "Memory Usage normal threshold").set_value(99)
        assert_memory_is("normal")
        self.keep_picture("settings_beside_panel")
        self.keyboard.press("Super_L", "k")
        self.assert_closed(self.program)

    def check_values_of(self, card):
        """Both thumbs over their whole range, by steps and by values."""
        least = least_of(card)
        normal, high = (self.control("slider", f"{card} {thumb} threshold")
                        for thumb in ("normal", "high"))
        self.assertEqual((normal.value()[0], normal.value()[2]), (least, 99))
        self.assertEqual((high.value()[0], high.value()[2]), (least + 1, 100))

        def do(thumb, slider, action, value):
            slider.do(action)
            self.assert_threshold(card, thumb, value)

        def set_to(thumb, slider, to, value):
            slider.set_value(to)
            self.assert_threshold(card, thumb, value)

        do("normal", normal, "Increase", 99)
        do("normal", normal, "Decrease", 98)
        do("high", high, "Decrease", 99)
        do("high", high, "Decrease", 99)
        do("high", high, "Increase", 100)
        do("high", high, "Increase", 100)
        set_to("normal", normal, 0, least)
        do("normal", normal, "Decrease", least)
        set_to("high", high, 0, least + 1)
        set_to("normal", normal, 200, least)
        set_to("high", high, 200, 100)
        set_to("high", high, 83.4, 83)
        set_to("normal", normal, 60.5, 61)


main()
