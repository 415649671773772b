// SPDX-License-Identifier: MIT
// tarnwick-probe: what the program measures, as lines of JSON for terminals, scripts and bug
// reports. Ends with 0, with 1 when its output cannot be written, with 2 for a wrong command line.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <string>
#include <thread>
#include <variant>

#include "platform/linux/settings/settings_file.h"
#include "tools/exposition.h"
#include "tools/metrics_report.h"
#include "tools/pace.h"
#include "tools/probe_options.h"
#include "tools/probed_machine.h"
#include "tools/threshold_file.h"

namespace {

using namespace tarnwick::probe;
using tarnwick::MetricThresholds;

constexpr int kUsageStatus = 2;

using Clock = std::chrono::steady_clock;
using Seconds = std::chrono::duration<double>;

double now() {
    return Seconds(Clock::now().time_since_epoch()).count();
}

void waitUntil(double moment) {
    std::this_thread::sleep_until(
        Clock::time_point(std::chrono::duration_cast<Clock::duration>(Seconds(moment))));
}

bool print(const std::string& text) {
    return std::fputs(text.c_str(), stdout) >= 0 && std::fflush(stdout) == 0;
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

std::string report(const MachineSample& sample, const Options& options) {
    const MetricsScope scope{.all = options.all, .limit = options.limit};
    switch (options.format) {
        case Format::json:
            break;
        case Format::prometheus:
            return metricsReport(sample, Exposition::Format::prometheus, scope);
        case Format::openMetrics:
            return metricsReport(sample, Exposition::Format::openMetrics, scope);
    }
    return reportLine(sample) + '\n';
}

/// False if the output cannot be written.
bool printSamples(ProbedMachine& machine, const Options& options,
                  const MetricThresholds& thresholds) {
    Pace pace(options.interval, now());
    if (options.interval > 0) {
        // This reading only starts the counters that rates are computed from.
        machine.read();
    }
    for (int i = 0; i < options.samples; ++i) {
        waitUntil(pace.next());
        pace.begin(now());
        MachineSample sample = machine.read();
        sample.thresholds = thresholds;
        if (!print(report(sample, options))) {
            return false;
        }
    }
    return true;
}

/// Empty where there is none, and for a recorded machine, which has no user.
std::string usersSettings(const Options& options) {
    return options.root == "/" ? tarnwick::platform::settingsFile([](const char* name) {
                                     return std::getenv(name);
                                 }).native()
                               : std::string();
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
    static auto& machine = *new ProbedMachine(options);
    const auto thresholds = thresholdsFor(machine, options);
    const bool isPrinted = thresholds && printSamples(machine, options, *thresholds);
    machine.end();
    if (!thresholds) {
        return kUsageStatus;
    }
    return isPrinted ? EXIT_SUCCESS : complain("the output cannot be written", EXIT_FAILURE);
}

}  // namespace

int main(int argc, char* argv[]) {
    const auto parsed = parseOptions(argc, argv);
    if (const auto* error = std::get_if<UsageError>(&parsed)) {
        return complain(error->message, kUsageStatus);
    }
    if (const auto* help = std::get_if<Help>(&parsed)) {
        return print(help->text) ? EXIT_SUCCESS
                                 : complain("the output cannot be written", EXIT_FAILURE);
    }
    return probe(std::get<Options>(parsed));
}
