# SPDX-License-Identifier: MIT
"""What script/package makes of the tree and refuses, on a copy of the scripts with stand-ins for the
tools; and that what lies beside the tree for its packages fits the tree."""

import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).parent))
from bootstrap_test import SCRIPTS, Copy as CopyOfScripts, packages  # noqa: E402

ROOT = SCRIPTS.parent
PACKAGING = ROOT / "packaging"
DAY = "2031-04-05"
SECONDS = 1933113600
PROJECT = "project(tarnwick VERSION 7.8.9 LANGUAGES CXX)\n"
RELEASE = subprocess.run(
    ["bash", "-c", '. /etc/os-release; echo "${ID/#debian/deb}${VERSION_ID:-}"'],
    capture_output=True, text=True, check=True).stdout.strip()
NAMES = [f"{name}{symbols}_7.8.9~{RELEASE}_amd64.deb"
         for name in ("tarnwick", "tarnwick-probe") for symbols in ("", "-dbgsym")]
# With underscores for spaces.
HARDENING = ("Position_Independent_Executable", "Stack_protected", "Fortify_Source_functions",
             "Read-only_relocations", "Immediate_binding")
BUILD = ('cat debian/changelog >>"$LOG/changelog"; echo "$PWD $*" >>"$LOG/built"; '
         'find . | sort >"$LOG/tree"; [ ! -e "$LOG/broken" ] || { echo a misprint; exit 2; }; '
         f'for name in {" ".join(NAMES)}; do cat "$LOG/contents" >../"$name"; done; '
         'touch ../tarnwick_7.8.9_amd64.changes')


def lines(path):
    return path.read_text(encoding="utf-8").splitlines()


class Copy(CopyOfScripts):
    def setUp(self):
        super().setUp()
        (self.root / "CMakeLists.txt").write_text(PROJECT)
        self.write_changes(f"## 7.8.9 - {DAY}")
        shutil.copytree(PACKAGING / "debian", self.root / "packaging/debian")
        (self.log / "contents").write_text("packed\n")
        # The build has an environment of its own, which names no log.
        self.add_tool("dpkg-buildpackage", f"LOG={self.log}; {BUILD}")
        self.add_tool("lintian", 'echo "$*" >>"$LOG/lintian"; exit ${LINTIAN_STATUS:-0}')
        self.add_tool("dpkg", "echo amd64")
        self.add_tool("dpkg-deb", 'mkdir -p "$3/usr/bin"; touch "$3/usr/bin/tarnwick"')
        self.add_tool("hardening-check", 'for program; do for property in '
                      f'{" ".join(HARDENING)}; do [ "$property" = "${{LACKS_HARDENING:-}}" ] && '
                      'has=no || has=yes; echo " ${property//_/ }: $has"; done; '
                      'echo " Branch Protection: no, not found!"; done; exit 1')
        self.add_tool("objdump", 'yes "  0: endbr64" | head --lines=${PADS:-900}')
        # in_private has a path of its own.
        common = self.root / "script/lib/common.sh"
        common.write_text(common.read_text().replace('PATH="/usr/local/bin', f'PATH="{self.root}/bin:/usr/local/bin'))

    def write_changes(self, heading):
        (self.root / "CHANGELOG.md").write_text(
            f"# Changes\n\n## Unreleased\n\n{heading}\n\n## 7.8.8 - 2030-01-02\n")

    def package(self, *arguments, **variables):
        return self.run_script("package", *arguments, **variables)

    def made(self, folder="build/packages"):
        return sorted(path.name for path in (self.root / folder).glob("*"))

    def refuse(self, *arguments, **variables):
        ended = self.package(*arguments, **variables)
        self.assertEqual(ended.returncode, 1, ended.stdout)
        self.assertEqual(self.made(), [])
        return ended.stderr


