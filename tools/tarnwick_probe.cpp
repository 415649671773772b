// tarnwick-probe: what the program measures, as lines of JSON for terminals, scripts and bug
// reports. Ends with 0, with 1 when its output cannot be written, with 2 for a wrong command line.
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <string>
#include <variant>

#include "tools/probe_options.h"
#include "tools/probed_machine.h"

namespace {

using namespace tarnwick::probe;

constexpr int kUsageStatus = 2;

/// Moments at equal distances, so that the samples do not drift.
class Pace {
 public:
    explicit Pace(double interval) : interval_(interval) { clock_gettime(CLOCK_MONOTONIC, &next_); }

    void wait() {
        constexpr long kNanoseconds = 1'000'000'000;
        const auto whole = static_cast<time_t>(interval_);
        next_.tv_sec += whole;
        next_.tv_nsec += static_cast<long>((interval_ - static_cast<double>(whole)) * kNanoseconds);
        next_.tv_sec += next_.tv_nsec / kNanoseconds;
        next_.tv_nsec %= kNanoseconds;
        while (clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &next_, nullptr) == EINTR) {
        }
    }

 private:
    double interval_;
    timespec next_{};
};

bool print(const std::string& text) {
    return std::fputs(text.c_str(), stdout) >= 0 && std::fflush(stdout) == 0;
}

int complain(const std::string& message, int status) {
    std::fprintf(stderr, "tarnwick-probe: %s\n", message.c_str());
    return status;
}

int probe(const Options& options) {
    ProbedMachine machine(options);
    Pace pace(options.interval);
    // Only what rates are counted from.
    machine.read();
    for (int i = 0; i < options.samples; ++i) {
        pace.wait();
        if (!print(reportLine(machine.read()) + '\n')) {
            return complain("the output cannot be written", EXIT_FAILURE);
        }
    }
    return EXIT_SUCCESS;
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
