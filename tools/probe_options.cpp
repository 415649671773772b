// SPDX-License-Identifier: MIT
#include "tools/probe_options.h"

#include <array>
#include <charconv>
#include <cmath>
#include <filesystem>
#include <getopt.h>
#include <string_view>
#include <system_error>

namespace tarnwick::probe {
namespace {

constexpr int kMostSamples = 1'000'000;
constexpr int kLargestLimit = 100'000;
constexpr double kLongestInterval = 86400;

constexpr std::string_view kHelp =
    "Usage: tarnwick-probe [--root DIR] [--samples N] [--interval SECONDS] [--limit N]\n"
    "                      [--home DIR]\n"
    "Prints what Tarnwick measures on this machine, one JSON object a line and sample.\n"
    "\n"
    "  --root DIR          read the machine recorded below DIR instead of this one (/)\n"
    "  --samples N         samples to print (1)\n"
    "  --interval SECONDS  time between two samples (2)\n"
    "  --limit N           greatest number of rows of a process list (3)\n"
    "  --home DIR          measure the volume that holds DIR (the user's home)\n"
    "  --help, --version   print this text or the version, and end\n";

constexpr std::array<option, 8> kOptions = {{
    {"root", required_argument, nullptr, 'r'},
    {"samples", required_argument, nullptr, 's'},
    {"interval", required_argument, nullptr, 'i'},
    {"limit", required_argument, nullptr, 'l'},
    {"home", required_argument, nullptr, 'h'},
    {"help", no_argument, nullptr, '?' + 256},
    {"version", no_argument, nullptr, 'v'},
    {nullptr, 0, nullptr, 0},
}};

template <class Number>
std::optional<Number> parse(std::string_view text) {
    Number value{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size()) {
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
            const auto number = parse<int>(value);
            if (!number || *number < 1 || *number > kMostSamples) {
                return notA("samples", "a number from 1 to 1000000");
            }
            options.samples = *number;
            return std::nullopt;
        }
        case 'i': {
            const auto number = parse<double>(value);
            if (!number || !(*number > 0) || !(*number <= kLongestInterval)) {
                return notA("interval", "a number of seconds above 0 and up to 86400");
            }
            options.interval = *number;
            return std::nullopt;
        }
        case 'l': {
            const auto number = parse<int>(value);
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
                if (auto error = take(options, name, optarg)) {
                    return *error;
                }
        }
    }
    if (optind < count) {
        return UsageError{"what is " + std::string(arguments[optind]) + " for?"};
    }
    return options;
}

}  // namespace tarnwick::probe
