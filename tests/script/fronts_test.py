# SPDX-License-Identifier: MIT
"""Both fronts draw every building block and every value of it."""

import os
import pathlib
import re
import unittest

ROOT = pathlib.Path(os.environ["TARNWICK_SCRIPTS"]).parent

# Functions that give a value in the form to be drawn, for fronts that do not take it as it is.
GIVEN_BY = {
    ("UsageBar", "value"): "fraction",
    ("TrendRow", "values"): "sparkline",
    ("TrendRow", "color"): "sparkline",
    ("TrendRow", "times"): "toolTip",
    ("TopAppsSection", "processes"): "rows",
    ("TopAppsSection", "valueText"): "rows",
    ("TopAppsList", "processes"): "rows",
    ("TopAppsList", "valueText"): "rows",
    ("ThresholdEditorCard", "normal"): "pills",
    ("ThresholdEditorCard", "high"): "pills",
}

PROGRAMS = {"qt": "app/main_linux.cpp", "appkit": "app/main_macos.mm"}

# What the portable code decides and every front has to ask for, besides the values.
DECISIONS = [
    # Marks beside the colours, and what a screen reader says.
    "levelMark", "spokenText", "toolTip", "kPanelMenu", "copyText", "accessibilityLabel", "accessibilityValue", "kAccessibilityLabel",
    "kAccessibilityHelp",
    # Rows that keep their places under the pointer.
    "heldOrder",
    # Bars that move, unless less motion is wanted.
    "MovingValue", "moveTo", "jumpTo", "setReduced", "kTurn",
    # The panel's comings and goings, Escape, and where the keyboard goes on.
    "appear", "disappear", "setPageObserver", "cancel", "entryAction", "spaceAbove",
    # The slider's thumbs.
    "beginDrag", "continueDrag", "endDrag", "isDraggingNormal", "isDraggingHigh",
    "keyboardNavigationEnabled", "thumbCenter", "segments",
    # The recorder.
    "makeFirstResponder", "onRefresh", "resignFirstResponder", "flagsChanged", "isPlaceholder",
    # The settings.
    "selectTab", "selectDisplayMode", "toggleSwitch", "clearShortcut", "resetThresholds",
    "openMakerSite", "sectionSpacing",
]


def blocks_of_the_panel():
    page = (ROOT / "ui/panel/page.h").read_text()
    listed = re.search(r"using PanelBlock =\s*std::variant<([^>]*)>", page).group(1)
    return [name.strip() for name in listed.split(",")]


def items_of_the_settings():
    page = (ROOT / "ui/settings/settings_page.h").read_text()
    names = []
    for listed in re.findall(r"std::variant<([^>]*)>", page):
        names += [name.strip() for name in listed.split(",")]
    return [name for name in names if name != "SettingsCard"]


def parts_of_the_settings():
    return items_of_the_settings() + ["DisplayModePreview", "FeatureRow", "SettingsSection",
                                      "StatusLine", "TabItem", "ThresholdValuePill"]


def measures(folder):
    """The names of all constants that a folder's headers declare."""
    return {name for header in (ROOT / folder).glob("*.h")
            for name in re.findall(r"(?:static|inline) constexpr [^;={(]*?\b(k[A-Z]\w*)\b",
                                   header.read_text())}


def fields(name, folder):
    """The values of a struct, wherever in the folder it is declared."""
    for header in sorted((ROOT / folder).glob("*.h")):
        body = re.search(rf"^struct {name} {{\n(.*?)^}};", header.read_text(), re.DOTALL | re.M)
        if body:
            return re.findall(
                r"^    (?! |static|using|return)[\w:<>, ]+ (\w+)(?: = [^;()]*|{})?;$",
                body.group(1), re.M)
    raise AssertionError(f"{name} is declared nowhere in {folder}")


def source(front):
    """Everything that a front consists of, without comments."""
    files = sorted(path for path in (ROOT / "ui" / front).iterdir()
                   if path.suffix in (".h", ".cpp", ".mm"))
    return re.sub("//.*", "", "\n".join(path.read_text() for path in files))


