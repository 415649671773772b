# SPDX-License-Identifier: MIT
"""What desktops, shells and package managers read of the program is well formed and agrees."""

import configparser
import os
import pathlib
import re
import shutil
import subprocess
import unittest
import xml.etree.ElementTree

ROOT = pathlib.Path(os.environ["TARNWICK_SCRIPTS"]).parent
FOLDER = ROOT / "packaging/linux"
IDENTIFIER = "org.tarnwick.Tarnwick"
METAINFO = FOLDER / f"{IDENTIFIER}.metainfo.xml"
COMPLETIONS = FOLDER / "completions"


def run(*command, **options):
    return subprocess.run(command, capture_output=True, text=True, check=False, **options)


def project_version():
    return re.search(r"project\(tarnwick VERSION ([\d.]+)",
                     (ROOT / "CMakeLists.txt").read_text()).group(1)


def probe_options():
    page = (ROOT / "tools/tarnwick-probe.1").read_text().replace("\\", "")
    return set(re.findall(r"^\.BI? (--[a-z-]+)", page, re.MULTILINE))


class LinuxIdentity(unittest.TestCase):
    def entry(self):
        parser = configparser.RawConfigParser()
        parser.optionxform = str
        parser.read(FOLDER / f"{IDENTIFIER}.desktop")
        return parser

    def test_desktop_entry_is_valid(self):
        result = run("desktop-file-validate", FOLDER / f"{IDENTIFIER}.desktop")
        # Older validators do not know this key.
        complaints = [line for line in result.stdout.splitlines() if "SingleMainWindow" not in line]
        self.assertEqual(complaints, [])

    def test_desktop_entry_goes_by_the_identifier(self):
        entry = self.entry()["Desktop Entry"]
        self.assertEqual(entry["Icon"], IDENTIFIER)
        self.assertEqual(entry["StartupWMClass"], IDENTIFIER)
        self.assertEqual(entry["DBusActivatable"], "true")

    def test_its_actions_are_those_of_the_program(self):
        entry = self.entry()
        actions = entry["Desktop Entry"]["Actions"].rstrip(";").split(";")
        self.assertEqual([entry[f"Desktop Action {each}"]["Name"] for each in actions],
                         ["Open Panel", "Settings"])
        # Desktops that do not ask over the bus start these, also where none runs yet.
        self.assertEqual([entry[f"Desktop Action {each}"]["Exec"] for each in actions],
                         ["tarnwick --toggle", "tarnwick --settings"])
        known = (ROOT / "platform/linux/desktop/session/single_instance.cpp").read_text()
        for action in actions:
            self.assertIn(f'QLatin1String("{action}")', known)

    def test_metainfo_is_valid(self):
        result = run("appstreamcli", "validate", "--pedantic", "--no-net", METAINFO)
        self.assertEqual(result.returncode, 0, result.stdout)
        # The identifier is that of the bus. Older validators do not know the developer.
        complaints = [line for line in re.findall(r"^[EWIP]: .*$", result.stdout, re.MULTILINE)
                      if "cid-contains-uppercase-letter" not in line
                      and "unknown-tag developer" not in line]
        self.assertEqual(complaints, [])

    def test_the_newest_release_is_this_version(self):
        release = xml.etree.ElementTree.parse(METAINFO).find("releases/release")
        self.assertEqual(release.get("version"), project_version())
        heading = re.search(r"^## \[?(\d[\d.]*)\]? - ([\d-]+)$",
                            (ROOT / "CHANGELOG.md").read_text(), re.MULTILINE)
        self.assertEqual(heading.groups(), (release.get("version"), release.get("date")))

    def test_icons_are_drawings(self):
        for name in (f"{IDENTIFIER}.svg", f"{IDENTIFIER}-symbolic.svg"):
            root = xml.etree.ElementTree.parse(FOLDER / name).getroot()
            self.assertEqual(root.tag, "{http://www.w3.org/2000/svg}svg")
            self.assertEqual(root.get("width"), root.get("height"))

    def test_bash_completes_options_and_folders(self):
        def offered(*words):
            quoted = " ".join(f"'{word}'" for word in words)
            result = run("bash", "-c", f"""
                source '{COMPLETIONS}/tarnwick-probe.bash'
                compopt() {{ :; }}
                COMP_WORDS=({quoted}) COMP_CWORD={len(words) - 1}
                _tarnwick_probe
                printf '%s\\n' "${{COMPREPLY[@]}}" """, cwd=ROOT)
            self.assertEqual(result.stderr, "")
            return set(result.stdout.split())

        self.assertEqual(offered("tarnwick-probe", "--"), probe_options())
        self.assertEqual(offered("tarnwick-probe", "--sa"), {"--samples"})
        self.assertIn("packaging", offered("tarnwick-probe", "--root", "pack"))
        self.assertEqual(offered("tarnwick-probe", "--samples", ""), set())

    def test_the_other_shells_know_every_option(self):
        for shell, pattern in (("zsh", r"(--[a-z-]+)\["), ("fish", r"-l ([a-z-]+)")):
            found = set(re.findall(pattern, (COMPLETIONS / f"tarnwick-probe.{shell}").read_text()))
            self.assertEqual({option if option.startswith("--") else "--" + option
                              for option in found}, probe_options())
            if shutil.which(shell):
                self.assertEqual(
                    run(shell, "-n", COMPLETIONS / f"tarnwick-probe.{shell}").returncode, 0)

    def test_manual_pages_have_no_warning(self):
        for page in (FOLDER / "tarnwick.1", ROOT / "tools/tarnwick-probe.1"):
            result = run("man", "--warnings", "--local-file", "--encoding=UTF-8", page,
                         env={**os.environ, "MANWIDTH": "80", "LC_ALL": "C.UTF-8"})
            self.assertEqual((result.returncode, result.stderr), (0, ""))
            self.assertIn("SYNOPSIS", result.stdout)


if __name__ == "__main__":
    unittest.main()
