# SPDX-License-Identifier: MIT
"""Measures the program beside a bare tray program: started by script/footprint."""

import argparse
import dataclasses
import sys
import time

from private_desktop import PrivateDesktop, Program, Timeout
from private_desktop import usage
from private_desktop.crowd import crowd, population
from private_desktop.processes import end_on_signals
from response_times import click_to_painted, start_to_item

# Times that of the bare tray program.
_RESIDENT_LIMIT = 1.12
# A second, over all threads.
_HIDDEN_WAKE_UPS_LIMIT = 0.3
_OPEN_WAKE_UPS_LIMIT = 8
# Percent of one processor. The last one holds for the largest crowd, that of a large server.
_HIDDEN_PERCENT_LIMIT = 0.005
_OPEN_PERCENT_LIMIT = 0.15
_CROWD_PERCENT_LIMIT = 0.44
# Milliseconds.
_START_LIMIT = 120
_CLICK_LIMIT = 40
# How often a start and a click are measured.
_RESPONSES = 11
# How many processes the machine has while the panel is open.
_CROWDS = (300, 3000)
# The report warns when the machine has more than this times the wanted number of processes: those
# of others, such as of a second measurement, cost as much as the measured crowd.
_CROWDED = 1.2
# Seconds: long enough for a first start to greet, and for a closed panel to be destroyed.
_SETTLE = 5.0
# Seconds. The toolkit's helper threads from the start end after half a minute.
_STEADY = 35.0


@dataclasses.dataclass
class Costs:
    # Milliseconds.
    start: float = 0
    click: float = 0
    before: usage.Memory = None
    open: usage.Memory = None
    after: usage.Memory = None
    hidden_rates: usage.Rates = None
    open_rates: usage.Rates = None
    # Costs with the panel open, by the number of processes on the machine.
    crowd_rates: dict = dataclasses.field(default_factory=dict)
    # The actual numbers of processes, by the wanted number.
    populations: dict = dataclasses.field(default_factory=dict)


def greeted(program):
    """Starts the program once, so that later starts do not greet."""
    program.start()
    program.wait_for_item()
    time.sleep(_SETTLE)
    program.end()
    return program


def response_times(program):
    """Its costs with the times alone."""
    start = start_to_item(program, _RESPONSES)
    program.start()
    program.wait_for_item()
    click = click_to_painted(program, _RESPONSES)
    program.end()
    return Costs(start, click)


def open_rates(program, seconds):
    before = usage.activity(program.pid)
    time.sleep(seconds)
    return usage.rates(before, usage.activity(program.pid), seconds)


def measure_crowds(program, costs, seconds):
    """Measures one program with its panel open, with more and more processes on the machine."""
    for number in _CROWDS:
        with crowd(program.desktop, number):
            program.open_panel()
            program.desktop.screen.move_pointer(program.desktop.nowhere)
            time.sleep(_SETTLE)
            before = population()
            costs.crowd_rates[number] = open_rates(program, seconds)
            costs.populations[number] = max(before, population())
            program.close_panel()


def measure(program, costs, seconds):
    """Measures the costs of one program with its panel open, and after that."""
    program.open_panel()
    program.desktop.screen.move_pointer(program.desktop.nowhere)
    costs.open_rates = open_rates(program, seconds)
    if program.panel_picture() is None:
        raise Timeout("the panel did not stay open")
    costs.open = usage.memory(program.pid)
    program.close_panel()
    time.sleep(_SETTLE)
    costs.after = usage.memory(program.pid)


def line(name, floor, value, unit, limit, ratio_limit):
    """One row of the table; a limit holds for the value itself or for its ratio to the floor."""
    ratio = f"{value / floor:.2f}" if floor else "-"
    if ratio_limit is not None:
        verdict = "within" if value <= ratio_limit * floor else "OVER"
        budget = f"<= {ratio_limit:g} x"
    elif limit is not None:
        verdict = "within" if value <= limit else "OVER"
        budget = f"<= {limit:g} {unit}"
    else:
        verdict = budget = ""
    return f"{name:<34}{floor:>10.4g}{value:>10.4g} {unit:<4}{ratio:>7}   {budget:<11} {verdict}"


