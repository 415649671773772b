// SPDX-License-Identifier: MIT
#include "tools/probe_options.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <filesystem>
#include <getopt.h>
#include <locale>
#include <sstream>
#include <string_view>
#include <system_error>
#include <utility>

namespace tarnwick::probe {
namespace {

constexpr int kMostSamples = 1'000'000;
constexpr int kLargestLimit = 100'000;
constexpr double kLongestInterval = 86400;

constexpr std::string_view kHelp =
    "Usage: tarnwick-probe [OPTION]...\n"
    "Prints what Tarnwick measures on this machine: one JSON object a line and sample, or another\n"
    "format.\n"
    "\n"
    "  --format FORMAT     json, prometheus, openmetrics, text or waybar (json)\n"
    "  --watch             with text, draw the page again and again\n"
    "  --all               with metrics, also those that a node exporter has\n"
    "  --thresholds FILE   settings file with the thresholds (the user's)\n"
    "  --root DIR          read the machine recorded below DIR instead of this one (/)\n"
    "  --output FILE       replace FILE with each sample instead of printing it\n"
    "  --samples N         samples to print (1); 0 goes on until the reader has gone\n"
    "  --interval SECONDS  time between two samples (2); 0 takes one reading without rates\n"
    "  --limit N           greatest number of rows of a list (3)\n"
    "  --home DIR          measure the volume that holds DIR (the user's home)\n"
    "  --help, --version   print this text or the version, and end\n";

constexpr std::array<option, 13> kOptions = {{
    {"format", required_argument, nullptr, 'f'},
    {"all", no_argument, nullptr, 'a'},
    {"thresholds", required_argument, nullptr, 't'},
    {"output", required_argument, nullptr, 'o'},
    {"watch", no_argument, nullptr, 'w'},
    {"root", required_argument, nullptr, 'r'},
    {"samples", required_argument, nullptr, 's'},
    {"interval", required_argument, nullptr, 'i'},
    {"limit", required_argument, nullptr, 'l'},
    {"home", required_argument, nullptr, 'h'},
    {"help", no_argument, nullptr, '?' + 256},
    {"version", no_argument, nullptr, 'v'},
    {nullptr, 0, nullptr, 0},
}};

constexpr std::array<std::pair<std::string_view, Format>, 5> kFormats = {{
    {"json", Format::json},
    {"prometheus", Format::prometheus},
    {"openmetrics", Format::openMetrics},
    {"text", Format::text},
    {"waybar", Format::waybar},
}};

std::optional<int> integerIn(std::string_view text) {
    int value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size()) {
        return std::nullopt;
    }
    return value;
}

/// A decimal number, with a point in every language.
std::optional<double> numberIn(std::string_view text) {
    if (text.find_first_not_of("0123456789.eE+-") != text.npos || text.starts_with('+')) {
        return std::nullopt;
    }
    // A stream, because std::from_chars for floating point is missing in some standard libraries.
    std::istringstream stream{std::string(text)};
    stream.imbue(std::locale::classic());
    double value = 0;
    if (!(stream >> value) || stream.peek() != std::istringstream::traits_type::eof()) {
        return std::nullopt;
    }
    return value;
}

UsageError notA(std::string_view option, std::string_view range) {
    return {"--" + std::string(option) + " takes " + std::string(range)};
}

/// Stores `value` in `options`. Absent on success.
std::optional<UsageError> take(Options& options, int name, std::string_view value) {
    switch (name) {
        case 'f': {
            const auto* const format =
                std::ranges::find(kFormats, value, &std::pair<std::string_view, Format>::first);
            if (format == kFormats.end()) {
                return notA("format", "json, prometheus, openmetrics, text or waybar");
            }
            options.format = format->second;
            return std::nullopt;
        }
        case 'a':
            options.all = true;
            return std::nullopt;
        case 'w':
            options.watches = true;
            options.samples = 0;
            return std::nullopt;
        case 't':
            options.thresholds = value;
            return std::nullopt;
        case 'o':
            options.output = value;
            return std::nullopt;
        case 'r': {
            std::error_code error;
            if (!std::filesystem::is_directory(value, error)) {
                return UsageError{"there is no folder " + std::string(value)};
            }
            // Every spelling of "/" means this machine.
            options.root = std::filesystem::equivalent(value, "/", error) ? "/" : value;
            return std::nullopt;
        }
        case 's': {
            const auto number = integerIn(value);
            if (!number || *number < 0 || *number > kMostSamples) {
                return notA("samples", "a number from 0 to 1000000");
            }
            options.samples = *number;
            return std::nullopt;
        }
        case 'i': {
            const auto number = numberIn(value);
            if (!number || !(*number >= 0) || !(*number <= kLongestInterval)) {
                return notA("interval", "a number of seconds from 0 to 86400");
            }
            options.interval = *number;
            return std::nullopt;
        }
        case 'l': {
            const auto number = integerIn(value);
            if (!number || *number < 0 || *number > kLargestLimit) {
                return notA("limit", "a number from 0 to 100000");
            }
            options.limit = *number;
            return std::nullopt;
        }
        default:
            if (!value.starts_with('/')) {
                return notA("home", "an absolute path");
            }
            options.home = value;
            return std::nullopt;
    }
}

bool isMetrics(Format format) {
    return format == Format::prometheus || format == Format::openMetrics;
}

/// Options that do not go together. Absent where all is well.
std::optional<UsageError> conflict(const Options& options) {
    if (options.all && !isMetrics(options.format)) {
        return UsageError{"--all goes with --format prometheus and openmetrics"};
    }
    if (isMetrics(options.format) && options.samples != 1 && !options.output) {
        return UsageError{"metrics are one text, so more than one sample goes with --output"};
    }
    if (options.watches && (options.format != Format::text || options.output)) {
        return UsageError{"--watch goes with --format text and without --output"};
    }
    if (options.output && options.output->empty()) {
        return notA("output", "the name of a file");
    }
    if (options.interval == 0 && options.samples != 1) {
        return UsageError{"--interval 0 goes with one sample"};
    }
    return std::nullopt;
}

}  // namespace

std::variant<Options, Help, UsageError> parseOptions(int count, char* const* arguments) {
    Options options;
    // Makes getopt start again, even if it was used before.
    optind = 0;
    // parseOptions() composes the error messages itself.
    opterr = 0;
    while (true) {
        const int current = optind > 0 ? optind : 1;
        const int name = getopt_long(count, arguments, "+:", kOptions.data(), nullptr);
        if (name == -1) {
            break;
        }
        switch (name) {
            case '?':
                return UsageError{"unknown option " + std::string(arguments[current])};
            case ':':
                return UsageError{std::string(arguments[current]) + " needs a value"};
            case '?' + 256:
                return Help{std::string(kHelp)};
            case 'v':
                return Help{"tarnwick-probe " TARNWICK_VERSION "\n"};
            default:
                if (auto error = take(options, name, optarg ? optarg : std::string_view())) {
                    return *error;
                }
        }
    }
    if (optind < count) {
        return UsageError{"what is " + std::string(arguments[optind]) + " for?"};
    }
    if (auto error = conflict(options)) {
        return *error;
    }
    return options;
}

}  // namespace tarnwick::probe
