// SPDX-License-Identifier: MIT
#include "services/cpu_service.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <utility>

#include "core/records/checked_math.h"
#include "platform/platform.h"

namespace tarnwick {
namespace {

/// Ticks since the previous sample.
struct TickDeltas {
    std::uint64_t user = 0;
    std::uint64_t system = 0;
    std::uint64_t idle = 0;
    std::uint64_t nice = 0;

    std::uint64_t busy() const { return checkedAdd(checkedAdd(user, system), nice); }
    std::uint64_t all() const {
        return checkedAdd(checkedAdd(checkedAdd(user, system), idle), nice);
    }
    void add(const TickDeltas& other) {
        user = checkedAdd(user, other.user);
        system = checkedAdd(system, other.system);
        idle = checkedAdd(idle, other.idle);
        nice = checkedAdd(nice, other.nice);
    }
};

TickDeltas deltas(const processor_cpu_load_info& current, const processor_cpu_load_info& previous) {
    const auto moved = [&](std::size_t kind) -> std::uint64_t {
        return counterDelta(current.cpu_ticks[kind], previous.cpu_ticks[kind]);
    };
    return {.user = moved(0), .system = moved(1), .idle = moved(2), .nice = moved(3)};
}

double percentOf(std::uint64_t part, std::uint64_t whole) {
    return static_cast<double>(part) / static_cast<double>(whole) * 100;
}

/// Fills in the shares of the whole machine. If no tick has passed, the (idle) record stays as it
/// is.
void setShares(CPUInfo& info, const TickDeltas& totals) {
    const std::uint64_t sum = totals.all();
    if (sum == 0) {
        return;
    }
    info.userPercentage = percentOf(totals.user, sum);
    info.systemPercentage = percentOf(totals.system, sum);
    info.idlePercentage = percentOf(totals.idle, sum);
    // Niced ticks count as busy, although the record has no field for their share.
    const double busy = percentOf(totals.nice, sum) + (info.userPercentage + info.systemPercentage);
    info.usagePercentage = std::isfinite(busy) ? std::clamp(busy, 0.0, 100.0) : 0;
}

}  // namespace

CPUService::CPUService(platform::Kernel& kernel, platform::Logger logger)
    : kernel_(kernel), logger_(logger) {}

CPUService& CPUService::shared() {
    // Never destroyed: background work may still use it while the process ends.
    static CPUService& service = *new CPUService(*platform::current().kernel);
    return service;
}

CPUInfo CPUService::readCPUInfo() {
    CPUInfo info;
    info.coreCount = kernel_.logicalCPUCount().value_or(0);

    const platform::HostProcessorInfo answer = kernel_.hostProcessorInfo();
    if (answer.result != 0 || !answer.words) {
        logger_.error("host_processor_info failed with result: " + std::to_string(answer.result));
        return info;
    }

    const std::lock_guard guard(lock);
    std::optional current = decodeProcessorLoads(answer.processorCount, *answer.words);
    if (!current) {
        return info;
    }
    info.coreUsages.reserve(current->size());
    TickDeltas totals;
    for (std::size_t i = 0; i < current->size(); ++i) {
        double busyPercentage = 0;
        if (previousCPUInfo && i < previousCPUInfo->size()) {
            const TickDeltas ticks = deltas((*current)[i], (*previousCPUInfo)[i]);
            totals.add(ticks);
            if (const std::uint64_t total = ticks.all(); total != 0) {
                busyPercentage = percentOf(ticks.busy(), total);
            }
        }
        info.coreUsages.push_back(busyPercentage);
    }
    previousCPUInfo = std::move(current);
    setShares(info, totals);
    return info;
}

}  // namespace tarnwick
