# SPDX-License-Identifier: MIT
"""script/check-macos without an SDK or a tool, and how it judges what it has linked."""

import hashlib
import importlib.util
import os
import pathlib
import plistlib
import shutil
import struct
import subprocess
import tempfile
import unittest

SCRIPTS = pathlib.Path(os.environ["TARNWICK_SCRIPTS"])
STUB = """--- !tapi-tbd
tbd-version:     4
targets:         [ x86_64-macos, arm64-macos ]
install-name:    '/System/Library/Frameworks/Some.framework/Versions/A/Some'
exports:
  - targets:         [ x86_64-macos, arm64-macos ]
    symbols:         [ _first ]
...
"""
SYMBOLS = """# What is used.
[/usr/lib/libSystem.B.dylib]
# Of the C library.
_abort
_read

[/usr/lib/libc++.1.dylib]

[/System/Library/Frameworks/Some.framework/Versions/A/Some]
_OBJC_CLASS_$_Other
"""
HEADERS = """Tarnwick:
Mach header
      magic cputype cpusubtype  caps    filetype ncmds sizeofcmds      flags
MH_MAGIC_64   ARM64        ALL  0x00     EXECUTE     4        400   NOUNDEFS DYLDLINK TWOLEVEL PIE
Load command 0
     cmd LC_UUID
 cmdsize 24
Load command 1
       cmd LC_BUILD_VERSION
  platform macos
       sdk 13.0
     minos 13.0
Load command 2
       cmd LC_MAIN
  entryoff 15136
Load command 3
          cmd LC_LOAD_DYLIB
         name /usr/lib/libSystem.B.dylib (offset 24)
Load command 4
      cmd LC_CODE_SIGNATURE
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


class WithoutTools(unittest.TestCase):
    def test_one_line_says_what_is_missing(self):
        with tempfile.TemporaryDirectory() as folder:
            root = pathlib.Path(folder)
            shutil.copytree(SCRIPTS, root / "script", ignore=shutil.ignore_patterns("__pycache__"))
            (root / "bin").mkdir()
            for name in ("bash", "env", "dirname", "basename", "ld64.lld"):
                (root / "bin" / name).symlink_to(shutil.which(name) or "/bin/true")
            ended = subprocess.run([root / "script/check-macos", folder], capture_output=True,
                                   env={"PATH": f"{root}/bin"}, text=True)
        self.assertEqual(ended.returncode, 1)
        self.assertEqual(ended.stderr, "check-macos: missing: clang++ llvm-ar llvm-ranlib llvm-nm "
                                       "llvm-lipo llvm-objdump cmake ninja python3 "
                                       "(on Debian: script/bootstrap build fuzz macos)\n")


class Temporary(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)


class Stubs(Temporary):
    def setUp(self):
        super().setUp()
        self.stubs = load("macos_stubs")
        self.stubs.HERE = self.folder
        (self.folder / "macos_runtime_symbols.txt").write_text(SYMBOLS)
        (self.folder / "sdk").mkdir()
        (self.folder / "sdk/Some.tbd").write_text(STUB)
        (self.folder / "sdk/stdlib.h").write_text("void abort(void);\nlong read(int);\n")
        nm = self.folder / "nm"
        nm.write_text("#!/bin/sh\nprintf '_Znwm@@VERS_1\\n__cxa_throw\\n'\n")
        nm.chmod(0o755)
        self.root = self.folder / "root"
        self.written = self.stubs.write(self.folder / "sdk", self.root, nm, "libc++.so.1")

    def test_a_library_that_the_sdk_has_keeps_its_stub(self):
        framework = self.root / "System/Library/Frameworks/Some.framework"
        for place in (framework / "Some.tbd", framework / "Versions/A/Some.tbd"):
            self.assertEqual(place.read_text(), STUB)
        self.assertEqual(self.written, ["/usr/lib/libSystem.B.dylib", "/usr/lib/libc++.1.dylib"])

    def test_a_library_that_it_lacks_gets_one_with_what_is_used(self):
        for name in ("libSystem.tbd", "libSystem.B.tbd"):
            text = (self.root / "usr/lib" / name).read_text()
            self.assertIn("install-name:    '/usr/lib/libSystem.B.dylib'", text)
            self.assertIn("symbols: [ '_abort', '_read' ]", text)

    def test_the_one_of_the_cxx_library_has_the_names_of_llvms_own(self):
        self.assertIn("symbols: [ '__Znwm', '___cxa_throw' ]",
                      (self.root / "usr/lib/libc++.tbd").read_text())

    def test_a_name_of_the_c_library_that_no_header_names_is_a_fault(self):
        (self.folder / "sdk/stdlib.h").write_text("void abort(void);\nlong read_all(int);\n")
        with self.assertRaisesRegex(SystemExit, "names _read$"):
            self.stubs.write(self.folder / "sdk", self.root, self.folder / "nm")

    def test_what_compilers_need_by_themselves_is_in_no_header(self):
        self.assertEqual(
            self.stubs.undeclared(self.folder / "sdk", {"_abort", "___stack_chk_fail", "_red"}),
            ["_red"])

    def test_a_class_is_listed_as_one(self):
        self.assertIn("objc-classes: [ 'Other' ]",
                      self.stubs.stub("/usr/lib/libx.dylib", {"_OBJC_CLASS_$_Other"}))


class Programs(unittest.TestCase):
    def faults(self, headers=HEADERS, symbols=("tarnwick::CPUService::readCPUInfo()",)):
        return "\n".join(load("macos_program").faults_of(headers, symbols, "arm64")[0])

    def test_one_that_fits_has_no_fault(self):
        self.assertEqual(self.faults(), "")

    def test_a_newer_system_is_a_fault(self):
        self.assertIn("from 14.0, not macOS 13.0",
                      self.faults(HEADERS.replace("minos 13.0", "minos 14.0")))

    def test_so_is_another_platform(self):
        self.assertIn("for platform ios", self.faults(HEADERS.replace("macos", "ios")))

    def test_a_library_that_is_not_of_the_system_is_a_fault(self):
        for name in ("@rpath/libother.dylib", "/opt/lib/libother.dylib", "libother.dylib"):
            other = HEADERS + f"Load command 5\n cmd LC_LOAD_DYLIB\n name {name} (offset 24)\n"
            self.assertIn(f"needs {name}", self.faults(other))

    def test_what_is_missing_is_a_fault(self):
        for name in ("LC_MAIN", "LC_BUILD_VERSION", "LC_UUID", "LC_CODE_SIGNATURE", "TWOLEVEL",
                     "PIE", "libSystem"):
            self.assertIn(name, self.faults(HEADERS.replace(name, "OTHER")))

    def test_code_of_linux_and_its_toolkit_is_a_fault(self):
        for name in ("tarnwick::platform::LinuxKernel::bootTime()", "QString::append(QChar)",
                     "_xcb_connect", "_wl_display_connect"):
            self.assertIn(f"it has {name}", self.faults(symbols=[name]))


class Bundles(Temporary):
    INFORMATION = {"CFBundleExecutable": "Tarnwick", "CFBundleIconFile": "Tarnwick.icns",
                   "LSMinimumSystemVersion": "13.0"}

    @staticmethod
    def part(flags=2, spoilt=False):
        """A program of one load command and two pages, and its signature."""
        code = struct.pack("<8I", 0xFEEDFACF, 0, 0, 2, 1, 16, 0, 0)
        code = (code + struct.pack("<4I", 0x1D, 16, 5000, 200)).ljust(5000, b"x")
        hashes = b"".join(hashlib.sha256(page).digest() for page in (code[:4096], code[4096:]))
        directory = struct.pack(">9I4B", 0xFADE0C02, 108, 0x20400, flags, 40, 0, 0, 2, 5000,
                                32, 2, 0, 12) + hashes
        blobs = struct.pack(">5I", 0xFADE0CC0, 200, 1, 0, 20)
        return (code[:-1] + b"y" if spoilt else code) + blobs + directory

    def faults(self, processors=(0x01000007, 0x0100000C), icon=b"icns", part=None, **information):
        contents = self.folder / "Contents"
        (contents / "MacOS").mkdir(parents=True, exist_ok=True)
        (contents / "Resources").mkdir(exist_ok=True)
        (contents / "Info.plist").write_bytes(plistlib.dumps(self.INFORMATION | information))
        part = part or self.part()
        for name in ("Tarnwick", "tarnwick-probe"):
            program = contents / "MacOS" / name
            program.write_bytes((struct.pack(">II", 0xCAFEBABE, len(processors)) + b"".join(
                struct.pack(">IIIII", processor, 0, 100, len(part), 0) for processor in processors)
            ).ljust(100, b"\0") + part)
            program.chmod(0o755)
        (contents / "Resources/Tarnwick.icns").write_bytes(icon)
        return "\n".join(load("macos_program").bundle_faults(self.folder))

    def test_a_whole_one_has_no_fault(self):
        self.assertEqual(self.faults(), "")

    def test_a_program_for_one_processor_is_a_fault(self):
        self.assertIn("not for arm64 and x86_64", self.faults(processors=(0x0100000C,)))

    def test_a_signature_that_does_not_fit_is_a_fault(self):
        for part in (self.part(spoilt=True), self.part(flags=0),
                     struct.pack("<8I", 0xFEEDFACF, 0, 0, 2, 0, 0, 0, 0)):
            self.assertIn("the signature of arm64 does not fit", self.faults(part=part))

    def test_a_value_that_the_build_has_not_set_is_a_fault(self):
        self.assertIn("leaves CFBundleName", self.faults(CFBundleName="${NAME}"))
        self.assertIn("leaves CFBundleVersion", self.faults(CFBundleVersion=""))

    def test_a_missing_program_or_icon_is_a_fault(self):
        self.assertIn("no Other in MacOS", self.faults(CFBundleExecutable="Other"))
        self.assertIn("no icon", self.faults(icon=b"PNG"))

    def test_so_is_a_missing_probe_or_one_that_does_not_fit(self):
        self.faults()
        probe = self.folder / "Contents/MacOS/tarnwick-probe"
        probe.write_bytes(b"#!/bin/sh\n")
        faults = load("macos_program").bundle_faults
        self.assertEqual(faults(self.folder), ["tarnwick-probe is not for arm64 and x86_64"])
        probe.unlink()
        self.assertEqual(faults(self.folder), ["there is no tarnwick-probe in MacOS"])

    def test_another_oldest_system_is_a_fault(self):
        self.assertIn("macOS 13.0", self.faults(LSMinimumSystemVersion="14.0"))

    def test_one_without_information_is_a_fault(self):
        self.assertIn("Info.plist cannot be read",
                      load("macos_program").bundle_faults(self.folder / "none")[0])


if __name__ == "__main__":
    unittest.main()
