# SPDX-License-Identifier: MIT
"""Measures what Tarnwick and other monitors cost: started by script/compare-cost."""

import argparse
import json
import os
import subprocess
import sys
import time

import cost_table
from private_desktop import PrivateDesktop, Program, Timeout, until
from private_desktop import usage
from private_desktop.crowd import crowd, population
from private_desktop.processes import descendants, end_on_signals

# No graphics card draws the private display. GTK 4 would emulate one, at the program's cost.
_ENVIRONMENT = {"GSK_RENDERER": "cairo"}
# As many processes as an ordinary desktop has.
_ORDINARY_CROWD = 300
# Seconds: long enough for a first start to greet.
_GREETING = 2.0
# Xfce's panel runs the plug-in in a process of its own, whose command line names this.
_PLUGIN = "libsystemload.so"


def read(path):
    with open(path, encoding="utf-8") as file:
        return file.read()


def family(pid):
    return [pid, *descendants(pid)]


def activity(pid):
    """The costs of each thread of a process and of its children, by its id."""
    found = {}
    for each in family(pid):
        try:
            found.update(usage.activity(each))
        except FileNotFoundError:
            continue
    return found


def measured(name, is_always_there, pid, seconds):
    """The costs of a process and its children over some time; the memory is that at the end."""
    before = activity(pid)
    begun = time.monotonic()
    time.sleep(seconds)
    rates = usage.rates(before, activity(pid), time.monotonic() - begun)
    memories = [usage.memory(each) for each in family(pid)]
    return cost_table.Cost(
        name, is_always_there, sum(each.proportional for each in memories),
        sum(each.resident for each in memories),
        rates.processor_percent / 100 * 60 * 1000, rates.switches_per_second, rates.lost_threads)


def own_costs(path, settle, seconds, processes):
    """The costs of Tarnwick, hidden and with its panel open."""
    version = cost_table.project_version(read("CMakeLists.txt"))
    with PrivateDesktop() as desktop, crowd(desktop, processes):
        # This is not its first start, which would open the panel and the settings.
        folder = desktop.path("home/.config/tarnwick")
        os.makedirs(folder)
        with open(folder + "/settings.json", "w", encoding="ascii") as file:
            json.dump({"settings.hasPresentedInitialSettings": True}, file)
        program = Program(desktop, [path], "tarnwick").start()
        program.wait_for_item()
        time.sleep(settle)
        if program.panel():
            raise Timeout("the panel is open without a click")
        hidden = measured(f"Tarnwick {version}, hidden", True, program.pid, seconds)
        program.open_panel()
        desktop.screen.move_pointer(desktop.nowhere)
        time.sleep(settle)
        opened = measured(f"Tarnwick {version}, panel open", False, program.pid, seconds)
        if program.panel_picture() is None:
            raise Timeout("the panel did not stay open")
        return hidden, opened


def plugin():
    """The process of the plug-in in the panel, or None while there is none."""
    for pid in descendants(os.getpid()):
        try:
            with open(f"/proc/{pid}/cmdline", encoding="utf-8", errors="replace") as file:
                if _PLUGIN in file.read():
                    return pid
        except OSError:
            continue
    return None


def shown(desktop, monitor):
    """Starts a monitor and waits until it is on the screen; what was started, and its process."""
    started = desktop.processes.start(monitor.argv, {**desktop.env, **_ENVIRONMENT}, "monitor")
    pid = until(plugin, f"{monitor.package} runs") if monitor.needs else started.pid
    until(lambda: desktop.screen.windows(pid), f"{monitor.package} is on the screen")
    return started, pid


def cost_of(monitor, settle, seconds, processes):
    version = subprocess.run(
        ["dpkg-query", "--show", "--showformat=${Version}", monitor.package],
        capture_output=True, text=True, check=False).stdout
    with PrivateDesktop() as desktop, crowd(desktop, processes):
        started, pid = shown(desktop, monitor)
        if not monitor.needs:
            # What only a first start shows does not count.
            time.sleep(_GREETING)
            desktop.processes.end(started)
            started, pid = shown(desktop, monitor)
        desktop.screen.move_pointer(desktop.nowhere)
        time.sleep(settle)
        try:
            cost = measured(monitor.name.format(cost_table.upstream(version)),
                            monitor.is_always_there, pid, seconds)
        except FileNotFoundError:
            raise Timeout(f"{monitor.package} ended: " + desktop.log("monitor").strip()) from None
        if not desktop.screen.windows(pid):
            raise Timeout(f"{monitor.package} did not stay on the screen")
        return cost


def report(costs, arguments):
    print(cost_table.table(costs))
    print(f"\n{time.strftime('%Y-%m-%d')}, "
          + cost_table.machine(read("/proc/cpuinfo"), read("/proc/meminfo"),
                               read("/etc/os-release"))
          + f", {max(arguments.processes, population())} processes, "
          f"{arguments.seconds:g} s each after {arguments.settle:g} s", flush=True)


def main():
    monitors = {each.package: each for each in cost_table.MONITORS}
    parser = argparse.ArgumentParser(prog="script/compare-cost", description=__doc__)
    parser.add_argument("--program", required=True, help=argparse.SUPPRESS)
    parser.add_argument("--seconds", type=cost_table.duration, default=60,
                        help="how long to look at each (60)")
    # The toolkit's helper threads from the start end after half a minute.
    parser.add_argument("--settle", type=cost_table.duration, default=35,
                        help="how long to leave each alone before that (35)")
    parser.add_argument("--processes", type=cost_table.crowd_size, default=_ORDINARY_CROWD,
                        help="how many processes the machine has meanwhile, at least (300)")
    parser.add_argument("monitor", nargs="*", metavar="MONITOR",
                        help=", ".join((cost_table.OWN, *monitors)))
    arguments = parser.parse_args()
    unknown = [each for each in arguments.monitor
               if each not in monitors and each != cost_table.OWN]
    if unknown:
        parser.error(f"no such monitor: {unknown[0]}")
    chosen = set(arguments.monitor or (cost_table.OWN, *monitors))
    missing = [each for each in cost_table.MONITORS
               if each.package in chosen and not each.is_there()]
    if missing:
        print("compare-cost: not on this machine: " + ", ".join(each.package for each in missing)
              + "\n  " + cost_table.install_line(missing), file=sys.stderr, flush=True)
        chosen -= {each.package for each in missing}
    end_on_signals()
    costs, failed = [], []
    try:
        for package in [cost_table.OWN, *monitors]:
            if package not in chosen:
                continue
            print(f"compare-cost: measures {package}", file=sys.stderr, flush=True)
            conditions = arguments.settle, arguments.seconds, arguments.processes
            try:
                if package == cost_table.OWN:
                    costs += own_costs(arguments.program, *conditions)
                else:
                    costs.append(cost_of(monitors[package], *conditions))
            except (OSError, RuntimeError, Timeout) as problem:
                print(f"compare-cost: {problem}", file=sys.stderr, flush=True)
                failed.append(package)
    finally:
        # Also where it is interrupted: each row took minutes.
        if costs:
            report(costs, arguments)
    if failed or not costs:
        sys.exit(1)


main()