def report(floor, own):
    def megabytes(name, state, kind, ratio_limit=None):
        values = [getattr(getattr(each, state), kind) / 1024 for each in (floor, own)]
        return line(name, *values, "MB", None, ratio_limit)

    def rate(name, state, kind, unit, limit=None):
        values = [getattr(getattr(each, state), kind) for each in (floor, own)]
        return line(name, *values, unit, limit, None)

    print(f"{'':<34}{'bare tray':>10}{'Tarnwick':>10} {'':<4}{'ratio':>7}   budget")
    print(line("start to item", floor.start, own.start, "ms", _START_LIMIT, None))
    print(line("click to painted", floor.click, own.click, "ms", _CLICK_LIMIT, None))
    print(megabytes("resident, panel never opened", "before", "resident", _RESIDENT_LIMIT))
    print(megabytes("resident, panel open", "open", "resident"))
    print(megabytes("resident, after closing", "after", "resident", _RESIDENT_LIMIT))
    print(megabytes("anonymous, panel never opened", "before", "anonymous"))
    print(megabytes("anonymous, panel open", "open", "anonymous"))
    print(megabytes("anonymous, after closing", "after", "anonymous"))
    print(rate("wake-ups, hidden", "hidden_rates", "wake_ups_per_second", "/s",
               _HIDDEN_WAKE_UPS_LIMIT))
    print(rate("wake-ups, panel open", "open_rates", "wake_ups_per_second", "/s",
               _OPEN_WAKE_UPS_LIMIT))
    print(rate("context switches, hidden", "hidden_rates", "switches_per_second", "/s"))
    print(rate("context switches, panel open", "open_rates", "switches_per_second", "/s"))
    print(rate("processor time, hidden", "hidden_rates", "processor_percent", "%",
               _HIDDEN_PERCENT_LIMIT))
    print(rate("processor time, panel open", "open_rates", "processor_percent", "%",
               _OPEN_PERCENT_LIMIT))
    for number, rates in own.crowd_rates.items():
        print(line(f"processor time, {number:,} processes", floor.open_rates.processor_percent,
                   rates.processor_percent, "%",
                   _CROWD_PERCENT_LIMIT if number == max(_CROWDS) else None, None))
        if own.populations[number] > _CROWDED * number:
            print(f"there were {own.populations[number]:,} processes then, of others too")
    for name, each in (("bare tray", floor), ("Tarnwick", own)):
        lost = sum(rates.lost_threads for rates in
                   (each.hidden_rates, each.open_rates, *each.crowd_rates.values()))
        if lost:
            print(f"{name}: what {lost} ended threads did before they ended is not counted")


def main():
    parser = argparse.ArgumentParser(prog="script/footprint", description=__doc__)
    parser.add_argument("--program", required=True, help=argparse.SUPPRESS)
    parser.add_argument("--floor", required=True, help=argparse.SUPPRESS)
    parser.add_argument("--seconds", type=float, default=60,
                        help="how long to look at each state (60)")
    arguments = parser.parse_args()
    end_on_signals()
    try:
        with PrivateDesktop() as desktop:
            programs = [greeted(Program(desktop, [path], name)) for path, name in
                        ((arguments.floor, "bare_tray"), (arguments.program, "tarnwick"))]
            costs = [response_times(program) for program in programs]
            for program in programs:
                program.start()
                program.wait_for_item()
            time.sleep(_STEADY)
            if any(program.panel() for program in programs):
                raise Timeout("a panel is open without a click")
            before = [usage.activity(program.pid) for program in programs]
            time.sleep(arguments.seconds)
            for each, program, start in zip(costs, programs, before):
                each.hidden_rates = usage.rates(
                    start, usage.activity(program.pid), arguments.seconds)
                each.before = usage.memory(program.pid)
            for each, program in zip(costs, programs):
                measure(program, each, arguments.seconds)
            # The bare tray program does not read processes.
            measure_crowds(programs[1], costs[1], arguments.seconds)
    except (OSError, RuntimeError, Timeout) as problem:
        sys.exit(f"footprint: {problem}")
    report(*costs)


main()
