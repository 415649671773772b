// What one network pass costs at 500 interfaces beside the question and the answer alone.
//
//   network_benchmark [--check] [options of the benchmark library]
//
// The interfaces are made in a private network that goes away with the program. Where the machine
// allows none, nothing is measured and --check fails.
#include <benchmark/benchmark.h>
#include <cstdio>
#include <exception>
#include <string>

#include "benchmarks/bare_link_dump.h"
#include "benchmarks/pairs.h"
#include "platform/linux/kernel/linux_kernel.h"
#include "platform/linux/network/linux_network_interfaces.h"
#include "services/network_service.h"
#include "tests/platform/linux/network/network_namespace.h"

namespace {

using tarnwick::NetworkService;
using tarnwick::platform::LinuxKernel;
using tarnwick::platform::LinuxNetworkInterfaces;

constexpr int kCables = 250;

void networkFloor(benchmark::State& state) {
    tarnwick::benchmarks::BareLinkDump links;
    for ([[maybe_unused]] const auto turn : state) {
        benchmark::DoNotOptimize(links.read());
    }
}

void network(benchmark::State& state) {
    LinuxKernel kernel;
    LinuxNetworkInterfaces interfaces;
    NetworkService service(interfaces, kernel);
    for ([[maybe_unused]] const auto turn : state) {
        benchmark::DoNotOptimize(service.readNetworkInfo());
    }
}

constexpr tarnwick::benchmarks::Pair kPairs[] = {
    {"network at 500 interfaces", network, networkFloor, 1.3},
};

// Empty on success, else why there is nothing to measure.
std::string makeInterfaces() {
    namespace net = tarnwick::platform::testing;
    try {
        if (const std::string reason = net::enterEmptyNetwork(); !reason.empty()) {
            return reason;
        }
        for (int cable = 0; cable < kCables; ++cable) {
            const std::string number = std::to_string(cable);
            net::addCable("a" + number, "b" + number);
            net::setUp("a" + number);
            net::setUp("b" + number);
        }
        return "";
    } catch (const std::exception& error) {
        return error.what();
    }
}

}  // namespace

int main(int argc, char** argv) {
    const std::string reason = makeInterfaces();
    if (!reason.empty()) {
        std::printf("not measured: %s\n", reason.c_str());
        return argc > 1 && std::string(argv[1]) == "--check" ? 1 : 0;
    }
    return tarnwick::benchmarks::runPairs(argc, argv, kPairs);
}
