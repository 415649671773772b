#!/usr/bin/python3 -B
# SPDX-License-Identifier: MIT
"""What tarnwick-probe costs beside programs that do something alike, where they are there.

    benchmarks/probe_cost.py [PROBE]

Prints for each the median time from its start to its first line, the processor time of such a run,
and the memory that it has once it has answered. node_exporter answers by HTTP and goes on; its
figures are those of its start and its first answer."""

import os
import pathlib
import shutil
import socket
import statistics
import subprocess
import sys
import time
import urllib.request

ROOT = pathlib.Path(__file__).resolve().parent.parent
RUNS = 21


def until_first_line(command):
    """Milliseconds to the first byte, and of processor time until it has ended."""
    before = time.perf_counter()
    process = subprocess.Popen(command, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)
    process.stdout.read(1)
    wall = time.perf_counter() - before
    process.stdout.read()
    _, _, usage = os.wait4(process.pid, 0)
    process.returncode = 0
    return wall * 1e3, (usage.ru_utime + usage.ru_stime) * 1e3


def resident(process):
    """Greatest resident memory so far, MB."""
    status = pathlib.Path(f"/proc/{process.pid}/status").read_text()
    return int(status.partition("VmHWM:")[2].split()[0]) * 1024 / 1e6


def processor(process):
    fields = pathlib.Path(f"/proc/{process.pid}/stat").read_text().rpartition(")")[2].split()
    return (int(fields[11]) + int(fields[12])) * 1e3 / os.sysconf("SC_CLK_TCK")


def in_series(command):
    """MB while it goes on, and milliseconds of processor time of each sample."""
    process = subprocess.Popen(command, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)
    try:
        for _ in range(3):
            process.stdout.readline()
        before = processor(process)
        samples = 200
        for _ in range(samples):
            process.stdout.readline()
        return resident(process), (processor(process) - before) / samples
    finally:
        process.kill()
        process.wait()


def exporter():
    """Milliseconds until the first answer and of processor time until then, and MB."""
    with socket.socket() as taken:
        taken.bind(("127.0.0.1", 0))
        address = f"127.0.0.1:{taken.getsockname()[1]}"
    before = time.perf_counter()
    process = subprocess.Popen(
        ["prometheus-node-exporter", "--collector.disable-defaults", "--collector.textfile",
         "--collector.textfile.directory=/var/empty", f"--web.listen-address={address}"],
        stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    try:
        while time.perf_counter() < before + 60:
            try:
                with urllib.request.urlopen(f"http://{address}/metrics") as answer:
                    answer.read()
                break
            except OSError:
                time.sleep(0.002)
        return (time.perf_counter() - before) * 1e3, processor(process), resident(process)
    finally:
        process.kill()
        process.wait()


def row(name, wall, used, memory=None):
    memory = f"{memory:8.1f}" if memory else "       -"
    print(f"{name:58} {wall:10.1f} {used:12.1f} {memory}")


def main():
    probe = sys.argv[1] if len(sys.argv) > 1 else str(ROOT / "build/release/tools/tarnwick-probe")
    single = [probe, "--interval", "0"]
    print(f"{'':58} {'ms to line':>10} {'ms processor':>12} {'MB':>8}")
    for name, command in (
            ("tarnwick-probe --interval 0", single),
            ("tarnwick-probe --interval 0 --format prometheus",
             [*single, "--format", "prometheus"]),
            ("vmstat", ["vmstat"]),
            ("glances --stdout cpu.user,mem.used --stop-after 1",
             ["glances", "--stdout", "cpu.user,mem.used", "--stop-after", "1"])):
        if shutil.which(command[0]):
            runs = [until_first_line(command)
                    for _ in range(RUNS if command[0] != "glances" else 3)]
            row(name, *map(statistics.median, zip(*runs)))
        else:
            print(f"{name}: not here")
    if shutil.which("prometheus-node-exporter"):
        row("node_exporter with the textfile collector alone", *exporter())
    else:
        print("node_exporter: not here")
    memory, used = in_series([probe, "--samples", "0", "--interval", "0.02"])
    print(f"tarnwick-probe in a series: {used:.2f} ms of processor time a sample, {memory:.1f} MB")


if __name__ == "__main__":
    main()
