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


_ASLEEP = "voluntary_ctxt_switches"
_PRE_EMPTED = "nonvoluntary_ctxt_switches"


@dataclasses.dataclass(frozen=True)
class Activity:
    """The costs of one thread since its start."""

    # How often it fell asleep until something woke it.
    wake_ups: int
    # How often it lost its processor to another thread.
    pre_emptions: int
    # Time on a processor in nanoseconds.
    processor_time: int


_NONE = Activity(0, 0, 0)


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
            counts = _fields(folder + "/status", (_ASLEEP, _PRE_EMPTED))
            with open(folder + "/schedstat", encoding="ascii") as file:
                found[thread] = Activity(counts[_ASLEEP], counts[_PRE_EMPTED],
                                         int(file.read().split()[0]))
        except FileNotFoundError:
            continue
    return found


@dataclasses.dataclass(frozen=True)
class Rates:
    """The costs of all threads together."""

    # Those of both kinds together.
    switches_per_second: float
    wake_ups_per_second: float
    # Percent of one processor.
    processor_percent: float
    # How many threads ended in between; their counts are lost.
    lost_threads: int


def rates(before, after, seconds):
    wake_ups = pre_emptions = time = 0
    for thread, end in after.items():
        start = before.get(thread, _NONE)
        wake_ups += end.wake_ups - start.wake_ups
        pre_emptions += end.pre_emptions - start.pre_emptions
        time += end.processor_time - start.processor_time
    return Rates((wake_ups + pre_emptions) / seconds, wake_ups / seconds,
                 time / (seconds * 1e9) * 100, len(before.keys() - after))
