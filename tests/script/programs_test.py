# SPDX-License-Identifier: MIT
"""What the pages say about the programs that are built: libraries, network, reading, recipes."""

import json
import os
import pathlib
import re
import subprocess
import unittest

ROOT = pathlib.Path(os.environ["TARNWICK_SCRIPTS"]).parent
TARNWICK, PROBE = (pathlib.Path(os.environ[name]) for name in ("TARNWICK", "TARNWICK_PROBE"))
# What some releases and processors link, and what the presets with sanitizers add.
OPTIONAL = {"libLayerShellQtInterface", "ld-linux"}
SANITIZERS = {"libasan", "libtsan", "libubsan"}
# What Qt and Fontconfig name for all of their programs; the linker drops it where nothing uses it,
# but not with a sanitizer.
UNUSED = {"libGLX", "libOpenGL", "libfreetype"}
# Without these a program reaches no network; the libraries of the desktop have sockets of their own.
NETWORK = {"accept", "accept4", "bind", "connect", "getaddrinfo", "listen", "socket"}


def output(*command):
    return subprocess.run(command, capture_output=True, text=True, check=True).stdout


def needed(program):
    """The libraries that a program links, without their versions."""
    found = re.findall(r"\(NEEDED\).*\[(.*)\]", output("readelf", "--dynamic", "--wide", program))
    names = {re.sub(r"^ld-linux.*", "ld-linux", name.partition(".so")[0]) for name in found}
    return names - SANITIZERS - UNUSED if names & SANITIZERS else names


def imported(program):
    """The functions that a program takes from its libraries."""
    lines = output("nm", "--dynamic", "--undefined-only", program).splitlines()
    return {line.split()[-1].partition("@")[0] for line in lines}


def members(value):
    """The names of all members of a JSON value, at every depth."""
    if isinstance(value, dict):
        return set(value).union(*map(members, value.values()))
    return set().union(*map(members, value)) if isinstance(value, list) else set()


class Libraries(unittest.TestCase):
    def listed(self, users):
        """The libraries of the page that one of the users has."""
        rows = re.findall(r"^\| (`lib.*?) \|.*\| (.*?) \|$",
                          (ROOT / "docs/licences.md").read_text(), re.MULTILINE)
        return {name for cell, user in rows if user in users
                for name in re.findall(r"`([\w+-]+)`", cell)}

    def test_all_that_the_programs_link_are_listed(self):
        for program, users in ((TARNWICK, ("`tarnwick`", "both")), (PROBE, ("both",))):
            with self.subTest(program=program.name):
                libraries = needed(program)
                self.assertIn("libc", libraries)
                self.assertEqual(libraries - self.listed(users), set())
                self.assertEqual(self.listed(users) - libraries - OPTIONAL, set())


class Network(unittest.TestCase):
    def test_the_programs_can_open_no_connection(self):
        for program in (TARNWICK, PROBE):
            with self.subTest(program=program.name):
                functions = imported(program)
                self.assertIn("open", {name.removesuffix("64") for name in functions})
                self.assertEqual(functions & NETWORK, set())
        self.assertNotIn("libQt6Network", needed(TARNWICK))


class Hardening(unittest.TestCase):
    def test_the_programs_are_hardened_as_those_of_distributions(self):
        if os.environ["TARNWICK_HARDENED"] != "1":
            self.skipTest("this preset is for developers")
        for program in (TARNWICK, PROBE):
            with self.subTest(program=program.name):
                self.assertRegex(output("readelf", "--file-header", program), r"Type: +DYN")
                self.assertIn("GNU_RELRO", output("readelf", "--program-headers", program))
                self.assertRegex(output("readelf", "--dynamic", program), r"FLAGS.*\bNOW\b")
                functions = imported(program)
                self.assertIn("__stack_chk_fail", functions)
                self.assertTrue(any(name.endswith("_chk") for name in functions), functions)
                if os.uname().machine == "x86_64":
                    code = output("objdump", "--disassemble", "--no-show-raw-insn", program)
                    self.assertGreater(code.count("endbr64"), 500)


class Reading(unittest.TestCase):
    def test_the_programs_ask_for_no_environments_of_processes(self):
        for program in (TARNWICK, PROBE):
            with self.subTest(program=program.name):
                content = program.read_bytes()
                self.assertIn(b"cgroup", content)
                self.assertNotIn(b"/environ", content)


class Recipes(unittest.TestCase):
    def test_name_members_that_the_probe_prints(self):
        line = output(PROBE, "--root", ROOT / "tests/fixtures/laptop", "--interval", "0.1")
        names = members(json.loads(line))
        pages = (ROOT / "README.md").read_text() + (ROOT / "docs/probe.md").read_text()
        commands = [command for command in re.findall(r"tarnwick-probe (.*\| jq .*)", pages)
                    if "--format" not in command]
        commands = [command.partition("| jq ")[2] for command in commands]
        self.assertGreater(len(commands), 3)
        for command in commands:
            paths = re.findall(r"\.([A-Za-z]\w+(?:\.\w+)*)", command.partition(">>")[0])
            self.assertTrue(paths, command)
            for path in paths:
                with self.subTest(path=path):
                    self.assertLessEqual(set(path.split(".")), names)


if __name__ == "__main__":
    unittest.main()
