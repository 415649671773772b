#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Library stubs that a set of macOS headers may lack. For script/check-macos.

macos_stubs.py SDK ROOT NM [LIBRARY...]
    Makes ROOT a folder in which a linker finds every library under its name on a Mac: links to the
    stubs of SDK, and a stub for each library of macos_runtime_symbols.txt that SDK has none for.
    The one of the C++ library has the names that LLVM's own, LIBRARY..., has. Prints the names of
    the libraries whose stubs were written.

Such a stub says what we believe a library has. It makes a link possible; it proves nothing about
the library itself. What is believed of the C library is at least a word of a header of the SDK: a
name that none has is a fault.
"""

import pathlib
import re
import subprocess
import sys

HERE = pathlib.Path(__file__).resolve().parent
CXX_LIBRARY = "/usr/lib/libc++.1.dylib"
C_LIBRARY = "/usr/lib/libSystem.B.dylib"
# What compilers and linkers need by themselves; no header names it.
UNDECLARED = {"___bzero", "___cxa_atexit", "___stack_chk_fail", "___stack_chk_guard",
              "dyld_stub_binder"}


def stub(install_name, symbols):
    """A text-based stub for both processors. A name that begins with a class prefix stands for the
    class, as in the stubs of the SDK."""
    prefix = "_OBJC_CLASS_$_"
    classes = sorted(name[len(prefix):] for name in symbols if name.startswith(prefix))
    plain = sorted(name for name in symbols if not name.startswith(prefix))
    lines = ["--- !tapi-tbd", "tbd-version:     4", "targets:         [ x86_64-macos, arm64-macos ]",
             f"install-name:    '{install_name}'", "exports:",
             "  - targets:         [ x86_64-macos, arm64-macos ]"]
    for key, names in (("symbols", plain), ("objc-classes", classes)):
        if names:
            quoted = ", ".join(f"'{name}'" for name in names)
            lines.append(f"    {key}: [ {quoted} ]")
    return "\n".join([*lines, "...", ""])


def needed_symbols():
    """The libraries that may have no stub, each with what the programs use of it."""
    libraries, names = {}, None
    for line in (HERE / "macos_runtime_symbols.txt").read_text().splitlines():
        line = line.strip()
        if line.startswith("["):
            names = libraries.setdefault(line.strip("[]"), set())
        elif line and not line.startswith("#"):
            names.add(line)
    return libraries


def library_symbols(nm, libraries):
    """The symbols that shared libraries of this system define, under their macOS names."""
    if not libraries:
        return set()
    output = subprocess.run([nm, "--dynamic", "--defined-only", "--format=just-symbols", *libraries],
                            check=True, capture_output=True, text=True).stdout
    return {"_" + line.partition("@")[0] for line in output.split()}


def sdk_stubs(sdk):
    """The stubs of an SDK by the names that their libraries have on a Mac."""
    found = {}
    for path in sorted(pathlib.Path(sdk).rglob("*.tbd")):
        for name in re.findall(r"^install-name:\s*'?([^'\n]*)'?$", path.read_text(), re.M)[:1]:
            found.setdefault(name, path)
    return found


def undeclared(sdk, names):
    """Those of the symbols that no header of an SDK has a word of."""
    words = set()
    for path in pathlib.Path(sdk).rglob("*.h"):
        words.update(re.findall(r"\w+", path.read_text(errors="replace")))
    return sorted(name for name in names - UNDECLARED if name.removeprefix("_") not in words)


def places(root, install_name):
    """Where a linker looks for the stub: under its name on a Mac, where libraries re-export it, and
    under the name that it is asked for by, as in -lSystem or -framework AppKit."""
    whole = pathlib.Path(root) / install_name.lstrip("/")
    if whole.suffix == ".dylib":
        return {whole.with_suffix(".tbd"), whole.with_name(whole.name.split(".")[0] + ".tbd")}
    framework = next(each for each in whole.parents if each.name == f"{whole.name}.framework")
    return {whole.with_name(whole.name + ".tbd"), framework / f"{whole.name}.tbd"}


def write(sdk, root, nm, *libraries):
    present = sdk_stubs(sdk)
    for install_name, stub_path in present.items():
        for place in places(root, install_name):
            place.parent.mkdir(parents=True, exist_ok=True)
            place.unlink(missing_ok=True)
            place.symlink_to(stub_path)
    written = []
    for install_name, names in needed_symbols().items():
        if install_name in present:
            continue
        if install_name == C_LIBRARY and (unknown := undeclared(sdk, names)):
            sys.exit(f"check-macos: no header of {sdk} names {' '.join(unknown)}")
        if install_name == CXX_LIBRARY:
            names = names | library_symbols(nm, libraries)
        for place in places(root, install_name):
            place.parent.mkdir(parents=True, exist_ok=True)
            place.write_text(stub(install_name, names))
        written.append(install_name)
    return written


if __name__ == "__main__":
    print("\n".join(write(*sys.argv[1:])))
