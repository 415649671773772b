# SPDX-License-Identifier: MIT
"""Which packages the scripts install, what they build, and with which formatter: on a copy of them,
with stand-ins for the tools."""

import os
import pathlib
import platform
import shutil
import subprocess
import tempfile
import unittest

SCRIPTS = pathlib.Path(os.environ["TARNWICK_SCRIPTS"])
# Nothing is installed but what apt-get was asked for before.
TOOLS = {
    "dpkg-query": 'for name; do case $name in -*) ;; *) '
                  'grep -qsx "$name" "$LOG/installed" && echo "installed $name" ;; esac; done; true',
    # The release has every package but $LACKS; then it installs none of those that it is asked for.
    "apt-get": 'on=; for word; do case $word in install) on=yes ;; -* | Dpkg::*) ;; '
               '*) [ -z "$on" ] || asked+=("$word") ;; esac; done; '
               'for word in "${asked[@]}"; do [ "$word" != "$LACKS" ] || exit 100; done; '
               '[ -z "$on" ] || printf "%s\\n" "${asked[@]}" >>"$LOG/installed"',
    "id": "echo 0",
    "systemctl": 'echo "$*" >>"$LOG/services"',
    "cmake": 'echo "$*" >>"$LOG/cmake"; case $1 in --preset) mkdir -p "build/$2/app"; '
             'touch "build/$2/CMakeCache.txt"; printf "#!/bin/sh\\necho started\\n" '
             '>"build/$2/app/tarnwick"; chmod +x "build/$2/app/tarnwick" ;; esac',
}


def packages():
    """The packages of each purpose that this release has."""
    release = platform.freedesktop_os_release()
    version = float(release.get("VERSION_ID", "inf"))
    found, purpose = {}, None
    for line in (SCRIPTS / "packages.txt").read_text().splitlines():
        if line.startswith("["):
            name, *oldest = line.strip("[]").split()
            is_here = not oldest or version >= float(oldest[2 if release["ID"] == "ubuntu" else 1])
            purpose = found.setdefault(name, set()) if is_here else set()
        elif line and not line.startswith("#"):
            purpose.add(line)
    return found


class Copy(unittest.TestCase):
    """A tree with the scripts in it and nothing else."""

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.root = pathlib.Path(folder.name)
        self.log = self.root / "log"
        self.log.mkdir()
        shutil.copytree(SCRIPTS, self.root / "script",
                        ignore=shutil.ignore_patterns("__pycache__", "private_desktop"))
        (self.root / "script/lib/show_private.py").write_text("print('shown privately')\n")
        for name, body in TOOLS.items():
            self.add_tool(name, body)

    def add_tool(self, name, body):
        tool = self.root / "bin" / name
        tool.parent.mkdir(exist_ok=True)
        tool.write_text(f"#!/bin/bash\n{body}\n")
        tool.chmod(0o755)

    def run_script(self, *command, cwd=None, **variables):
        environment = {"PATH": f"{self.root}/bin:/usr/bin:/bin", "LOG": str(self.log),
                       "HOME": str(self.root), "TMPDIR": str(self.root)}
        return subprocess.run([self.root / "script" / command[0], *command[1:]], text=True,
                              capture_output=True, env=environment | variables,
                              cwd=cwd or self.root)

    def lines(self, name):
        file = self.log / name
        return file.read_text().splitlines() if file.exists() else []


