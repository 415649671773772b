# SPDX-License-Identifier: MIT
"""The table of script/compare-cost: which monitors it has, and its text."""

import dataclasses
import os
import re
import shutil

OWN = "tarnwick"


@dataclasses.dataclass(frozen=True)
class Monitor:
    """One monitor of Debian's."""

    # What the table calls it; the braces are its version.
    name: str
    package: str
    # How it is started.
    argv: tuple
    # Whether it is always on the screen, rather than opened to look at.
    is_always_there: bool
    # A file without which it cannot be shown, for one that no command starts by itself.
    needs: str = ""
    # Packages that it is shown with.
    beside: tuple = ()

    @property
    def packages(self):
        return self.package, *self.beside

    def is_there(self):
        """Whether this machine has it and what it is shown with."""
        return shutil.which(self.argv[0]) is not None and (
            os.path.exists(self.needs) if self.needs
            else shutil.which(self.argv[-1]) is not None)


MONITORS = (
    Monitor("System Load {} in Xfce's panel", "xfce4-systemload-plugin",
            ("xfce4-panel", "--add=systemload"), True,
            needs="/usr/share/xfce4/panel/plugins/systemload.desktop"),
    Monitor("Conky {}", "conky-std", ("conky",), True),
    Monitor("GKrellM {}", "gkrellm", ("gkrellm",), True),
    Monitor("htop {} in xterm", "htop", ("xterm", "-e", "htop"), False, beside=("xterm",)),
    Monitor("btop {} in xterm", "btop", ("xterm", "-e", "btop"), False, beside=("xterm",)),
    Monitor("Xfce Task Manager {}", "xfce4-taskmanager", ("xfce4-taskmanager",), False),
    Monitor("GNOME System Monitor {}", "gnome-system-monitor", ("gnome-system-monitor",), False),
)


@dataclasses.dataclass(frozen=True)
class Cost:
    """What one monitor costs, its child processes included."""

    # As in the table, with the version.
    name: str
    is_always_there: bool
    # kB: memory with a share of what several programs use, and with all of that.
    proportional: int
    resident: int
    # Milliseconds of one processor in a minute.
    milliseconds: float
    switches_per_second: float
    # Threads that ended meanwhile: what they did is missing above.
    lost_threads: int = 0


def figure(value):
    """A figure with two digits or, if it is larger, with all of its whole ones."""
    if value == 0:
        return "0"
    digits = 0
    while digits < 6 and value * 10 ** digits < 9.95:
        digits += 1
    return f"{value:,.{digits}f}"


def table(costs):
    """The costs as a table in Markdown, and a line about each that is not complete.

    First come the programs that are always on the screen.
    """
    costs = sorted(costs, key=lambda cost: not cost.is_always_there)
    lines = ["| program | PSS, MB | RSS, MB | processor time, ms a minute "
             "| context switches a second |",
             "|---|--:|--:|--:|--:|"]
    for cost in costs:
        lines.append(
            f"| {cost.name} | {cost.proportional / 1024:.1f} | {cost.resident / 1024:.1f} "
            f"| {figure(cost.milliseconds)} | {figure(cost.switches_per_second)} |")
    notes = [f"{cost.name}: threads that ended before they were counted: {cost.lost_threads}"
             for cost in costs if cost.lost_threads]
    return "\n".join(lines + ["", *notes] if notes else lines)


def upstream(version):
    """A package's version without the parts that Debian puts before and behind it."""
    return re.sub(r"^\d+:", "", version).rpartition("-")[0] or version


def project_version(cmake_lists):
    return re.search(r"^project\([^)]*\bVERSION ([\d.]+)", cmake_lists, re.MULTILINE).group(1)


def machine(cpuinfo, meminfo, os_release):
    """The kind of machine in one phrase, from the text of the files of these names."""
    models = re.findall(r"^model name\s*:\s*(.+)$", cpuinfo, re.MULTILINE)
    count = len(re.findall(r"^processor\s*:", cpuinfo, re.MULTILINE))
    kilobytes = int(re.search(r"^MemTotal:\s*(\d+) kB$", meminfo, re.MULTILINE).group(1))
    system = re.search(r'^PRETTY_NAME="?([^"\n]*)"?$', os_release, re.MULTILINE)
    return ", ".join((system.group(1) if system else "Linux",
                      f"{count} processor" + ("s" if count != 1 else "") +
                      (f" of {models[0]}" if models else ""),
                      f"{kilobytes / 1024 ** 2:.0f} GB of memory"))


def duration(text):
    """A time in seconds as its user wrote it, more than none and a day at most."""
    value = float(text)
    if not 0 < value <= 86400:
        raise ValueError(text)
    return value


def crowd_size(text):
    """A number of processes as its user wrote it, one at least and no more than a machine takes."""
    value = int(text)
    if not 0 < value <= 20000:
        raise ValueError(text)
    return value


def install_line(monitors):
    packages = sorted({package for each in monitors for package in each.packages})
    return "sudo apt-get install --no-install-recommends " + " ".join(packages)
