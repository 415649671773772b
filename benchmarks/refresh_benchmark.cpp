// SPDX-License-Identifier: MIT
// What one refresh costs beside the system calls that it cannot do without.
//
//   refresh_benchmark [--check] [options of the benchmark library]
//
// Both sides read the same files of this machine in the same run, in an order that is shuffled for
// each repetition. The ratios of the medians of processor time are printed at the end; with --check
// the program fails if one is above its budget. Only figures of an optimised build mean anything.
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <filesystem>
#include <string>
#include <sys/statvfs.h>
#include <unistd.h>
#include <vector>

#include "benchmarks/bare_interface_files.h"
#include "benchmarks/bare_process_loop.h"
#include "benchmarks/pairs.h"
#include "platform/linux/kernel/linux_kernel.h"
#include "platform/linux/network/linux_network_interfaces.h"
#include "platform/linux/processes/linux_process_table.h"
#include "platform/linux/volumes/linux_volumes.h"
#include "services/cpu_service.h"
#include "services/memory_service.h"
#include "services/network_service.h"
#include "services/process_service.h"
#include "services/storage_service.h"

namespace {

using tarnwick::CPUService;
using tarnwick::MemoryService;
using tarnwick::NetworkService;
using tarnwick::ProcessService;
using tarnwick::StorageService;
using tarnwick::platform::LinuxKernel;
using tarnwick::platform::LinuxNetworkInterfaces;
using tarnwick::platform::LinuxProcessTable;
using tarnwick::platform::LinuxVolumes;

// The files that give the processor and memory figures.
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

// The files are opened once and read again at each refresh.
class BareFastRefresh {
 public:
    BareFastRefresh() : buffer_(std::size_t{1} << 16) {
        for (const std::string& file : filesOfFastRefresh()) {
            const int descriptor = ::open(file.c_str(), O_RDONLY | O_CLOEXEC);
            if (descriptor >= 0) {
                descriptors_.push_back(descriptor);
            }
        }
    }
    BareFastRefresh(const BareFastRefresh&) = delete;
    BareFastRefresh& operator=(const BareFastRefresh&) = delete;
    ~BareFastRefresh() {
        for (const int descriptor : descriptors_) {
            ::close(descriptor);
        }
    }

    void read() {
        for (const int descriptor : descriptors_) {
            benchmark::DoNotOptimize(::pread(descriptor, buffer_.data(), buffer_.size(), 0));
        }
        benchmark::DoNotOptimize(interfaces_.read());
    }

 private:
    std::vector<int> descriptors_;
    std::vector<char> buffer_;
    tarnwick::benchmarks::BareInterfaceFiles interfaces_;
};

class FastRefresh {
 public:
    void read() {
        benchmark::DoNotOptimize(processors_.readCPUInfo());
        benchmark::DoNotOptimize(memory_.readMemoryInfo());
        benchmark::DoNotOptimize(network_.readNetworkInfo());
    }
    void readWithProcesses() {
        read();
        benchmark::DoNotOptimize(processes_.readTopProcesses(kRows));
    }

 private:
    static constexpr int kRows = 3;

    LinuxKernel kernel_;
    CPUService processors_{kernel_};
    MemoryService memory_{kernel_};
    LinuxNetworkInterfaces interfaces_;
    NetworkService network_{interfaces_, kernel_};
    LinuxProcessTable table_;
    ProcessService processes_{table_, kernel_};
};

void fastRefreshFloor(benchmark::State& state) {
    BareFastRefresh refresh;
    for ([[maybe_unused]] const auto turn : state) {
        refresh.read();
    }
}

void fastRefresh(benchmark::State& state) {
    FastRefresh refresh;
    for ([[maybe_unused]] const auto turn : state) {
        refresh.read();
    }
}

void fastRefreshWithProcessesFloor(benchmark::State& state) {
    BareFastRefresh refresh;
    tarnwick::benchmarks::BareProcessLoop processes;
    for ([[maybe_unused]] const auto turn : state) {
        refresh.read();
        benchmark::DoNotOptimize(processes.read());
    }
}

void fastRefreshWithProcesses(benchmark::State& state) {
    FastRefresh refresh;
    // The first refresh opens the files of the processes; the later ones keep them open.
    refresh.readWithProcesses();
    for ([[maybe_unused]] const auto turn : state) {
        refresh.readWithProcesses();
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

constexpr tarnwick::benchmarks::Pair kPairs[] = {
    {"fast refresh without processes", fastRefresh, fastRefreshFloor, 1.3},
    {"fast refresh with processes", fastRefreshWithProcesses, fastRefreshWithProcessesFloor, 1.0},
    {"storage", storage, storageFloor, 1.3},
};

}  // namespace

int main(int argc, char** argv) {
    return tarnwick::benchmarks::runPairs(argc, argv, kPairs);
}