class Packages(Copy):
    def test_are_those_of_the_version_and_the_release(self):
        ended = self.package()
        self.assertEqual(ended.returncode, 0, ended.stderr)
        self.assertEqual(self.made(), sorted(NAMES))
        for name in NAMES:
            self.assertIn(f"build/packages/{name} (1 KiB)", ended.stdout)

    def test_bear_the_version_of_the_tree_and_the_day_of_its_release(self):
        for heading in ("## 7.8.9 - {}", "## [7.8.9] – {}", "## 7.8.9 ({})"):
            self.write_changes(heading.format(DAY))
            self.assertEqual(self.package().returncode, 0, heading)
            changelog = (self.log / "changelog").read_text()
            self.assertTrue(changelog.startswith(f"tarnwick (7.8.9~{RELEASE}) unstable;"), changelog)
            self.assertTrue(changelog.endswith("Sat, 05 Apr 2031 00:00:00 +0000\n"), changelog)
            (self.log / "changelog").unlink()

    def test_a_given_moment_comes_before_the_list_of_changes(self):
        self.write_changes("")
        self.assertEqual(self.package(SOURCE_DATE_EPOCH=str(SECONDS + 61)).returncode, 0)
        self.assertIn("Sat, 05 Apr 2031 00:01:01", (self.log / "changelog").read_text())

    def test_of_an_earlier_version_do_not_stay(self):
        (self.root / "build/packages").mkdir(parents=True)
        (self.root / "build/packages/tarnwick_1_amd64.deb").touch()
        self.package()
        self.assertEqual(self.made(), sorted(NAMES))

    def test_go_to_another_folder_beside_what_is_there(self):
        (self.root / "other").mkdir()
        (self.root / "other/kept").touch()
        # It counts from where the script is called.
        self.package("../other", cwd=self.root / "script")
        self.assertEqual(self.made("other"), sorted([*NAMES, "kept"]))

    def test_are_built_in_a_copy_that_goes(self):
        (self.root / "build/leftover").mkdir(parents=True)
        (self.root / "some file").touch()
        self.package()
        self.assertEqual(self.made("build"), ["leftover", "packages"])
        place = pathlib.Path(self.lines("built")[0].split()[0])
        self.assertFalse(place.parents[1].exists())
        tree = lines(self.log / "tree")
        self.assertIn("./some file", tree)
        self.assertIn("./debian/control", tree)
        self.assertNotIn("./packaging/debian/control", tree)
        self.assertNotIn("./build", tree)

    def test_are_made_of_a_tree_with_a_space_in_its_path(self):
        tree = self.root / "my trees"
        tree.mkdir()
        for name in ("CMakeLists.txt", "CHANGELOG.md", "script", "packaging"):
            (self.root / name).rename(tree / name)
        self.root = tree
        (tree / "bin").symlink_to("../bin")
        ended = self.package()
        self.assertEqual(ended.returncode, 0, ended.stderr)
        self.assertEqual(self.made(), sorted(NAMES))
        self.assertNotIn("my trees", self.lines("built")[0])

    def test_need_what_builds_and_packs(self):
        self.package()
        self.assertEqual(set(self.lines("installed")), packages()["build"] | packages()["package"])


class Refusals(Copy):
    def test_unknown_arguments(self):
        for arguments in (["--sauce"], ["one", "two"], [""]):
            self.assertIn("usage:", self.refuse(*arguments), arguments)

    def test_a_version_without_a_day(self):
        for heading in ("", "## 7.8.9", "## 7.8.90 - 2031-04-05", "## 7x8.9 - 2031-04-05"):
            self.write_changes(heading)
            self.assertIn("no day for the release 7.8.9", self.refuse(), heading)

    def test_a_day_that_is_none(self):
        self.write_changes("## 7.8.9 - 2031-14-05")
        self.assertIn("no valid day", self.refuse())

    def test_a_tree_without_a_version(self):
        (self.root / "CMakeLists.txt").write_text("project(tarnwick)\n")
        self.assertIn("version", self.refuse())

    def test_a_moment_that_is_none(self):
        self.assertIn("SOURCE_DATE_EPOCH", self.refuse(SOURCE_DATE_EPOCH="today"))

    def test_a_build_that_fails_tells_why(self):
        (self.log / "broken").touch()
        told = self.refuse()
        self.assertIn("a misprint", told)
        self.assertIn("could not be built", told)


class Checks(Copy):
    def test_pass_where_all_is_well(self):
        ended = self.package("--check")
        self.assertEqual(ended.returncode, 0, ended.stderr)
        self.assertIn("byte for byte", ended.stdout)
        self.assertEqual(self.made(), sorted(NAMES))
        first, second = (line.split()[0] for line in self.lines("built"))
        self.assertNotEqual(first, second)

    def test_are_made_on_demand_only(self):
        self.package(LINTIAN_STATUS="2", LACKS_HARDENING="Stack_protected")
        self.assertEqual(self.made(), sorted(NAMES))
        self.assertEqual(self.lines("lintian"), [])

    def test_stop_at_what_lintian_finds(self):
        self.assertIn("lintian", self.refuse("--check", LINTIAN_STATUS="2"))
        self.assertIn("--fail-on error,warning", self.lines("lintian")[0])

    def test_stop_at_a_program_without_hardening(self):
        for property in HARDENING:
            self.assertIn("lacks hardening: " + property.replace("_", " "),
                          self.refuse("--check", LACKS_HARDENING=property))

    def test_stop_at_a_program_without_landing_pads(self):
        for pads in ("0", "2"):
            self.assertIn("control-flow", self.refuse("--check", PADS=pads))

    def test_stop_where_a_second_build_differs(self):
        self.add_tool("dpkg-buildpackage", f'LOG={self.log}; echo "$PWD" >"$LOG/contents"; {BUILD}')
        self.assertIn("two different packages", self.refuse("--check"))


