// What one refresh costs beside the system calls that it cannot do without.
//
//   refresh_benchmark [--check] [options of the benchmark library]
//
// Both sides read the same files of this machine in the same run, in an order that is mixed anew
// for each repetition. At the end stand the ratios of the medians of processor time; with --check
// the program fails when one is above its budget. Only figures of an optimised build mean anything.
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <filesystem>
#include <string>
#include <sys/statvfs.h>
#include <unistd.h>
#include <vector>

#include "benchmarks/bare_link_dump.h"
#include "benchmarks/pairs.h"
#include "platform/linux/linux_kernel.h"
#include "platform/linux/linux_network_interfaces.h"
#include "platform/linux/linux_volumes.h"
#include "services/cpu_service.h"
#include "services/memory_service.h"
#include "services/network_service.h"
#include "services/storage_service.h"

namespace {

using tarnwick::CPUService;
using tarnwick::MemoryService;
using tarnwick::NetworkService;
using tarnwick::StorageService;
using tarnwick::platform::LinuxKernel;
using tarnwick::platform::LinuxNetworkInterfaces;
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
    tarnwick::benchmarks::BareLinkDump links;
    for ([[maybe_unused]] const auto turn : state) {
        for (const int descriptor : descriptors) {
            benchmark::DoNotOptimize(::pread(descriptor, buffer.data(), buffer.size(), 0));
        }
        benchmark::DoNotOptimize(links.read());
    }
    for (const int descriptor : descriptors) {
        ::close(descriptor);
    }
}

void fastRefresh(benchmark::State& state) {
    LinuxKernel kernel;
    CPUService processors(kernel);
    MemoryService memory(kernel);
    LinuxNetworkInterfaces interfaces;
    NetworkService network(interfaces, kernel);
    for ([[maybe_unused]] const auto turn : state) {
        benchmark::DoNotOptimize(processors.readCPUInfo());
        benchmark::DoNotOptimize(memory.readMemoryInfo());
        benchmark::DoNotOptimize(network.readNetworkInfo());
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

constexpr tarnwick::benchmarks::Pair pairs[] = {
    {"fast refresh without processes", fastRefresh, fastRefreshFloor, 1.3},
    {"storage", storage, storageFloor, 1.3},
};

}  // namespace

int main(int argc, char** argv) {
    return tarnwick::benchmarks::runPairs(argc, argv, pairs);
}
