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
    ("TopAppsSection", "processes"): "rows",
    ("TopAppsSection", "valueText"): "rows",
    ("TopAppsList", "processes"): "rows",
    ("TopAppsList", "valueText"): "rows",
}


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
    """Everything that a front consists of."""
    files = sorted(path for path in (ROOT / "ui" / front).iterdir()
                   if path.suffix in (".h", ".cpp", ".mm"))
    return "\n".join(path.read_text() for path in files)


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


if __name__ == "__main__":
    unittest.main()
