#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Judges what was linked for macOS. For script/check-macos.

macos_program.py PROGRAM ARCHITECTURE OBJDUMP NM
    Fails when one processor's part of a program would not start on macOS 13 or holds code of Linux.
macos_program.py PATH
    Fails when a program is not for both processors or not signed, and for an application bundle
    also when a file of it is missing or its Info.plist does not fit it.
"""

import hashlib
import pathlib
import plistlib
import re
import struct
import subprocess
import sys

MINIMUM = "13.0"
# Needs no display; stands beside the program.
PROBE = "tarnwick-probe"
# Parts of demangled names that only code for Linux and its toolkit has.
LINUX_NAMES = re.compile(r"\bLinux|\bQ[A-Z][a-z]|\b_?xcb_|\b_?wl_|\bXdg|DBus")


def output(*command):
    return subprocess.run(command, check=True, capture_output=True, text=True).stdout


def load_commands(text):
    """The load commands that `objdump --private-headers` prints, each a list of (field, value)."""
    commands = []
    for block in re.split(r"^Load command \d+$", text, flags=re.M)[1:]:
        commands.append([(line.split(None, 1) + [""])[:2]
                         for line in block.splitlines() if line.strip()])
    return commands


def value(command, field):
    return next((found for name, found in command if name == field), "")


def faults_of(headers, symbols, architecture):
    """What would keep a program from starting, or does not belong into it."""
    faults = []
    # A program that dyld loads anywhere, every symbol bound to the library that it was found in.
    for flag in ("EXECUTE", "DYLDLINK", "TWOLEVEL", "PIE"):
        if not re.search(rf"\b{flag}\b", headers):
            faults.append(f"its header lacks {flag}")
    commands = load_commands(headers)
    by_name = {}
    for command in commands:
        by_name.setdefault(value(command, "cmd"), []).append(command)
    for needed in ("LC_MAIN", "LC_BUILD_VERSION", "LC_UUID", "LC_CODE_SIGNATURE"):
        if needed not in by_name:
            faults.append(f"it has no {needed}")
    for command in by_name.get("LC_BUILD_VERSION", []):
        if (value(command, "platform"), value(command, "minos")) not in (
                ("macos", MINIMUM), ("1", MINIMUM)):
            faults.append(f"it is for platform {value(command, 'platform')} "
                          f"from {value(command, 'minos')}, not macOS {MINIMUM}")
    for command in by_name.get("LC_RPATH", []):
        faults.append(f"it looks for libraries in {value(command, 'path')}")
    libraries = [value(command, "name").split(" (offset")[0]
                 for name in ("LC_LOAD_DYLIB", "LC_LOAD_WEAK_DYLIB", "LC_REEXPORT_DYLIB")
                 for command in by_name.get(name, [])]
    for library in libraries:
        if not library.startswith(("/System/Library/Frameworks/", "/usr/lib/")):
            faults.append(f"it needs {library}, which is no public library of the system")
    if not any(library.startswith("/usr/lib/libSystem.") for library in libraries):
        faults.append("it does not need libSystem")
    faults += [f"it has {name}" for name in symbols if LINUX_NAMES.search(name)]
    return [f"{architecture}: {fault}" for fault in faults], libraries


def size_text(size):
    return f"{size / 1024:.0f} KiB"


def check(path, architecture, objdump, nm):
    headers = output(objdump, "--macho", "--private-headers", path)
    symbols = output(nm, "--demangle", "--format=just-symbols", path).splitlines()
    faults, libraries = faults_of(headers, symbols, architecture)
    if faults:
        sys.exit(f"check-macos: {path}:\n  " + "\n  ".join(faults))
    file = pathlib.Path(path)
    print(f"check-macos: {architecture}: {file.name} linked for macOS {MINIMUM}: "
          f"{size_text(file.stat().st_size)}, {len(symbols)} symbols, {len(libraries)} libraries, "
          "all of the system")


def parts_of(data):
    """The parts of a universal program, each under its processor."""
    names = {0x01000007: "x86_64", 0x0100000C: "arm64"}
    magic, count = struct.unpack_from(">II", data)
    if magic != 0xCAFEBABE:
        return {}
    parts = {}
    for i in range(count):
        processor, _, offset, size, _ = struct.unpack_from(">5I", data, 8 + 20 * i)
        parts[names.get(processor, "another processor")] = data[offset:offset + size]
    return parts


def is_signed(part):
    """Whether an ad hoc signature in a part of a program has the hash of every page before it."""
    command_count, place = struct.unpack_from("<I", part, 16)[0], 32
    for _ in range(command_count):
        kind, size = struct.unpack_from("<II", part, place)
        if kind == 0x1D:  # LC_CODE_SIGNATURE
            break
        place += size
    else:
        return False
    signature = part[struct.unpack_from("<I", part, place + 8)[0]:]
    # A list of blobs, of which the first describes the code.
    if struct.unpack_from(">I", signature)[0] != 0xFADE0CC0:
        return False
    code = signature[struct.unpack_from(">I", signature, 16)[0]:]
    magic, _, _, flags, hashes, _, _, count, limit, width, kind, _, page = struct.unpack_from(
        ">9I4B", code)
    ad_hoc, sha256 = 0x2, 2
    pages = [part[at:min(at + (1 << page), limit)] for at in range(0, limit, 1 << page)]
    return (magic == 0xFADE0C02 and flags & ad_hoc != 0 and kind == sha256 and count == len(pages)
            and all(code[hashes + i * width:hashes + (i + 1) * width] == hashlib.sha256(each).digest()
                    for i, each in enumerate(pages)))


def universal_faults(path):
    """What is wrong with a program for both processors."""
    parts = parts_of(path.read_bytes())
    if sorted(parts) != ["arm64", "x86_64"]:
        return [f"{path.name} is not for arm64 and x86_64"]
    faults = [f"{path.name}: the signature of {name} does not fit"
              for name, part in parts.items() if not is_signed(part)]
    if not path.stat().st_mode & 0o111:
        faults.append(f"{path.name} cannot be executed")
    return faults


def bundle_faults(folder):
    contents = pathlib.Path(folder) / "Contents"
    try:
        information = plistlib.loads((contents / "Info.plist").read_bytes())
    except (OSError, plistlib.InvalidFileException, ValueError) as error:
        return [f"Info.plist cannot be read: {error}"]
    faults = [f"Info.plist leaves {key} as {text!r}" for key, text in information.items()
              if isinstance(text, str) and (not text or "${" in text)]
    if information.get("LSMinimumSystemVersion") != MINIMUM:
        faults.append(f"Info.plist does not ask for macOS {MINIMUM}")
    for name in (str(information.get("CFBundleExecutable")), PROBE):
        program = contents / "MacOS" / name
        if not program.is_file():
            faults.append(f"there is no {name} in MacOS")
        else:
            faults += universal_faults(program)
    icon = contents / "Resources" / str(information.get("CFBundleIconFile"))
    if not icon.is_file() or icon.read_bytes()[:4] != b"icns":
        faults.append(f"there is no icon {icon.name} in Resources")
    return faults


def check_universal(path):
    path = pathlib.Path(path)
    faults = bundle_faults(path) if path.is_dir() else universal_faults(path)
    if faults:
        sys.exit(f"check-macos: {path}:\n  " + "\n  ".join(faults))
    files = [each for each in path.rglob("*") if each.is_file()] or [path]
    size = size_text(sum(each.stat().st_size for each in files))
    rest = ", Info.plist fits" if path.is_dir() else ""
    print(f"check-macos: {path}: {size}, for arm64 and x86_64, signed ad hoc{rest}")


if __name__ == "__main__":
    if len(sys.argv) == 2:
        check_universal(sys.argv[1])
    else:
        check(*sys.argv[1:])
