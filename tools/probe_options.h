// The command line of tarnwick-probe.
#pragma once

#include <optional>
#include <string>
#include <variant>

namespace tarnwick::probe {

struct Options {
    /// Root of the tree that is read.
    std::string root = "/";
    /// Lines to print; at least 1.
    int samples = 1;
    /// Seconds between two readings, above 0.
    double interval = 2;
    /// Greatest number of rows of a process list; 0 or more.
    int limit = 3;
    /// Home directory whose volume is measured; absent: that of the user.
    std::optional<std::string> home;
};

/// Something other than a measurement was asked for: the text to print.
struct Help {
    std::string text;
};

/// The command line is wrong: what is, in one line.
struct UsageError {
    std::string message;
};

/// `arguments` is the command line of main(), its name included.
std::variant<Options, Help, UsageError> parseOptions(int count, char* const* arguments);

}  // namespace tarnwick::probe