class Packages(Copy):
    def expect_installed(self, *purposes):
        self.assertEqual(set(self.lines("installed")),
                         set().union(*(packages()[purpose] for purpose in purposes)))

    def test_each_purpose_has_some_and_none_is_named_twice(self):
        named = packages()
        self.assertEqual(set(named), {"build", "test", "desktop", "monitoring", "fuzz", "style",
                                      "package", "macos"})
        self.assertTrue(all(named.values()))
        self.assertEqual(sum(map(len, named.values())), len(set().union(*named.values())))

    def test_a_run_on_a_display_installs_what_building_needs(self):
        for name in ("DISPLAY", "WAYLAND_DISPLAY"):
            ended = self.run_script("run", **{name: "some"})
            self.assertEqual(ended.returncode, 0, ended.stderr)
            self.assertTrue(ended.stdout.endswith("started\n"), ended.stdout)
            self.expect_installed("build")

    def test_a_run_without_a_display_installs_a_private_desktop(self):
        ended = self.run_script("run")
        self.assertEqual(ended.returncode, 0, ended.stderr)
        self.assertTrue(ended.stdout.endswith("shown privately\n"), ended.stdout)
        self.expect_installed("build", "desktop")

    def test_so_does_one_that_is_told_to_be_private(self):
        for option in ("--private", "--once"):
            ended = self.run_script("run", option, DISPLAY=":1")
            self.assertTrue(ended.stdout.endswith("shown privately\n"), ended.stdout)
            self.expect_installed("build", "desktop")

    def test_the_tests_need_no_style(self):
        # There is nothing to test in the copy, but by then everything is installed and built.
        self.run_script("test")
        self.assertEqual(len(self.lines("cmake")), 2)
        self.expect_installed("build", "test", "desktop", "monitoring")

    def test_without_a_purpose_all_are_installed(self):
        self.assertEqual(self.run_script("bootstrap").returncode, 0)
        self.expect_installed("build", "test", "desktop", "monitoring", "fuzz", "style",
                              "package", "macos")

    def test_help_installs_and_builds_nothing(self):
        for script in ("bootstrap", "compare-cost", "fuzz", "package", "run"):
            ended = self.run_script(script, "--help")
            self.assertEqual((ended.returncode, ended.stderr), (0, ""))
            self.assertIn("script/" + script, ended.stdout)
            self.assertEqual(self.lines("installed") + self.lines("cmake"), [])

    def test_what_is_installed_is_left_alone(self):
        self.run_script("bootstrap")
        before = self.lines("installed")
        ended = self.run_script("bootstrap")
        self.assertEqual((ended.returncode, ended.stdout), (0, ""))
        self.assertEqual(self.lines("installed"), before)

    def test_a_release_without_the_formatter_stops_nobody(self):
        ended = self.run_script("bootstrap", LACKS="clang-format")
        self.assertEqual(ended.returncode, 0, ended.stderr)
        self.assertIn("goes on without clang-format", ended.stdout)
        self.expect_installed("build", "test", "desktop", "monitoring", "fuzz", "package", "macos")

    def test_a_release_without_a_server_stops_nobody(self):
        ended = self.run_script("bootstrap", LACKS="prometheus")
        self.assertEqual(ended.returncode, 0, ended.stderr)
        self.assertIn("goes on without prometheus, ", ended.stdout)
        self.assertIn("prometheus-node-exporter", self.lines("installed"))

    def test_services_stay_off(self):
        self.run_script("bootstrap", "test", "monitoring")
        for name in packages()["monitoring"]:
            with self.subTest(package=name):
                self.assertEqual(
                    [line for line in self.lines("services") if line.endswith(f" {name}.service")],
                    [f"--quiet --runtime mask {name}.service",
                     f"--quiet --runtime unmask {name}.service",
                     f"--quiet disable {name}.service"])
        # Of packages that were there already nothing is changed.
        before = self.lines("services")
        self.run_script("bootstrap")
        self.assertFalse([line for line in self.lines("services")[len(before):]
                          if "prometheus" in line])

    def test_a_release_without_anything_else_is_refused(self):
        ended = self.run_script("bootstrap", LACKS="cmake")
        self.assertEqual(ended.returncode, 1)
        self.assertIn("could not install", ended.stderr)

    def test_a_user_who_may_install_nothing_needs_no_formatter(self):
        self.run_script("bootstrap", "build", "test", "desktop", "monitoring", "fuzz", "package", "macos")
        # Nothing but what is asked for before sudo is.
        for name in ("bash", "env", "dirname", "basename", "grep", "awk", "sort", "comm"):
            (self.root / "bin" / name).symlink_to(shutil.which(name, path="/usr/bin:/bin"))
        self.add_tool("id", "echo 1000")
        alone = {"PATH": f"{self.root}/bin"}
        ended = self.run_script("bootstrap", **alone)
        self.assertEqual(ended.returncode, 0, ended.stderr)
        self.assertIn("goes on without clang-format", ended.stdout)
        (self.log / "installed").unlink()
        ended = self.run_script("bootstrap", **alone)
        self.assertEqual(ended.returncode, 1)
        self.assertIn("neither root nor sudo", ended.stderr)

    def test_an_unknown_purpose_is_refused(self):
        for purposes in (["everything"], ["build", "tset"]):
            ended = self.run_script("bootstrap", *purposes)
            self.assertEqual(ended.returncode, 1)
            self.assertIn("usage:", ended.stderr)
            self.assertEqual(self.lines("installed"), [])


