# SPDX-License-Identifier: MIT
"""Waiting for a condition instead of for a time."""

import time

# Long enough for a slow, busy machine; a condition that holds ends the wait at once.
PATIENCE = 30.0
_STEP = 0.02


class Timeout(Exception):
    """The condition did not become true in time."""


def until(condition, what, patience=PATIENCE):
    """The first true answer of `condition`. Raises Timeout, naming `what`, after `patience` s."""
    end = time.monotonic() + patience
    while True:
        answer = condition()
        if answer:
            return answer
        if time.monotonic() > end:
            raise Timeout(f"{what}: not within {patience:g} s")
        time.sleep(_STEP)
