// SPDX-License-Identifier: MIT
// The command line of tarnwick-probe.
#pragma once

#include <optional>
#include <string>
#include <variant>

namespace tarnwick::probe {

struct Options {
    /// Root of the tree that is read.
    std::string root = "/";
    /// Lines to print, 1 to 1,000,000.
    int samples = 1;
    /// Seconds between two readings, above 0 and up to 86,400.
    double interval = 2;
    /// Greatest number of rows of a process list, 0 to 100,000.
    int limit = 3;
    /// Home directory; its volume is measured. Absolute path; absent: the user's own.
    std::optional<std::string> home;
};

/// The user asked for a text, not for a measurement: the text to print.
struct Help {
    std::string text;
};

/// The command line is wrong: the reason, in one line.
struct UsageError {
    std::string message;
};

/// Requires: `arguments` is the command line of main(), including the program's name.
std::variant<Options, Help, UsageError> parseOptions(int count, char* const* arguments);

}  // namespace tarnwick::probe
