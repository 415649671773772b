# SPDX-License-Identifier: MIT
"""Idle processes: what lists processes costs the more, the more of them there are."""

import contextlib
import os
import signal
import sys

from .processes import descendants
from .wait import until

# Forks as many processes as its argument says. All of them wait until they are ended.
_PROGRAM = """
import os, signal, sys
for _ in range(int(sys.argv[1])):
    if os.fork() == 0:
        break
signal.pause()
"""


def population():
    """How many processes the machine has now."""
    return sum(entry.isdigit() for entry in os.listdir("/proc"))


@contextlib.contextmanager
def crowd(desktop, number):
    """Runs idle processes, so many that the machine has at least `number` processes."""
    missing = max(0, number - population())
    host = desktop.processes.start([sys.executable, "-c", _PROGRAM, str(missing)],
                                   desktop.env, "crowd")
    try:
        until(lambda: len(descendants(host.pid)) == missing, f"there are {number} processes")
        yield
    finally:
        for pid in descendants(host.pid):
            os.kill(pid, signal.SIGKILL)
        desktop.processes.end(host)
