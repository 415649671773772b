// What one refresh costs beside the system calls that it cannot do without.
//
//   refresh_benchmark [--check] [options of the benchmark library]
//
// Both sides read the same files of this machine in the same run, in an order that is mixed anew
// for each repetition. At the end stand the ratios of the medians of processor time; with --check
// the program fails when one is above its budget. Only figures of an optimised build mean anything.
#include <benchmark/benchmark.h>
#include <cstdio>
#include <fcntl.h>
#include <filesystem>
#include <map>
#include <string>
#include <string_view>
#include <sys/statvfs.h>
#include <unistd.h>
#include <vector>

#include "platform/linux/linux_kernel.h"
#include "platform/linux/linux_volumes.h"
#include "services/cpu_service.h"
#include "services/memory_service.h"
#include "services/storage_service.h"

namespace {

using tarnwick::CPUService;
using tarnwick::MemoryService;
using tarnwick::StorageService;
using tarnwick::platform::LinuxKernel;
using tarnwick::platform::LinuxVolumes;

// The files behind processors and memory.
std::vector<std::string> filesOfFastRefresh() {
    std::vector<std::string> files = {"/sys/devices/system/cpu/online", "/proc/stat",
                                      "/proc/meminfo"};
    std::error_code error;
    for (const auto& device : std::filesystem::directory_iterator("/sys/block", error)) {
        if (device.path().filename().native().starts_with("zram")) {
            files.push_back(device.path().native() + "/mm_stat");
        }
    }
    return files;
}

void fastRefreshFloor(benchmark::State& state) {
    std::vector<int> descriptors;
    for (const std::string& file : filesOfFastRefresh()) {
        const int descriptor = ::open(file.c_str(), O_RDONLY | O_CLOEXEC);
        if (descriptor >= 0) {
            descriptors.push_back(descriptor);
        }
    }
    std::vector<char> buffer(std::size_t{1} << 16);
    for ([[maybe_unused]] const auto turn : state) {
        for (const int descriptor : descriptors) {
            benchmark::DoNotOptimize(::pread(descriptor, buffer.data(), buffer.size(), 0));
        }
    }
    for (const int descriptor : descriptors) {
        ::close(descriptor);
    }
}

void fastRefresh(benchmark::State& state) {
    LinuxKernel kernel;
    CPUService processors(kernel);
    MemoryService memory(kernel);
    for ([[maybe_unused]] const auto turn : state) {
        benchmark::DoNotOptimize(processors.readCPUInfo());
        benchmark::DoNotOptimize(memory.readMemoryInfo());
    }
}

void storageFloor(benchmark::State& state) {
    const std::string home = LinuxVolumes().homeDirectoryForCurrentUser();
    for ([[maybe_unused]] const auto turn : state) {
        struct statvfs figures {};
        benchmark::DoNotOptimize(::statvfs(home.c_str(), &figures));
        benchmark::DoNotOptimize(figures);
    }
}

void storage(benchmark::State& state) {
    LinuxVolumes volumes;
    StorageService service(volumes);
    for ([[maybe_unused]] const auto turn : state) {
        benchmark::DoNotOptimize(service.readStorageInfo());
    }
}

struct Pair {
    const char* name;
    void (*work)(benchmark::State&);
    void (*floor)(benchmark::State&);
    double budget;
};

constexpr Pair pairs[] = {
    {"fast refresh without processes", fastRefresh, fastRefreshFloor, 1.3},
    {"storage", storage, storageFloor, 1.3},
};

// Shows the runs as usual and keeps the median of each.
class MedianReporter final : public benchmark::ConsoleReporter {
 public:
    MedianReporter() : ConsoleReporter(OO_Tabular) {}

    void ReportRuns(const std::vector<Run>& runs) override {
        ConsoleReporter::ReportRuns(runs);
        for (const Run& run : runs) {
            // A single repetition has no median; it stands for itself.
            if (run.run_type == Run::RT_Iteration || run.aggregate_name == "median") {
                medians_[run.run_name.function_name] = run.GetAdjustedCPUTime();
            }
        }
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

int main(int argc, char** argv) {
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
        benchmark::RegisterBenchmark((name + ", floor").c_str(), pair.floor);
        benchmark::RegisterBenchmark(name.c_str(), pair.work);
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
    }
    return check && !within ? 1 : 0;
}
