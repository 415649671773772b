# SPDX-License-Identifier: MIT
"""Every number that the portable code has of macOS is tied to the system's headers."""

import os
import pathlib
import re
import unittest

ROOT = pathlib.Path(os.environ["TARNWICK_SCRIPTS"]).parent

# Where such numbers stand.
HEADERS = [
    "platform/hot_keys.h",
    "platform/network_interfaces.h",
    "platform/process_table.h",
    "platform/macos/readers/interface_counter_reader.h",
    "platform/macos/readers/kernel_records.h",
    "platform/macos/readers/process_records.h",
    "platform/macos/readers/routing_messages.h",
    "services/processor_loads.h",
    "settings/hot_key_service.h",
    "settings/key_codes.h",
    "settings/shortcut.h",
]
# Numbers of the program's own.
OWN = {"kHotKeyID", "kPending"}


def without_comments(path):
    return re.sub("//.*", "", (ROOT / path).read_text())


def numbers(header):
    return re.findall(r"(?:static|inline) constexpr [^;={(]*?\b(k[A-Z]\w*)\b",
                      without_comments(header))


def tied():
    """The names in all conditions that the compiler for macOS checks."""
    text = "".join(without_comments(f"platform/macos/{name}")
                   for name in ("kernel_numbers.cpp", "desktop_numbers.mm"))
    return set(re.findall(r"\bk[A-Z]\w*", " ".join(
        re.findall(r"static_assert\((.*?)\);", text, re.DOTALL))))


class Numbers(unittest.TestCase):
    def test_are_found_where_they_stand(self):
        self.assertIn("kProcessRecordSize", numbers("platform/macos/readers/process_records.h"))
        self.assertIn("kExists", numbers("platform/hot_keys.h"))
        self.assertIn("kCommand", numbers("settings/shortcut.h"))

    def test_are_all_tied_to_the_headers_of_the_system(self):
        conditions = tied()
        for header in HEADERS:
            for name in numbers(header):
                if name not in OWN:
                    with self.subTest(header=header, number=name):
                        self.assertIn(name, conditions)


if __name__ == "__main__":
    unittest.main()
