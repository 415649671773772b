# SPDX-License-Identifier: MIT
"""A desktop of its own for one program: display, session bus, window manager, tray, home folder.

Used by script/run, script/footprint and the desktop tests. Nothing of the user's session is read
or touched, and nothing is left when it ends, whichever way it ends.
"""

from .desktop import PrivateDesktop
from .program import Program
from .wait import Timeout, until

__all__ = ["PrivateDesktop", "Program", "Timeout", "until"]
