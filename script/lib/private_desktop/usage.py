"""What a process costs, read from /proc."""

import dataclasses
import os


@dataclasses.dataclass(frozen=True)
class Memory:
    """In kB."""

    resident: int
    anonymous: int


@dataclasses.dataclass(frozen=True)
class Activity:
    """All threads together, since the start of the process."""

    context_switches: int
    # Time on a processor in nanoseconds.
    processor_time: int
    threads: frozenset


def _fields(path, names):
    found = {}
    with open(path, encoding="utf-8") as file:
        for line in file:
            key, _, rest = line.partition(":")
            if key in names:
                found[key] = int(rest.split()[0])
    return found


def memory(pid):
    found = _fields(f"/proc/{pid}/smaps_rollup", ("Rss", "Anonymous"))
    return Memory(found["Rss"], found["Anonymous"])


def activity(pid):
    switches = 0
    time = 0
    threads = os.listdir(f"/proc/{pid}/task")
    for thread in threads:
        folder = f"/proc/{pid}/task/{thread}"
        found = _fields(folder + "/status",
                        ("voluntary_ctxt_switches", "nonvoluntary_ctxt_switches"))
        switches += sum(found.values())
        with open(folder + "/schedstat", encoding="ascii") as file:
            time += int(file.read().split()[0])
    return Activity(switches, time, frozenset(threads))


@dataclasses.dataclass(frozen=True)
class Rates:
    switches_per_second: float
    # Of one processor.
    processor_percent: float
    # No thread ended in between and took its counts with it.
    whole: bool


def rates(before, after, seconds):
    return Rates((after.context_switches - before.context_switches) / seconds,
                 (after.processor_time - before.processor_time) / (seconds * 1e9) * 100,
                 before.threads <= after.threads)
