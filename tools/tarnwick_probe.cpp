// SPDX-License-Identifier: MIT
// tarnwick-probe: what the program measures, as lines of JSON for terminals, scripts and bug
// reports. Ends with 0, with 1 when its output cannot be written, with 2 for a wrong command line.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <thread>
#include <variant>

#include "tools/pace.h"
#include "tools/probe_options.h"
#include "tools/probed_machine.h"

namespace {

using namespace tarnwick::probe;

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

/// False if the output cannot be written.
bool printSamples(ProbedMachine& machine, const Options& options) {
    Pace pace(options.interval, now());
    // The first reading only starts the counters that rates are computed from.
    machine.read();
    for (int i = 0; i < options.samples; ++i) {
        waitUntil(pace.next());
        pace.begin(now());
        if (!print(reportLine(machine.read()) + '\n')) {
            return false;
        }
    }
    return true;
}

int probe(const Options& options) {
    static auto& machine = *new ProbedMachine(options);
    const bool isPrinted = printSamples(machine, options);
    machine.end();
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
