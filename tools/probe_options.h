// SPDX-License-Identifier: MIT
// The command line of tarnwick-probe.
#pragma once

#include <optional>
#include <string>
#include <variant>

namespace tarnwick::probe {

enum class Format {
    /// One JSON object a line.
    json,
    prometheus,
    openMetrics,
    /// A page for people.
    text,
    /// One line a sample for a custom module of waybar.
    waybar,
};

struct Options {
    Format format = Format::json;
    /// Also the metrics that a node exporter has.
    bool all = false;
    /// Settings file with the thresholds; absent: the user's own, if there is one.
    std::optional<std::string> thresholds;

    /// Root of the tree that is read.
    std::string root = "/";
    /// Whether a page takes the place of the one before; then the samples go on without end.
    bool watches = false;
    /// File that each sample replaces; absent: standard output.
    std::optional<std::string> output;
    /// Samples to take, up to 1,000,000; 0 goes on until the reader has gone.
    int samples = 1;
    /// Seconds between two readings, up to 86,400. 0 takes a single reading, which has no shares
    /// and no rates; then there is one sample.
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
