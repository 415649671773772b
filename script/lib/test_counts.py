# SPDX-License-Identifier: MIT
"""Adds up what the tests have reported: test_counts.py FOLDER...

Each folder holds what ctest says of its entries, in ctest.xml, and for an entry that runs a program
of many tests what that program says of each of them, in ENTRY.xml; such entries begin with "tests_".
Prints the name of every test that has failed, and on the last line "N passed, N failed, N skipped".
Such a program that failed without saying why, one that crashed or took too long, is one more failure.
Ends with 1 where a test has failed or none was run.
"""

import pathlib
import sys
import xml.etree.ElementTree as ElementTree
from collections import Counter

PASSED, FAILED, SKIPPED = "passed", "failed", "skipped"


def outcome_of_entry(entry):
    """What became of one entry of ctest."""
    if entry.get("status") == "run":
        return PASSED
    why = entry.find("skipped")
    # An entry whose program is missing is not run either, which is no way of passing.
    if entry.get("status") == "disabled" or (
            why is not None and why.get("message", "").startswith("SKIP_")):
        return SKIPPED
    return FAILED


def outcome_of_test(test):
    """What became of one test of a program."""
    if test.find("failure") is not None:
        return FAILED
    if test.get("result") != "completed":
        return SKIPPED
    return PASSED


def read_program(report):
    """Names and outcomes of a program's tests; empty where it has not lived to report them."""
    try:
        tests = ElementTree.parse(report).iter("testcase")
    except (OSError, ElementTree.ParseError):
        return []
    return [(f"{test.get('classname')}.{test.get('name')}", outcome_of_test(test))
            for test in tests]


def read_folder(folder):
    """Names and outcomes of all tests that a folder tells of."""
    try:
        entries = ElementTree.parse(folder / "ctest.xml").iter("testcase")
    except OSError:
        return
    for entry in entries:
        name, outcome = entry.get("name"), outcome_of_entry(entry)
        if not name.startswith("tests_"):
            yield name, outcome
            continue
        tests = read_program(folder / f"{name}.xml")
        yield from ((f"{name}: {test}", became) for test, became in tests)
        if not tests or (outcome == FAILED and all(became != FAILED for _, became in tests)):
            yield f"{name}: it did not come to its end", FAILED


def main():
    counts = Counter()
    for folder in sys.argv[1:]:
        for name, outcome in read_folder(pathlib.Path(folder)):
            counts[outcome] += 1
            if outcome == FAILED:
                print(f"failed: {name}")
    print(", ".join(f"{counts[each]} {each}" for each in (PASSED, FAILED, SKIPPED)))
    return 1 if counts[FAILED] or not counts[PASSED] else 0


sys.exit(main())