class Extent(Copy):
    WITHOUT = "-DTARNWICK_TESTS=OFF -DTARNWICK_BENCHMARKS=OFF"
    WITH = "-DTARNWICK_TESTS=ON -DTARNWICK_BENCHMARKS=OFF"

    def test_a_first_run_builds_the_program_alone(self):
        self.run_script("run", DISPLAY=":1")
        configure, build = self.lines("cmake")
        self.assertIn(self.WITHOUT, configure)
        self.assertTrue(build.endswith("--target tarnwick"), build)

    def test_the_tests_are_built_after_a_run(self):
        self.run_script("run", DISPLAY=":1")
        self.run_script("test")
        self.assertIn(self.WITH, self.lines("cmake")[2])

    def test_a_run_leaves_a_tree_with_tests_as_it_is(self):
        self.run_script("test")
        self.run_script("run", DISPLAY=":1")
        self.assertNotIn("-DTARNWICK", self.lines("cmake")[2])


class Tests(Copy):
    WARNINGS = "-DTARNWICK_WARNINGS_AS_ERRORS=ON"

    def test_warnings_are_errors_where_changes_are_checked(self):
        self.run_script("test", CI="true")
        self.assertIn(self.WARNINGS, self.lines("cmake")[0])

    def test_warnings_are_no_errors_for_a_user(self):
        self.run_script("test")
        self.run_script("run", DISPLAY=":1", CI="true")
        self.assertNotIn("WARNINGS", " ".join(self.lines("cmake")))

    def test_a_run_without_any_test_fails_and_says_so(self):
        ended = self.run_script("test")
        self.assertNotEqual(ended.returncode, 0)
        self.assertEqual(ended.stdout.splitlines()[-1], "0 passed, 0 failed, 0 skipped")


class Format(Copy):
    def setUp(self):
        super().setUp()
        self.add_tool("git", "echo one.cpp")

    def add_formatter(self, name, version):
        self.add_tool(name, f'[ "$1" != --version ] || exec echo "Some clang-format version {version}.0.6"\n'
                            f'echo "{version} $*" >>"$LOG/format"; exit ${{FORMAT_STATUS:-0}}')

    def test_the_projects_version_comes_first(self):
        self.add_formatter("clang-format", 19)
        self.add_formatter("clang-format-14", 14)
        self.assertEqual(self.run_script("format", "--check").returncode, 0)
        self.assertEqual(self.lines("format"), ["14 --dry-run --Werror one.cpp"])

    def test_a_difference_fails_the_check(self):
        self.add_formatter("clang-format-14", 14)
        self.assertEqual(self.run_script("format", "--check", FORMAT_STATUS="1").returncode, 1)

    def test_without_a_formatter_nothing_is_checked(self):
        for name in ("bash", "dirname", "basename"):
            (self.root / "bin" / name).symlink_to(shutil.which(name, path="/usr/bin:/bin"))
        alone = {"PATH": f"{self.root}/bin"}
        ended = self.run_script("format", "--check", **alone)
        self.assertEqual((ended.returncode, ended.stdout),
                         (0, "format: not checked: clang-format is missing\n"))
        ended = self.run_script("format", **alone)
        self.assertEqual((ended.returncode, ended.stdout), (1, ""))

    def test_another_version_checks_nothing_and_says_so(self):
        self.add_formatter("clang-format-14", 19)
        ended = self.run_script("format", "--check", FORMAT_STATUS="1")
        self.assertEqual(ended.returncode, 0)
        self.assertEqual(ended.stdout, "format: not checked: clang-format 14 decides, and 19 is here\n")
        self.assertEqual(self.lines("format"), [])

    def test_another_version_formats_with_a_warning(self):
        self.add_formatter("clang-format-14", 19)
        ended = self.run_script("format")
        self.assertEqual(ended.returncode, 0, ended.stderr)
        self.assertIn("19 is here", ended.stdout)
        self.assertEqual(self.lines("format"), ["19 -i one.cpp"])


if __name__ == "__main__":
    unittest.main()
