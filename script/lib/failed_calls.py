# SPDX-License-Identifier: MIT
"""Starts the program over and over; in each start a system call fails. Started by script/soak.

Each system call that a start makes fails at its first, second, third and last time and at three
times between: once in each thread that makes it so often. The program shall show its item, or say
why not and end with 1.
"""

import argparse
import collections
import os
import random
import re
import signal
import subprocess
import sys
import time

from private_desktop import PrivateDesktop, Program, Timeout
from private_desktop.processes import end_on_signals

# Seconds.
_SETTLE = 2.0
_ITEM = 12.0
_END = 8.0
# These cannot fail, or a failure cannot be told from another process's end.
_NEVER = {"arch_prctl", "brk", "close", "execve", "exit", "exit_group", "futex", "getpid", "gettid",
          "mprotect", "munmap", "restart_syscall", "rt_sigprocmask", "rt_sigreturn",
          "set_tid_address"}
# Without its first memory the dynamic loader crashes, whatever it loads.
_LOADERS_OWN = ("mmap", 1)
# What the system answers when it has too little of something; others are told EINVAL.
_ERRORS = {
    "ENOMEM": {"clone", "clone3", "mmap", "mremap"},
    "EIO": {"fsync", "fdatasync", "pread64", "read", "readv", "write", "writev"},
    "EMFILE": {"dup", "eventfd2", "fcntl", "inotify_init1", "memfd_create", "openat", "pipe2",
               "socket", "timerfd_create"},
}
# How the dynamic loader, the C library and the toolkit end the program, in lines of their own; only
# the loader may be unable to say anything.
_LOADER_STATUS = 127
_C_LIBRARY = "Fatal glibc error"
_TOOLKIT = ("no Qt platform plugin could be initialized", "The X11 connection broke",
            "could not connect to display")

STARTED = "shows its item"
SAID = "says why not, ends with 1"
LATE = "shows no item, but ends when told to"
FOREIGN = "ended by the C library or the toolkit"
HANG = "hangs"
CRASH = "crashes"
# Starts differ: a thread that made the call so often may make it less often the next time.
NOT_MADE = "does not make the call, so nothing failed"


def error_for(call):
    """What a failing call answers."""
    return next((error for error, calls in _ERRORS.items() if call in calls), "EINVAL")


def plan(counts):
    """(call, at which time it fails) for calls that are made so often, in a mixed order."""
    points = [(call, number) for call, count in sorted(counts.items()) if call not in _NEVER
              for number in sorted({1, 2, 3, count // 4, count // 2, 3 * count // 4, count})
              if 1 <= number <= count and (call, number) != _LOADERS_OWN]
    random.Random(1).shuffle(points)
    return points


def counted(trace):
    """How often each call was made by the thread that made it most often, from a trace: strace
    counts the calls of each thread by themselves."""
    made = collections.Counter(re.findall(r"^(\d+) +(\w+)\(", trace, re.MULTILINE))
    most = {}
    for (_thread, call), count in made.items():
        most[call] = max(count, most.get(call, 0))
    return most


def judged(has_item, status, output):
    """What became of a start. `status` is None where the program did not end when told to."""
    if status is None:
        return HANG
    if status == _LOADER_STATUS or _C_LIBRARY in output:
        return FOREIGN
    # Where it cannot serve the signal, the signal itself ends it.
    if has_item and status in (0, -signal.SIGTERM):
        return STARTED
    if status <= 0 and any(words in output for words in _TOOLKIT):
        return FOREIGN
    if status in (0, -signal.SIGTERM):
        return LATE
    return SAID if status == 1 and output.strip() else CRASH


def is_own(trace, path):
    """Whether a crash, traced by strace, is in code that the program's own code had called: in a
    function of its own below main()."""
    own = os.path.realpath(path)
    frames = re.findall(r"^ > (\S+?)\(([^+)]*)", trace.partition("--- SIG")[2], re.MULTILINE)
    return not frames or any(file == own and name not in ("main", "_start", "")
                             for file, name in frames)


def ended(program):
    """Ends a program; its status, or None where it had to be killed.

    It is told twice, because the call that fails may be the one that hears of the first time.
    """
    for _ in range(2):
        if program.runs():
            program.process.terminate()
        try:
            return program.process.wait(_END)
        except subprocess.TimeoutExpired:
            continue
    program.process.kill()
    program.process.wait()
    return None


def one_start(desktop, path, number, point):
    call, when = point
    error = error_for(call)
    log = f"start{number}"
    trace = desktop.path(f"trace{number}")
    program = Program(desktop, ["strace", "-D", "-f", "-qq", "-k", "-o", trace,
                                "-e", "signal=SIGSEGV,SIGABRT,SIGBUS,SIGFPE,SIGILL",
                                "-e", "trace=" + call,
                                "-e", f"inject={call}:error={error}:when={when}", path],
                      log).start()
    end = time.monotonic() + _ITEM
    has_item = False
    while program.runs() and not has_item and time.monotonic() < end:
        has_item = desktop.bus.item_of(program.pid) is not None
        time.sleep(0.05)
    status = ended(program)
    outcome = judged(has_item, status, desktop.log(log))
    with open(trace, encoding="utf-8", errors="replace") as file:
        traced = file.read()
    os.remove(trace)
    if outcome == CRASH and status < 0 and not is_own(traced, path):
        outcome = FOREIGN
    if outcome == STARTED and "(INJECTED)" not in traced:
        outcome = NOT_MADE
    if outcome not in (STARTED, SAID, NOT_MADE):
        print(f"{call} {when} {error}: {outcome}, status {status}: "
              f"{desktop.log(log).strip()[-200:]}", flush=True)
    return outcome


def sweep(path, starts):
    with PrivateDesktop() as desktop:
        # The first start greets, which the others do not.
        first = Program(desktop, [path], "first").start()
        first.wait_for_item()
        time.sleep(_SETTLE)
        first.end()
        trace = desktop.path("usual")
        usual = Program(desktop, ["strace", "-D", "-f", "-qq", "-o", trace, path],
                        "usual").start()
        usual.wait_for_item()
        time.sleep(_SETTLE)
        if ended(usual) != 0:
            raise Timeout("the program does not end when told to")
        # The tracer may end after the program.
        time.sleep(_SETTLE)
        with open(trace, encoding="utf-8", errors="replace") as file:
            points = plan(counted(file.read()))
        return collections.Counter(one_start(desktop, path, number, point)
                                   for number, point in enumerate(points[:starts or None]))


def main():
    parser = argparse.ArgumentParser(prog="script/soak --failed-calls", description=__doc__)
    parser.add_argument("--program", required=True)
    parser.add_argument("--starts", type=int, required=True)
    arguments = parser.parse_args()
    end_on_signals()
    try:
        outcomes = sweep(arguments.program, arguments.starts)
    except (OSError, RuntimeError, Timeout) as problem:
        sys.exit(f"soak: {problem}")
    for outcome in (STARTED, SAID, LATE, FOREIGN, HANG, CRASH, NOT_MADE):
        print(f"{outcome:<40}{outcomes[outcome]:>5}")
    print(f"{'starts':<40}{sum(outcomes.values()):>5}")
    if outcomes[HANG] or outcomes[CRASH] or set(outcomes) <= {NOT_MADE}:
        sys.exit(1)


if __name__ == "__main__":
    main()
