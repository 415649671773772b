# SPDX-License-Identifier: MIT
"""The written pages name files, keys and libraries that exist, and none that counts is left out."""

import json
import os
import pathlib
import re
import unittest

ROOT = pathlib.Path(os.environ["TARNWICK_SCRIPTS"]).parent
PAGES = [ROOT / name for name in (
    "ARCHITECTURE.md", "CHANGELOG.md", "CONTRIBUTING.md", "README.md", "SECURITY.md")]
PAGES += sorted((ROOT / "docs").glob("*.md")) + sorted((ROOT / "packaging").rglob("*.md"))
FOLDERS = ("app|benchmarks|cmake|core|docs|evaluation|fuzz|packaging|platform|script|services|settings|"
           "tests|tools|ui")


def text(path):
    return (ROOT / path).read_text()


def anchors(page):
    """The names by which links lead to the headings of a page."""
    return {re.sub(r"[^\w -]", "", heading.lower()).replace(" ", "-")
            for heading in re.findall(r"^#+ (.*)$", page, re.MULTILINE)}


def row(page, name):
    """The cells behind the first one of the row that `name` begins."""
    found = re.search(rf"^\| `{re.escape(name)}` \|(.*)\|$", page, re.MULTILINE)
    return found and [cell.strip() for cell in found.group(1).split("|")]


class Pages(unittest.TestCase):
    def test_links_lead_to_files_and_headings(self):
        for page in PAGES:
            for path, heading in re.findall(r"\]\(([^)#:]*)(?:#([^)]*))?\)", page.read_text()):
                with self.subTest(page=page.name, link=path, heading=heading):
                    target = page.parent / path if path else page
                    self.assertTrue(target.exists())
                    if heading:
                        self.assertIn(heading, anchors(target.read_text()))

    def test_pictures_are_there(self):
        pictures = re.findall(r'(?:src|srcset)="([^"]*)"', text("README.md"))
        self.assertEqual(len(pictures), 2)
        for path in pictures:
            self.assertEqual((ROOT / path).read_bytes()[1:4], b"PNG", path)

    def test_paths_are_there(self):
        for page in PAGES:
            paths = re.findall(rf"`((?:{FOLDERS})/[\w./*-]*)`", page.read_text())
            for path in paths:
                with self.subTest(page=page.name, path=path):
                    self.assertTrue(any(ROOT.glob(path.rstrip("/"))))
        self.assertGreater(len(re.findall(r"\.cpp`", text("ARCHITECTURE.md"))), 20)

    def test_rooms_are_those_of_the_tree(self):
        rooms = {f"{path.name}/" for path in (ROOT / "platform/linux").iterdir() if path.is_dir()}
        named = set(re.findall(r"^\| `(\w+/)` \|", text("ARCHITECTURE.md"), re.MULTILINE))
        self.assertEqual(named, rooms)


class Libraries(unittest.TestCase):
    # What stands in the table for what is linked.
    WORDS = {"Threads::Threads": "threads", "${CMAKE_DL_LIBS}": "dl", "-framework": "frameworks",
             "nlohmann_json::nlohmann_json": "nlohmann-json (headers)",
             "LayerShellQt::Interface": "LayerShellQt if it is there"}

    def words(self, linked):
        found = set()
        for each in re.findall(r"[^\s\"]+", linked):
            if each in self.WORDS:
                found.add(self.WORDS[each])
            elif each.startswith("Qt6::"):
                found.add(each.replace("Qt6::", "Qt "))
            elif each.startswith(("tarnwick_", "PkgConfig::")):
                found.add(re.sub("^(tarnwick_|PkgConfig::)", "", each))
        return found - {"warnings"}

    def test_link_what_the_table_says(self):
        page = text("ARCHITECTURE.md")
        files = [ROOT / "CMakeLists.txt"]
        for folder in ("app", "platform", "tools", "ui"):
            files += (ROOT / folder).rglob("CMakeLists.txt")
        found = 0
        for commands in (path.read_text() for path in files):
            for library in re.findall(r"add_library\((tarnwick_\w+) STATIC", commands):
                linked = " ".join(re.findall(
                    rf"target_link_libraries\({library}\s([^)]*)\)", commands))
                with self.subTest(library=library):
                    cells = row(page, library)
                    self.assertIsNotNone(cells)
                    self.assertEqual(set(cells[1].split(", ")), self.words(linked) or {"nothing"})
                    found += 1
        self.assertGreater(found, 10)


class Commands(unittest.TestCase):
    def test_the_program_knows_them(self):
        page = text("README.md")
        options = set(re.findall(r"tarnwick (--\w+)", page))
        self.assertEqual(options, {"--toggle", "--settings"})
        for option in options:
            self.assertIn(f'"{option}"', text("platform/linux/desktop/session/command_line.cpp"))
        for option in re.findall(r" -D(TARNWICK_\w+)=", page):
            self.assertIn(f"option({option} ", text("CMakeLists.txt"))
        identifier = re.search(r'kIdentifier = "(.*)"', text("platform/linux/identifier.h")).group(1)
        self.assertIn(f"`~/.config/autostart/{identifier}.desktop`", page)
        self.assertIn(f"busctl --user call {identifier} /{identifier.replace('.', '/')} ", page)
        actions = re.findall(rf"gapplication action {re.escape(identifier)} ([\w-]+)", page)
        self.assertTrue(actions)
        for action in {*actions, "open-panel", "toggle-panel", "settings"}:
            self.assertIn(f'"{action}"', text("platform/linux/desktop/session/single_instance.cpp"))


class Settings(unittest.TestCase):
    def test_every_key_is_in_the_table_with_its_default(self):
        table = text("docs/settings.md")
        keys = re.findall(r'\{"(settings\.\w+)",\s*("?[\w-]+"?)\}',
                          text("settings/user_settings.cpp"))
        self.assertGreater(len(keys), 10)
        for key, default in keys:
            with self.subTest(key=key):
                line = re.search(rf"^\| .*`{re.escape(key)}`.*\|$", table, re.MULTILINE)
                self.assertIsNotNone(line)
                cells = line.group(0).strip("|").split("|")
                names = re.findall(r"`([^`]+)`", cells[0])
                defaults = [word.strip("` ") for word in cells[-1].split(",")]
                self.assertEqual(defaults[names.index(key)].split(";")[0], default)

    def test_every_key_of_the_battery_is_in_the_table(self):
        keys = re.findall(r'"(battery\.\w+)"', text("services/battery_service.cpp"))
        self.assertEqual(len(keys), 5)
        for key in keys:
            self.assertIn(f"`{key}`", text("docs/settings.md"))

    def test_the_example_has_keys_and_values_that_count(self):
        page = text("docs/settings.md")
        example = json.loads(re.search(r"```\n(\{.*?\})\n```", page, re.DOTALL).group(1))
        self.assertEqual(len(example), 3)
        for key, value in example.items():
            with self.subTest(key=key):
                cells = re.search(rf"^\| .*`{re.escape(key)}`.*\|$", page, re.MULTILINE).group(0)
                self.assertTrue(isinstance(value, int) or f'`"{value}"`' in cells)


if __name__ == "__main__":
    unittest.main()
