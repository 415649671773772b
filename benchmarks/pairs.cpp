// SPDX-License-Identifier: MIT
#include "benchmarks/pairs.h"

#include <cstdio>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace tarnwick::benchmarks {

namespace {

// Shows the runs as usual and keeps the median of each.
class MedianReporter final : public benchmark::ConsoleReporter {
 public:
    MedianReporter() : ConsoleReporter(OO_Tabular) {}

    void ReportRuns(const std::vector<Run>& runs) override {
        ConsoleReporter::ReportRuns(runs);
        for (const Run& run : runs) {
            // A single repetition has no median, so its own time is used.
            if (run.run_type == Run::RT_Iteration || run.aggregate_name == "median") {
                medians_[run.run_name.function_name] =
                    run.GetAdjustedCPUTime() / benchmark::GetTimeUnitMultiplier(run.time_unit);
            }
        }
    }

    // Processor time of the work of a pair, milliseconds, or 0 when it did not run.
    double milliseconds(const std::string& name) const {
        const auto work = medians_.find(name);
        return work != medians_.end() ? work->second * 1e3 : 0;
    }
    // The ratio of a pair, or 0 when one of them did not run.
    double ratio(const std::string& name) const {
        const auto work = medians_.find(name);
        const auto floor = medians_.find(name + ", floor");
        return work != medians_.end() && floor != medians_.end() ? work->second / floor->second : 0;
    }

 private:
    std::map<std::string, double> medians_;
};

}  // namespace

int runPairs(int argc, char** argv, std::span<const Pair> pairs) {
    bool check = false;
    std::vector<char*> arguments;
    // Options given by the caller come later and win.
    std::string defaults[] = {"--benchmark_repetitions=15", "--benchmark_min_time=0.05",
                              "--benchmark_report_aggregates_only=true",
                              "--benchmark_enable_random_interleaving=true"};
    arguments.push_back(argv[0]);
    for (std::string& option : defaults) {
        arguments.push_back(option.data());
    }
    for (int index = 1; index < argc; ++index) {
        if (std::string_view(argv[index]) == "--check") {
            check = true;
        } else {
            arguments.push_back(argv[index]);
        }
    }
    int count = static_cast<int>(arguments.size());
    arguments.push_back(nullptr);
    benchmark::Initialize(&count, arguments.data());
    if (benchmark::ReportUnrecognizedArguments(count, arguments.data())) {
        return 2;
    }
    for (const Pair& pair : pairs) {
        const std::string name = pair.name;
        for (auto* side : {benchmark::RegisterBenchmark((name + ", floor").c_str(), pair.floor),
                           benchmark::RegisterBenchmark(name.c_str(), pair.work)}) {
            if (pair.isWholeProcess) {
                side->MeasureProcessCPUTime();
            }
        }
    }
    MedianReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();

    bool within = true;
    for (const Pair& pair : pairs) {
        const double ratio = reporter.ratio(pair.name);
        if (ratio > 0) {
            std::printf("%s: %.2f x the floor, budget %.2f x\n", pair.name, ratio, pair.budget);
        } else {
            std::printf("%s: not measured\n", pair.name);
        }
        within = within && ratio > 0 && ratio <= pair.budget;
        const double milliseconds = reporter.milliseconds(pair.name);
        if (ratio > 0 && pair.milliseconds > 0) {
            std::printf("%s: %.2f ms of processor time, budget %.0f ms\n", pair.name, milliseconds,
                        pair.milliseconds);
            within = within && milliseconds <= pair.milliseconds;
        }
    }
    return check && !within ? 1 : 0;
}

}  // namespace tarnwick::benchmarks