class Proof(unittest.TestCase):
    def test_is_of_one_release(self):
        for arguments in ([], ["trixie", "bookworm"], ["../trixie"], ["--help"]):
            ended = subprocess.run([PACKAGING / "proof/installation", *arguments],
                                   capture_output=True, text=True, timeout=60)
            self.assertEqual((ended.returncode, ended.stdout), (1, ""), arguments)
            self.assertIn("usage:", ended.stderr)


def without_comments(text):
    return "\n".join(line for line in text.splitlines() if not line.lstrip().startswith("#"))


class Fits(unittest.TestCase):
    """What the packages name is in the tree."""

    def test_what_debian_needs_to_build_is_what_bootstrap_installs(self):
        control = re.sub(r"^#.*\n", "", (PACKAGING / "debian/control").read_text(), flags=re.M)
        field = re.search(r"^Build-Depends:(.*(?:\n .*)*)", control, re.M).group(1)
        # What has an alternative is not in every release.
        needed = {entry.split()[0] for entry in field.split(",") if "|" not in entry}
        needed -= {"debhelper-compat"}
        self.assertGreater(len(needed), 10)
        self.assertLessEqual(needed, packages()["build"])
        # The rest of bootstrap's comes with them, or is no matter of building.
        self.assertEqual(packages()["build"] - needed - {"liblayershellqtinterface-dev"},
                         {"g++", "qt6-base-dev-tools", "qt6-wayland"})

    def test_the_test_of_the_item_has_a_desktop(self):
        field = (PACKAGING / "debian/tests/control").read_text().split("Tests: item\n")[1]
        named = set(re.findall(r"[a-z0-9][a-z0-9.+-]+", field.removeprefix("Depends:")))
        self.assertLessEqual(named - {"tarnwick"}, packages()["desktop"])

    def test_every_test_of_the_packages_is_there(self):
        control = (PACKAGING / "debian/tests/control").read_text()
        names = re.findall(r"^Tests: (\S+)$", control, re.M)
        self.assertEqual(names, ["probe", "item"])
        for name in names:
            self.assertTrue(os.access(PACKAGING / "debian/tests" / name, os.X_OK), name)

    def test_optimisation_is_that_of_the_release_preset(self):
        presets = (ROOT / "CMakePresets.json").read_text()
        flags = re.search(r'"CMAKE_CXX_FLAGS_RELWITHDEBINFO": "(.*)"', presets).group(1).split()
        rules = (PACKAGING / "debian/rules").read_text()
        appended = re.search(r"^export DEB_CXXFLAGS_MAINT_APPEND = (.*)", rules, re.M).group(1)
        self.assertEqual(set(appended.split()), set(flags))

    def test_no_other_file_has_the_version(self):
        for name in ("rpm/tarnwick.spec", "arch/PKGBUILD"):
            text = without_comments((PACKAGING / name).read_text())
            self.assertRegex(text, r"(?i)(Version: +%|pkgver=\$)\(sed .*project.tarnwick VERSION", name)
        version = re.search(r"VERSION ([0-9.]+) ", (ROOT / "CMakeLists.txt").read_text()).group(1)
        found = subprocess.run(
            ["bash", "-c", '. "$0" && echo "$pkgver ${pkgname[*]}"', PACKAGING / "arch/PKGBUILD"],
            capture_output=True, text=True, check=True).stdout
        self.assertEqual(found, f"{version} tarnwick tarnwick-probe\n")

    def test_the_workflow_calls_scripts_that_exist(self):
        workflow = without_comments((ROOT / ".github/workflows/ci.yml").read_text())
        called = set(re.findall(r"(?:run|check): ((?:script/|\.ci/)\S+)", workflow))
        self.assertEqual(called, {".ci/run", "script/test", "script/package"})
        for name in called:
            self.assertTrue(os.access(ROOT / name, os.X_OK), name)
        presets = (ROOT / "CMakePresets.json").read_text()
        for preset in re.findall(r"--preset (\S+)", workflow):
            self.assertIn(f'"name": "{preset}"', presets)
        for release in ("debian:12", "debian:13", "ubuntu:24.04"):
            self.assertIn(f'"{release}"', workflow)


if __name__ == "__main__":
    unittest.main()