class Fronts(unittest.TestCase):
    def check_drawn(self, names, folder, front):
        text = source(front)
        for name in names:
            with self.subTest(block=name, front=front):
                self.assertTrue(re.search(rf"operator\(\)\(const {name}&", text), "is not drawn")
                for field in fields(name, folder):
                    used = "|".join({field, GIVEN_BY.get((name, field), field)})
                    self.assertTrue(re.search(rf"(\.|->)({used})\b", text),
                                    f"{field} is not used")

    def test_the_panel_has_blocks_with_values(self):
        self.assertIn("UsageBar", blocks_of_the_panel())
        self.assertEqual(fields("UsageBar", "ui/panel"),
                         ["title", "icon", "value", "detail", "tint"])
        self.assertIn("SwitchRow", items_of_the_settings())
        self.assertEqual(fields("SwitchRow", "ui/settings"),
                         ["setting", "title", "caption", "isOn"])

    def test_both_draw_every_block_of_the_panel(self):
        for front in ("qt", "appkit"):
            self.check_drawn(blocks_of_the_panel(), "ui/panel", front)

    def test_every_front_with_settings_draws_every_item_of_them(self):
        fronts = [front for front in ("qt", "appkit") if "ThresholdEditorCard" in source(front)]
        self.assertIn("appkit", fronts)
        for front in fronts:
            text = source(front)
            for name in items_of_the_settings():
                with self.subTest(item=name, front=front):
                    self.assertTrue(re.search(rf"\b{name}\b", text), "is not drawn")

    def test_no_front_leaves_out_a_value_of_the_settings_that_the_other_uses(self):
        sources = [source(front) for front in ("qt", "appkit")]
        for name in parts_of_the_settings():
            for field in fields(name, "ui/settings"):
                used = "|".join({field, GIVEN_BY.get((name, field), field)})
                with self.subTest(item=name, value=field):
                    self.assertEqual(*(bool(re.search(rf"(\.|->)({used})\b", text))
                                       for text in sources))

    def test_no_front_has_a_measure_of_its_own_for_one_that_the_other_takes(self):
        self.assertIn("kSparklineWidth", measures("ui/panel"))
        self.assertIn("kThumbSize", measures("ui/settings"))
        sources = [source(front) for front in ("qt", "appkit")]
        for name in sorted(measures("ui/panel") | measures("ui/settings")):
            with self.subTest(measure=name):
                self.assertEqual(*(bool(re.search(rf"\b{name}\b", text)) for text in sources))

    def test_both_ask_for_what_is_decided_elsewhere(self):
        for front in ("qt", "appkit"):
            # A program tells its front what the desktop wants.
            text = source(front) + (ROOT / PROGRAMS[front]).read_text()
            for name in DECISIONS:
                with self.subTest(front=front, decision=name):
                    self.assertTrue(re.search(rf"\b{name}\b", text), "is not asked for")

    def test_appkit_has_every_mark_of_a_level_before_its_figure(self):
        marks = re.findall(r"@\[ _mark, (\w+) \]|@\[ \w+, (_mark) \]", source("appkit"))
        self.assertEqual(sorted(marks), [("_trailing", ""), ("_value", "")])

    def test_appkit_lets_a_held_list_go_without_waiting_for_new_figures(self):
        rows = (ROOT / "ui/appkit/process_list_view.mm").read_text()
        self.assertRegex(rows, r"@selector\(letGo\) withObject:nil afterDelay:tarnwick::kLongestHold")

    def test_appkit_takes_a_press_anywhere_on_the_card_of_a_switch(self):
        card = (ROOT / "ui/appkit/switch_card.mm").read_text()
        for needed in ("hitTest:", "mouseUp:", "performClick:"):
            self.assertIn(needed, card)

    def test_appkit_lets_nothing_be_selected_but_the_version(self):
        lines = source("appkit").splitlines()
        places = [number for number, line in enumerate(lines) if "selectable = YES" in line]
        self.assertEqual(len(places), 1)
        self.assertIn("program.version", lines[places[0] - 2])

    def test_appkit_makes_no_translucent_colour_stronger(self):
        # The system's colours of labels are translucent; this sets their alpha, where it is meant
        # to weaken them.
        self.assertIn("secondaryLabelColor", source("appkit"))
        self.assertNotIn("colorWithAlphaComponent", source("appkit"))

    def test_appkit_takes_its_measures_from_its_grid(self):
        for path in sorted((ROOT / "ui/appkit").glob("*.mm")):
            text = re.sub("//.*", "", path.read_text())
            for pattern in (r"constexpr CGFloat \w+ = [\d.]+;", r"[cC]onstant:-?[1-9]\d*[\];]",
                            r"\], [1-9]\d*\)", r"(?:spacing|[rR]adius)(?: =|:) ?[1-9]"):
                with self.subTest(file=path.name):
                    self.assertEqual(re.findall(pattern, text), [])

    def test_appkit_asks_only_what_the_compiler_can_check(self):
        # The compiler lets calls that the oldest system lacks pass to a type that may be a subclass.
        text = source("appkit") + (ROOT / PROGRAMS["appkit"]).read_text()
        self.assertEqual(re.findall(r".*\bsharedApplication\b.*", text),
                         ["    return NSApplication.sharedApplication;"])
        self.assertEqual(
            re.findall(r"\.(?:cell|documentView)\.\w+|viewWithTag:[^;]*\]\.\w+", text), [])

    def test_appkit_closes_the_panel_on_command_w(self):
        panel = re.search(r"@implementation TNWPanel\b.*?@end", source("appkit"), re.DOTALL).group()
        self.assertIn("- (void)performClose:", panel)
        # Otherwise the menu refuses the key for a window without a close button.
        self.assertRegex(panel, r"validateMenuItem:[^}]*@selector\(performClose:\)")

    def test_appkit_closes_the_panel_when_nobody_can_see_it(self):
        for notice in ("DidActivateApplication", "ScreensDidSleep", "SessionDidResignActive"):
            self.assertIn(f"NSWorkspace{notice}Notification", source("appkit"))

    def test_appkit_says_no_title_of_a_group_twice_and_no_symbol(self):
        hidden = re.findall(r"hideFromScreenReaders\((\w+)\)", source("appkit"))
        # Header and its summary, list of processes; header of a detail page; card of a switch;
        # every symbol.
        for name, times in (("_title", 2), ("_summary", 1), ("title", 2), ("caption", 1),
                            ("view", 1)):
            self.assertEqual(hidden.count(name), times, name)

    def test_appkit_takes_every_command_on_a_thumb(self):
        thumb = re.search(r"@implementation TNWThumbView.*?@end", source("appkit"), re.DOTALL)
        for method in ("doCommandBySelector:", "insertText:"):
            self.assertIn(f"- (void){method}", thumb.group())

    def test_both_draw_a_ground_under_the_preview(self):
        self.assertRegex(source("appkit"), r"groundUnder\(strip\)")
        self.assertIn("fillColor", source("appkit"))
        preview = re.search(r"void DisplayModePreviewWidget::paintEvent.*?^}", source("qt"),
                            re.DOTALL | re.M)
        self.assertIn("drawRoundedRect", preview.group())


if __name__ == "__main__":
    unittest.main()
