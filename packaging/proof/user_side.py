# SPDX-License-Identifier: MIT
"""What an ordinary user sees of the installed program while packages come and go.

Reads what has happened to the packages, a word a line, and answers with the same word after it has
looked; started by packaging/proof/inside.
"""

import os
import pathlib
import sys

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[2] / "script/lib"))

from private_desktop import PrivateDesktop, Program, until  # noqa: E402
from private_desktop.processes import end_on_signals  # noqa: E402

PROGRAM = "/usr/bin/tarnwick"


def say(text):
    print(text, flush=True)


def expect(word):
    line = sys.stdin.readline().strip()
    if line != word:
        raise SystemExit(f"{line!r} came instead of {word!r}")


def executable(program):
    return os.readlink(f"/proc/{program.pid}/exe")


def check(holds, what):
    if not holds:
        raise SystemExit("not so: " + what)
    say(what)


def start(desktop, log):
    program = Program(desktop, [PROGRAM], log).start()
    program.wait_for_item()
    until(program.item_place, "the tray shows the icon")
    return program


def open_and_close(program):
    program.open_panel()
    until(program.panel_picture, "the panel is drawn")
    program.close_panel()


def belongings(desktop):
    """Files in the home folder whose path has the program's name in it."""
    home = pathlib.Path(desktop.path("home"))
    return sorted(str(path.relative_to(home)) for path in home.rglob("*")
                  if path.is_file() and "tarnwick" in str(path.relative_to(home)).lower())


def main():
    end_on_signals()
    with PrivateDesktop() as desktop:
        expect("installed")
        first = start(desktop, "first")
        if first.wait_for_greeting():
            first.close_panel()
        open_and_close(first)
        check(executable(first) == PROGRAM, f"{PROGRAM} shows its item and its panel")
        say("installed")

        expect("upgraded")
        check(first.runs() and executable(first) == PROGRAM + " (deleted)",
              "the program of before still runs")
        open_and_close(first)
        say("it still shows its panel after a click")
        second = Program(desktop, [PROGRAM], "second").start()
        check(second.process.wait(30) == 0, "the new program hands over to it and ends")
        until(first.panel_picture, "the panel of the program of before is open")
        check(first.end() == 0 and first.output() == "", "it ends in silence")
        third = start(desktop, "third")
        open_and_close(third)
        check(executable(third) == PROGRAM, "the next start is the new program")
        say("upgraded")

        expect("removed")
        check(third.runs() and third.item_place(), "the program goes on after its removal")
        check(third.end() == 0 and third.output() == "", "it ends in silence")
        left = belongings(desktop)
        check(all(name.startswith(".config/tarnwick/") for name in left),
              "the home holds its settings alone: " + ", ".join(left))
        say("removed")


main()
