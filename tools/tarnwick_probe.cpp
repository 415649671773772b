// SPDX-License-Identifier: MIT
// tarnwick-probe: what the program measures, as text for terminals, scripts, servers and bug
// reports. Ends with 0, with 1 when its output cannot be written, with 2 for a wrong command line.
#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <string>
#include <string_view>
#include <unistd.h>
#include <utility>
#include <variant>

#include "tools/exposition.h"
#include "tools/metrics_report.h"
#include "tools/pace.h"
#include "tools/probe_options.h"
#include "tools/probe_system.h"
#include "tools/probed_machine.h"
#include "tools/sample_output.h"
#include "tools/text_page.h"
#include "tools/threshold_file.h"
#include "tools/waybar_line.h"

namespace {

using namespace tarnwick::probe;
using tarnwick::MetricThresholds;

constexpr int kUsageStatus = 2;

using Clock = std::chrono::steady_clock;
using Seconds = std::chrono::duration<double>;

double now() {
    return Seconds(Clock::now().time_since_epoch()).count();
}

/// Prints the message in one line: control characters in it become "?".
int complain(std::string message, int status) {
    std::replace_if(
        message.begin(), message.end(),
        [](char character) { return (character >= 0 && character < ' ') || character == 0x7f; },
        '?');
    std::fprintf(stderr, "tarnwick-probe: %s\n", message.c_str());
    return status;
}

/// A terminal that shows colours to somebody who has not refused them.
bool hasColor(const Options& options) {
    const auto value = [](const char* name) {
        const char* const text = std::getenv(name);
        return std::string_view(text ? text : "");
    };
    return !options.output && ::isatty(STDOUT_FILENO) != 0 && value("NO_COLOR").empty() &&
           value("TERM") != "dumb";
}

/// In the place of the page before, or behind it where there is no terminal.
std::string page(const MachineSample& sample, const Options& options) {
    constexpr std::string_view kClear = "\033[H\033[2J";
    const std::string text = textPage(sample, hasColor(options));
    if (!options.watches) {
        return text;
    }
    return ::isatty(STDOUT_FILENO) != 0 ? std::string(kClear) + text : text + '\n';
}

std::string report(const MachineSample& sample, const Options& options) {
    const MetricsScope scope{.all = options.all, .limit = options.limit};
    switch (options.format) {
        case Format::json:
            break;
        case Format::text:
            return page(sample, options);
        case Format::waybar:
            return waybarLine(sample) + '\n';
        case Format::prometheus:
            return metricsReport(sample, Exposition::Format::prometheus, scope);
        case Format::openMetrics:
            return metricsReport(sample, Exposition::Format::openMetrics, scope);
    }
    return reportLine(sample) + '\n';
}

/// The status to end with.
int finish(SampleOutput::Outcome outcome, const SampleOutput& output) {
    return outcome == SampleOutput::Outcome::failed ? complain(output.trouble(), EXIT_FAILURE)
                                                    : EXIT_SUCCESS;
}

int putSamples(ProbedMachine& machine, const Options& options, const MetricThresholds& thresholds) {
    SampleOutput output(options.output);
    auto outcome = SampleOutput::Outcome::written;
    Pace pace(options.interval, now());
    if (options.interval > 0) {
        // This reading only starts the counters that rates are computed from.
        machine.read();
    }
    const bool isEndless = options.samples == 0;
    for (int left = options.samples;
         outcome == SampleOutput::Outcome::written && (isEndless || left > 0);
         left -= isEndless ? 0 : 1) {
        if (!output.waitUntil(pace.next())) {
            return EXIT_SUCCESS;
        }
        pace.begin(now());
        MachineSample sample = machine.read();
        sample.thresholds = thresholds;
        outcome = output.put(report(sample, options));
    }
    return finish(outcome, output);
}

/// Empty where there is none, and for a recorded machine, which has no user.
std::string usersSettings(const Options& options) {
    return options.root == "/" ? usersSettingsFile() : std::string();
}

/// Absent when the file that the user has named is of no use; that has been said then.
std::optional<MetricThresholds> thresholdsFor(ProbedMachine& machine, const Options& options) {
    const std::string file = options.thresholds.value_or(usersSettings(options));
    if (file.empty() && !options.thresholds) {
        return MetricThresholds{};
    }
    const auto reading = machine.readThresholds(file).value_or(
        ThresholdReading{.trouble = "the file system does not answer"});
    if (options.thresholds && !reading.trouble.empty()) {
        complain("no thresholds in " + file + ": " + reading.trouble, kUsageStatus);
        return std::nullopt;
    }
    if (!reading.trouble.empty() && !reading.isMissing) {
        complain("the default thresholds count, not those of " + file + ": " + reading.trouble,
                 EXIT_SUCCESS);
    }
    return reading.thresholds;
}

int probe(const Options& options) {
    auto sources = makeSources(options);
    if (const auto* error = std::get_if<UsageError>(&sources)) {
        return complain(error->message, kUsageStatus);
    }
    static auto& machine = *new ProbedMachine(std::get<Sources>(std::move(sources)), options);
    const auto thresholds = thresholdsFor(machine, options);
    const int status = thresholds ? putSamples(machine, options, *thresholds) : kUsageStatus;
    machine.end();
    return status;
}

}  // namespace

int main(int argc, char* argv[]) {
    // A pipe that is closed is an answer of the output, not the end.
    std::signal(SIGPIPE, SIG_IGN);
    const auto parsed = parseOptions(argc, argv);
    if (const auto* error = std::get_if<UsageError>(&parsed)) {
        return complain(error->message, kUsageStatus);
    }
    if (const auto* help = std::get_if<Help>(&parsed)) {
        SampleOutput output;
        return finish(output.put(help->text), output);
    }
    return probe(std::get<Options>(parsed));
}
