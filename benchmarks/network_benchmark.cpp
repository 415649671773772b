// SPDX-License-Identifier: MIT
// What one network pass costs beside the bare reading of the same files.
//
//   network_benchmark [--check] [options of the benchmark library]
//
// Measures with a few interfaces and with 500, under the limit of descriptors that the program sets
// for itself. The interfaces are made in private networks, which disappear with the program. If the
// machine does not allow private networks, nothing is measured and --check fails.
#include <benchmark/benchmark.h>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <span>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

#include "benchmarks/bare_interface_files.h"
#include "benchmarks/pairs.h"
#include "platform/linux/events/process_limits.h"
#include "platform/linux/kernel/linux_kernel.h"
#include "platform/linux/network/linux_network_interfaces.h"
#include "services/network_service.h"
#include "tests/platform/linux/network/network_namespace.h"

namespace {

using tarnwick::NetworkService;
using tarnwick::benchmarks::Pair;
using tarnwick::platform::LinuxKernel;
using tarnwick::platform::LinuxNetworkInterfaces;

// Each network also has the loopback interface.
constexpr int kFewCables = 2;
constexpr int kManyCables = 250;

void networkFloor(benchmark::State& state) {
    tarnwick::benchmarks::BareInterfaceFiles files;
    for ([[maybe_unused]] const auto turn : state) {
        benchmark::DoNotOptimize(files.read());
    }
}

void network(benchmark::State& state) {
    LinuxKernel kernel;
    LinuxNetworkInterfaces interfaces;
    NetworkService service(interfaces, kernel);
    // The first pass opens the files; the later ones keep them open.
    service.readNetworkInfo();
    for ([[maybe_unused]] const auto turn : state) {
        benchmark::DoNotOptimize(service.readNetworkInfo());
    }
}

constexpr Pair kFewPairs[] = {{"network at 4 interfaces", network, networkFloor, 1.3}};
constexpr Pair kManyPairs[] = {{"network at 500 interfaces", network, networkFloor, 1.3}};

// Empty on success, else the reason why nothing can be measured.
std::string makeInterfaces(int cables) {
    namespace net = tarnwick::platform::testing;
    try {
        if (const std::string reason = net::enterEmptyNetwork(); !reason.empty()) {
            return reason;
        }
        std::string commands;
        for (int cable = 0; cable < cables; ++cable) {
            const std::string number = std::to_string(cable);
            commands += net::cable("a" + number, "b" + number);
        }
        net::ip(commands);
        return "";
    } catch (const std::exception& error) {
        return error.what();
    }
}

int measure(int argc, char** argv, int cables, std::span<const Pair> pairs) {
    const std::string reason = makeInterfaces(cables);
    if (!reason.empty()) {
        std::printf("not measured: %s\n", reason.c_str());
        return argc > 1 && std::string(argv[1]) == "--check" ? 1 : 0;
    }
    return tarnwick::benchmarks::runPairs(argc, argv, pairs);
}

// Measures in a new process, because the benchmark library can run only once in each.
int measureApart(int argc, char** argv, int cables, std::span<const Pair> pairs) {
    const pid_t child = ::fork();
    if (child == 0) {
        std::exit(measure(argc, argv, cables, pairs));
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : 1;
}

}  // namespace

int main(int argc, char** argv) {
    tarnwick::platform::raiseDescriptorLimit();
    const int few = measureApart(argc, argv, kFewCables, kFewPairs);
    const int many = measure(argc, argv, kManyCables, kManyPairs);
    return few != 0 ? few : many;
}
