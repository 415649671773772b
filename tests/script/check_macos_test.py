# SPDX-License-Identifier: MIT
"""script/check-macos without an SDK, and how it judges symbols."""

import importlib.util
import json
import os
import pathlib
import subprocess
import tempfile
import unittest

SCRIPTS = pathlib.Path(os.environ["TARNWICK_SCRIPTS"])
STUB = """--- !tapi-tbd
tbd-version:     4
targets:         [ x86_64-macos, arm64-macos, arm64-maccatalyst ]
install-name:    '/System/Library/Frameworks/Some.framework/Some'
reexported-libraries:
  - targets:         [ x86_64-macos, arm64-macos ]
    libraries:       [ '/usr/lib/libother.dylib' ]
exports:
  - targets:         [ x86_64-macos ]
    symbols:         [ _intelOnly ]
  - targets:         [ arm64-maccatalyst ]
    symbols:         [ _catalystOnly ]
  - targets:         [ x86_64-macos, arm64-macos,
                       arm64-maccatalyst ]
    symbols:         [ _first, '_$quoted',
                       _last ]
    objc-classes:    [ NSThing ]
    objc-ivars:      [ NSThing._part ]
    weak-symbols:    [ _weak ]
...
"""
OTHER_STUB = """--- !tapi-tbd
tbd-version:     4
install-name:    '/usr/lib/libother.dylib'
exports:
  - targets:         [ x86_64-macos, arm64-macos ]
    symbols:         [ _passedOn ]
...
"""


def load(name):
    spec = importlib.util.spec_from_file_location(name, SCRIPTS / "lib" / f"{name}.py")
    module = importlib.util.module_from_spec(spec)
    spec.loader.exec_module(module)
    return module


class WithoutSDK(unittest.TestCase):
    def run_script(self, *arguments, **variables):
        environment = {name: value for name, value in os.environ.items()
                       if name != "TARNWICK_MACOS_SDK"} | variables
        return subprocess.run([SCRIPTS / "check-macos", *arguments], env=environment,
                              capture_output=True, text=True)

    def test_says_that_nothing_was_checked(self):
        ended = self.run_script()
        self.assertEqual(ended.returncode, 77)
        self.assertIn("nothing was checked", ended.stdout)

    def test_an_empty_variable_names_none(self):
        self.assertEqual(self.run_script(TARNWICK_MACOS_SDK="").returncode, 77)

    def test_a_folder_that_is_not_there_is_a_failure(self):
        for ended in (self.run_script("/no/such/folder"),
                      self.run_script(TARNWICK_MACOS_SDK="/no/such/folder")):
            self.assertEqual(ended.returncode, 1)
            self.assertIn("/no/such/folder", ended.stderr)


class Symbols(unittest.TestCase):
    def setUp(self):
        self.symbols = load("macos_symbols")
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        (self.folder / "sdk").mkdir()
        (self.folder / "sdk" / "some.tbd").write_text(STUB)
        (self.folder / "sdk" / "other.tbd").write_text(OTHER_STUB)

    def test_a_stub_exports_what_it_lists_for_the_processor(self):
        common = {"_first", "_$quoted", "_last", "_weak", "_OBJC_CLASS_$_NSThing",
                  "_OBJC_METACLASS_$_NSThing", "_OBJC_IVAR_$_NSThing._part"}
        stub = self.folder / "sdk" / "some.tbd"
        self.assertEqual(self.symbols.exported_by_stub(stub, "arm64"), common)
        self.assertEqual(self.symbols.exported_by_stub(stub, "x86_64"), common | {"_intelOnly"})

    def check(self, objects, weak=(), framework="Some"):
        """Judges objects, each with the kinds of its symbols, as nm would print them."""
        build = self.folder / "build"
        build.mkdir()
        (build / "build.ninja").write_text(f"  LINK_LIBRARIES = libone.a  -framework {framework}\n")
        commands = [{"command": f"cc -o {name} -c x.cpp"} for name in objects]
        commands.append({"command": "cc -o CMakeFiles/tarnwick_core_alone.dir/x.o -c x.cpp"})
        (build / "compile_commands.json").write_text(json.dumps(commands))
        lines = [f"{build / name}: {symbol} {kind} 0 0"
                 for name, symbols in objects.items() for symbol, kind in symbols.items()]
        (self.folder / "posix.txt").write_text("\n".join(lines) + "\n")
        (self.folder / "darwin.txt").write_text(
            "".join(f"0000 (__TEXT,__text) weak external {name}\n" for name in weak))
        nm = self.folder / "nm"
        nm.write_text(f'#!/bin/sh\ncase "$*" in\n*=posix*) cat "{self.folder}/posix.txt" ;;\n'
                      f'*) cat "{self.folder}/darwin.txt" ;;\nesac\n')
        nm.chmod(0o755)
        self.symbols.check(build, "arm64", self.folder / "sdk", nm)

    def failure(self, objects, **options):
        with self.assertRaises(SystemExit) as raised:
            self.check(objects, **options)
        return str(raised.exception.code)

    def test_every_symbol_has_one_definition(self):
        self.check({"a.o": {"_main": "T", "_helper": "U", "_first": "U", "_abort": "U"},
                    "b.o": {"_helper": "T", "_OBJC_CLASS_$_NSThing": "U"}})

    def test_a_symbol_that_nobody_defines_is_a_fault(self):
        self.assertIn("defined nowhere: _missing",
                      self.failure({"a.o": {"_main": "T", "_missing": "U"}}))

    def test_a_library_passes_on_what_others_define(self):
        self.check({"a.o": {"_main": "T", "_passedOn": "U"}})

    def test_a_symbol_of_a_framework_that_is_not_linked_is_a_fault(self):
        self.assertIn("defined nowhere: _first",
                      self.failure({"a.o": {"_main": "T", "_first": "U"}}, framework="Else"))

    def test_a_symbol_of_the_other_processor_is_a_fault(self):
        self.assertIn("defined nowhere: _intelOnly", self.failure({"a.o": {"_intelOnly": "U"}}))

    def test_two_definitions_are_a_fault(self):
        self.assertIn("defined twice: _main",
                      self.failure({"a.o": {"_main": "T"}, "b.o": {"_main": "T"}}))

    def test_a_program_without_a_start_is_a_fault(self):
        self.assertIn("defined nowhere: _main", self.failure({"a.o": {"_helper": "T"}}))

    def test_inline_functions_may_have_two_definitions(self):
        self.check({"a.o": {"_main": "T", "_inline": "T"}, "b.o": {"_inline": "T"}},
                   weak=["_inline"])


if __name__ == "__main__":
    unittest.main()
