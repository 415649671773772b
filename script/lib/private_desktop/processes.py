# SPDX-License-Identifier: MIT
"""Processes that end with the script that started them, on every way out."""

import ctypes
import os
import signal
import subprocess
import time

_PR_SET_CHILD_SUBREAPER = 36
# Seconds for a polite end; then the rest is killed.
_GRACE = 3.0


def end_on_signals():
    """Lets the usual signals unwind the script, so that everything it started is ended."""

    def leave(number, _frame):
        raise SystemExit(128 + number)

    for number in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP):
        signal.signal(number, leave)


def descendants(ancestor):
    """Ids of all living processes below one."""
    parents = {}
    for entry in os.listdir("/proc"):
        if not entry.isdigit():
            continue
        try:
            with open(f"/proc/{entry}/stat", encoding="utf-8", errors="replace") as file:
                state, parent = file.read().rpartition(")")[2].split()[:2]
        except OSError:
            continue
        if state != "Z":
            parents[int(entry)] = int(parent)
    found = []
    for pid in parents:
        above = parents.get(pid)
        while above is not None and above != ancestor:
            above = parents.get(above)
        if above is not None:
            found.append(pid)
    return found


def _reap():
    try:
        while os.waitpid(-1, os.WNOHANG)[0] != 0:
            pass
    except ChildProcessError:
        pass


class Processes:
    """Starts processes and ends them, with everything that they started in turn."""

    def __init__(self, log_folder):
        self._log_folder = log_folder
        self._started = []
        # Orphans below this process become its children instead of init's, so that none is lost.
        ctypes.CDLL(None).prctl(_PR_SET_CHILD_SUBREAPER, 1, 0, 0, 0)

    def start(self, argv, env, log, **options):
        """Starts `argv`; what it prints goes to the file `log`. It dies if this script is killed."""
        with open(os.path.join(self._log_folder, log), "ab") as output:
            process = subprocess.Popen(
                ["setpriv", "--pdeathsig", "KILL", "--", *argv],
                env=env, stdin=subprocess.DEVNULL, stdout=output, stderr=output,
                start_new_session=True, **options)
        self._started.append(process)
        return process

    def end(self, process, number=signal.SIGTERM, patience=_GRACE):
        """Ends one process; its exit status, negative when a signal ended it."""
        if process.poll() is None:
            process.send_signal(number)
            try:
                process.wait(patience)
            except subprocess.TimeoutExpired:
                process.kill()
                process.wait()
        if process in self._started:
            self._started.remove(process)
        return process.returncode

    def end_all(self):
        # A second signal must not cut this short.
        numbers = (signal.SIGINT, signal.SIGTERM, signal.SIGHUP)
        before = {number: signal.signal(number, signal.SIG_IGN) for number in numbers}
        for process in reversed(list(self._started)):
            self.end(process)
        for number in (signal.SIGTERM, signal.SIGKILL):
            end = time.monotonic() + _GRACE
            left = descendants(os.getpid())
            for pid in left:
                try:
                    os.kill(pid, number)
                except ProcessLookupError:
                    pass
            while left and time.monotonic() < end:
                _reap()
                left = descendants(os.getpid())
                time.sleep(0.01)
        _reap()
        for number, handler in before.items():
            signal.signal(number, handler)
