# SPDX-License-Identifier: MIT
"""Recorded machines, what the probe prints of them, and which programs read it."""

import os
import pathlib
import re
import shutil
import subprocess
import unittest

ROOT = pathlib.Path(os.environ["TARNWICK_ROOT"])
PROBE = os.environ["TARNWICK_PROBE"]
FIXTURES = ROOT / "tests/fixtures"
RULES = ROOT / "packaging/prometheus/tarnwick.rules.yml"
RECORDED = sorted(path.parent.name for path in FIXTURES.glob("*/proc"))


def needs(*programs):
    """Skips the tests of a class where one of the programs is missing."""
    lacking = [name for name in programs if not shutil.which(name)]
    return unittest.skipIf(lacking, f"this machine lacks {', '.join(lacking)}")


def run(*command, **options):
    return subprocess.run([str(word) for word in command], capture_output=True, text=True,
                          timeout=100, **options)


def metrics(machine, *options, style="prometheus"):
    """The metrics of the machine recorded in this folder."""
    ended = run(PROBE, "--format", style, "--interval", "0.01", "--root", machine, *options)
    assert (ended.returncode, ended.stderr) == (0, ""), ended.stderr
    return ended.stdout


def copy_machine(name, folder):
    """A copy of a recorded machine that can be changed."""
    shutil.copytree(FIXTURES / name, folder, symlinks=True)
    return folder


def set_figure(file, pattern, replacement):
    """Replaces what the pattern finds, once."""
    text, count = re.subn(pattern, replacement, file.read_text(), count=1, flags=re.MULTILINE)
    assert count == 1, f"{pattern} is not in {file}"
    file.write_text(text)


def make_fleet(folder):
    """A machine short of memory, a hot one and a calm one, by their names."""
    fleet = {name: copy_machine(recorded, folder / name)
             for name, recorded in (("full", "server"), ("hot", "workstation"), ("calm", "laptop"))}
    set_figure(fleet["full"] / "proc/meminfo", r"^(MemAvailable: +)\d+", r"\g<1>1024")
    set_figure(fleet["full"] / "proc/meminfo", r"^(MemFree: +)\d+", r"\g<1>1024")
    zone = fleet["hot"] / "sys/class/thermal/thermal_zone0"
    zone.joinpath("temp").write_text(zone.joinpath("trip_point_0_temp").read_text())
    return fleet
