# SPDX-License-Identifier: MIT
"""Tells from samples of a running program whether it grows."""

import dataclasses

# kB above the warm-up. The heap's pages fill slowly; a panel that kept one kB would pass this after
# as many panels as are opened in ten minutes.
MEMORY_LIMIT = 512


@dataclasses.dataclass(frozen=True)
class Sample:
    # kB of memory that only this program has.
    anonymous: int
    descriptors: int
    threads: int
    # Opened so far.
    panels: int


_LIMITS = (("anonymous", "kB of anonymous memory", MEMORY_LIMIT),
           ("descriptors", "descriptors", 0),
           ("threads", "threads", 0))


def growth(samples):
    """What grew, in one line, or None.

    The first third of the samples is the warm-up. What has grown for good is above the most of the
    warm-up in every sample of the last third; what comes and goes is not.
    """
    third = max(1, len(samples) // 3)
    for field, unit, limit in _LIMITS:
        before = max(getattr(sample, field) for sample in samples[:third])
        after = min(getattr(sample, field) for sample in samples[-third:])
        if after > before + limit:
            return f"at most {before:,} {unit} in the warm-up, at least {after:,} at the end"
    return None
