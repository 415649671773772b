#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""The objects of the macOS program and the symbols that they need. For script/check-macos.

macos_symbols.py objects BUILD
    The program's object files, one a line, as the build names them.
macos_symbols.py check BUILD ARCHITECTURE SDK NM [LIBRARY...]
    Fails when a symbol is defined nowhere, by nothing that the build links, or twice. The libraries are LLVM's C++ library for this
    system, which has the symbols that the one of macOS has.
"""

import json
import pathlib
import re
import subprocess
import sys

HERE = pathlib.Path(__file__).resolve().parent


def objects(build):
    """All objects except those of the layer check, which links only the core."""
    commands = json.loads((build / "compile_commands.json").read_text())
    outputs = (re.search(r" -o (\S+\.o) ", entry["command"]).group(1) for entry in commands)
    return sorted(each for each in outputs if "tarnwick_core_alone.dir" not in each)


def exported_by_stub(path, architecture):
    """The symbols of a text-based stub, as a linker sees them."""
    names = set()
    # Every block of exports lists its targets, then its symbols by kind.
    for block in re.split(r"\n\s*- targets:", path.read_text())[1:]:
        targets, _, rest = block.partition("]")
        if f"{architecture}-macos" not in targets:
            continue
        for kind, listed in re.findall(r"([a-z-]+):\s*\[([^\]]*)\]", rest):
            found = re.findall(r"'([^']*)'|([^\s,'\[\]]+)", listed)
            listed = [quoted or plain for quoted, plain in found]
            if kind in ("symbols", "weak-symbols", "thread-local-symbols"):
                names.update(listed)
            elif kind == "objc-classes":
                names.update(f"_OBJC_CLASS_$_{name}" for name in listed)
                names.update(f"_OBJC_METACLASS_$_{name}" for name in listed)
            elif kind == "objc-eh-types":
                names.update(f"_OBJC_EHTYPE_$_{name}" for name in listed)
            elif kind == "objc-ivars":
                names.update(f"_OBJC_IVAR_$_{name}" for name in listed)
    return names


def listed(text, key):
    """The quoted values of every list under a key."""
    lists = re.findall(rf"\b{key}:\s*\[([^\]]*)\]", text)
    return [name for each in lists for name in re.findall(r"'([^']*)'", each)]


def linked_frameworks(build):
    """The frameworks that the build names on the linker's command line."""
    return set(re.findall(r"-framework (\w+)", (build / "build.ninja").read_text()))


def linked_stubs(sdk, frameworks):
    """The stubs that a linker reads: those of the frameworks and of the libraries that every
    program is linked with, and the stubs that these re-export."""
    by_library = {}
    for path in sorted(pathlib.Path(sdk).rglob("*.tbd")):
        for library in re.findall(r"^install-name:\s*'?([^'\n]*)'?$", path.read_text(), re.M):
            by_library.setdefault(library, path)
    wanted = [library for library in by_library
              if pathlib.Path(library).name in frameworks
              or re.fullmatch(r"/usr/lib/(libSystem|libc\+\+|libobjc)\.[^/]*", library)]
    stubs = set()
    while wanted:
        path = by_library.get(wanted.pop())
        if path is not None and path not in stubs:
            stubs.add(path)
            wanted += listed(path.read_text().partition("\nexports:")[0], "libraries")
    return stubs


def runtime_symbols():
    """The symbols that the C runtime defines and the program uses, with their libraries."""
    names = {}
    owner = None
    for line in (HERE / "macos_runtime_symbols.txt").read_text().splitlines():
        line = line.strip()
        if line.startswith("["):
            owner = line.strip("[]")
        elif line and not line.startswith("#"):
            names[line] = owner
    return names


def library_symbols(nm, libraries):
    """The symbols that shared libraries of this system define, under their macOS names."""
    if not libraries:
        return set()
    output = subprocess.run([nm, "--dynamic", "--defined-only", "--format=just-symbols", *libraries],
                            check=True, capture_output=True, text=True).stdout
    return {"_" + line.partition("@")[0] for line in output.split()}


def symbols_of(nm, files):
    """Defined and undefined external symbols: name to the objects that have it."""
    defined, undefined = {}, {}
    output = subprocess.run([nm, "--extern-only", "--format=posix", "--print-file-name", *files],
                            check=True, capture_output=True, text=True).stdout
    for line in output.splitlines():
        file, name, kind = re.match(r"(.*?): (\S+) (\S)", line).groups()
        (undefined if kind == "U" else defined).setdefault(name, set()).add(file)
    return defined, undefined


def weak_symbols(nm, files):
    """Symbols that several objects may define: inline functions and templates."""
    output = subprocess.run([nm, "--format=darwin", "--extern-only", *files],
                            check=True, capture_output=True, text=True).stdout
    return set(re.findall(r" weak (?:private )?external .*?(\S+)$", output, re.M))


def check(build, architecture, sdk, nm, *libraries):
    files = [str(build / each) for each in objects(build)]
    defined, undefined = symbols_of(nm, files)
    weak = weak_symbols(nm, files)
    faults = [f"defined twice: {name} in {' and '.join(sorted(where))}"
              for name, where in sorted(defined.items()) if len(where) > 1 and name not in weak]

    undefined.setdefault("_main", {"the start of the program"})
    stubs = set()
    for path in linked_stubs(sdk, linked_frameworks(build)):
        stubs |= exported_by_stub(path, architecture)
    runtime = dict.fromkeys(library_symbols(nm, libraries), "C++ library") | runtime_symbols()
    owners = {}
    for name, where in sorted(undefined.items()):
        if name in defined:
            continue
        owner = "stubs of the SDK" if name in stubs else runtime.get(name)
        if owner is None:
            faults.append(f"defined nowhere: {name}, needed by {sorted(where)[0]}")
        else:
            owners[owner] = owners.get(owner, 0) + 1
    if faults:
        sys.exit(f"check-macos: {architecture}:\n  " + "\n  ".join(faults))
    counts = ", ".join(f"{count} by the {owner}" for owner, count in sorted(owners.items()))
    print(f"check-macos: {architecture}: {len(defined)} symbols defined by the program; "
          f"of those it needs besides, {counts}")


if __name__ == "__main__":
    if sys.argv[1] == "objects":
        print("\n".join(objects(pathlib.Path(sys.argv[2]))))
    else:
        check(pathlib.Path(sys.argv[2]), *sys.argv[3:])
