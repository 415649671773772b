// SPDX-License-Identifier: MIT
// What a sample of tarnwick-probe costs in a running series, beside the program's fast refresh with
// the panel open: first what it takes to measure, which includes storage and battery at their own
// pace, then with its line of JSON.
//
//   probe_benchmark [--check] [options of the benchmark library]
#include <benchmark/benchmark.h>
#include <cstdint>
#include <optional>
#include <utility>

#include "benchmarks/pairs.h"
#include "platform/linux/events/background_work.h"
#include "platform/linux/graphics/linux_accelerators.h"
#include "platform/linux/kernel/linux_kernel.h"
#include "platform/linux/network/linux_network_interfaces.h"
#include "platform/linux/power/linux_process_info.h"
#include "platform/linux/processes/linux_process_table.h"
#include "platform/timed_source.h"
#include "platform/workers.h"
#include "services/cpu_service.h"
#include "services/gpu_service.h"
#include "services/memory_service.h"
#include "services/network_service.h"
#include "services/process_service.h"
#include "tools/machine_sample.h"
#include "tools/probed_machine.h"

namespace {

using namespace tarnwick;

class FastRefresh {
 public:
    void read() {
        benchmark::DoNotOptimize(processors_.readCPUInfo());
        benchmark::DoNotOptimize(graphics_.readGPUInfo());
        benchmark::DoNotOptimize(memory_.readMemoryInfo());
        benchmark::DoNotOptimize(network_.readNetworkInfo());
        benchmark::DoNotOptimize(processes_.readTopProcesses(kRows));
        benchmark::DoNotOptimize(heat_.read([this] { return processInfo_.thermalState(); }));
    }

 private:
    static constexpr int kRows = 3;

    platform::BackgroundWork threads_;
    platform::ThreadWorkers workers_{[this](auto work) { return threads_.run(std::move(work)); }};
    platform::LinuxKernel kernel_;
    CPUService processors_{kernel_};
    platform::LinuxAccelerators accelerators_{"/", workers_};
    GPUService graphics_{accelerators_};
    MemoryService memory_{kernel_};
    platform::LinuxNetworkInterfaces interfaces_;
    NetworkService network_{interfaces_, kernel_};
    platform::LinuxProcessTable table_;
    ProcessService processes_{table_, kernel_};
    platform::LinuxProcessInfo processInfo_;
    platform::TimedSource<std::int64_t> heat_{workers_, platform::kSensorPatience};
};

void fastRefresh(benchmark::State& state) {
    static auto& refresh = *new FastRefresh;
    for ([[maybe_unused]] const auto turn : state) {
        refresh.read();
    }
}

probe::ProbedMachine& machine() {
    const probe::Options options{};
    static auto& machine =
        *new probe::ProbedMachine(std::get<probe::Sources>(probe::makeSources(options)), options);
    return machine;
}

void sample(benchmark::State& state) {
    for ([[maybe_unused]] const auto turn : state) {
        benchmark::DoNotOptimize(machine().read());
    }
}

void sampleWithLine(benchmark::State& state) {
    for ([[maybe_unused]] const auto turn : state) {
        benchmark::DoNotOptimize(probe::reportLine(machine().read()));
    }
}

constexpr benchmarks::Pair kPairs[] = {
    {.name = "sample of the probe",
     .work = sample,
     .floor = fastRefresh,
     .budget = 1.0,
     .isWholeProcess = true},
    {.name = "sample of the probe with its line",
     .work = sampleWithLine,
     .floor = fastRefresh,
     .budget = 1.2,
     .isWholeProcess = true},
};

}  // namespace

int main(int argc, char** argv) {
    return tarnwick::benchmarks::runPairs(argc, argv, kPairs);
}
