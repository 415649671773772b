# SPDX-License-Identifier: MIT
"""The costs of a process, read from /proc."""

import dataclasses
import os


@dataclasses.dataclass(frozen=True)
class Memory:
    """In kB."""

    resident: int
    anonymous: int
    # What several processes share counts for each of them in part.
    proportional: int


@dataclasses.dataclass(frozen=True)
class Activity:
    """The costs of one thread since its start."""

    context_switches: int
    # Time on a processor in nanoseconds.
    processor_time: int


_NONE = Activity(0, 0)


def _fields(path, names):
    found = {}
    with open(path, encoding="utf-8") as file:
        for line in file:
            key, _, rest = line.partition(":")
            if key in names:
                found[key] = int(rest.split()[0])
    return found


def memory(pid):
    found = _fields(f"/proc/{pid}/smaps_rollup", ("Rss", "Anonymous", "Pss"))
    return Memory(found["Rss"], found["Anonymous"], found["Pss"])


def activity(pid):
    """The costs of each thread of a process, by its id."""
    found = {}
    for thread in os.listdir(f"/proc/{pid}/task"):
        folder = f"/proc/{pid}/task/{thread}"
        try:
            counts = _fields(folder + "/status",
                             ("voluntary_ctxt_switches", "nonvoluntary_ctxt_switches"))
            with open(folder + "/schedstat", encoding="ascii") as file:
                found[thread] = Activity(sum(counts.values()), int(file.read().split()[0]))
        except FileNotFoundError:
            continue
    return found


@dataclasses.dataclass(frozen=True)
class Rates:
    """The costs of all threads together."""

    switches_per_second: float
    # Percent of one processor.
    processor_percent: float
    # How many threads ended in between; their counts are lost.
    lost_threads: int


def rates(before, after, seconds):
    switches = time = 0
    for thread, end in after.items():
        start = before.get(thread, _NONE)
        switches += end.context_switches - start.context_switches
        time += end.processor_time - start.processor_time
    return Rates(switches / seconds, time / (seconds * 1e9) * 100, len(before.keys() - after))
