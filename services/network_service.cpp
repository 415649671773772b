// SPDX-License-Identifier: MIT
#include "services/network_service.h"

#include <utility>

#include "core/records/checked_math.h"
#include "platform/platform.h"

namespace tarnwick {
namespace {

using platform::Counters;
using platform::InterfaceTable;

void addTotals(NetworkInfo& info, const InterfaceTable& interfaces) {
    for (const auto& [index, counters] : interfaces) {
        info.totalReceivedBytes = checkedAdd(info.totalReceivedBytes, counters.received);
        info.totalSentBytes = checkedAdd(info.totalSentBytes, counters.sent);
    }
}

/// Adds the rate of every interface over the last `seconds`. Requires: `seconds` above 0.
void addRates(NetworkInfo& info, const InterfaceTable& current, const InterfaceTable& previous,
              double seconds) {
    for (const auto& [index, counters] : current) {
        const auto before = previous.find(index);
        // A new interface has nothing to compare with, and counters of different widths cannot be
        // compared.
        if (before == previous.end() ||
            before->second.uses32BitCounters != counters.uses32BitCounters) {
            continue;
        }
        const Counters& earlier = before->second;
        info.downloadBytesPerSecond +=
            static_cast<double>(counterDelta(counters.received, earlier.received)) / seconds;
        info.uploadBytesPerSecond +=
            static_cast<double>(counterDelta(counters.sent, earlier.sent)) / seconds;
    }
}

NetworkService::ReadCounters counterReader(platform::NetworkInterfaces& interfaces,
                                           platform::Logger logger) {
    return [&interfaces, logger] {
        std::optional<InterfaceTable> table = interfaces.interfaceCounters();
        if (!table) {
            logger.error("Network counter readers unavailable");
        }
        return table;
    };
}

}  // namespace

NetworkService::NetworkService(ReadCounters read, Now clock)
    : readCounters_(std::move(read)), now_(std::move(clock)) {}

NetworkService::NetworkService(platform::NetworkInterfaces& interfaces, platform::Kernel& kernel,
                               platform::Logger logger)
    : NetworkService(counterReader(interfaces, logger),
                     [&kernel] { return kernel.monotonicSeconds(); }) {}

NetworkService& NetworkService::shared() {
    // Never destroyed: background work may still use it while the process ends.
    static NetworkService& service =
        *new NetworkService(*platform::current().networkInterfaces, *platform::current().kernel);
    return service;
}

NetworkInfo NetworkService::readNetworkInfo() {
    const std::lock_guard guard(lock);
    std::optional<InterfaceTable> interfaces = readCounters_();
    if (!interfaces) {
        return {};
    }
    const double timestamp = now_();

    NetworkInfo info;
    addTotals(info, *interfaces);
    info.hasSample = previousSnapshot.has_value();
    if (previousSnapshot) {
        const double seconds = timestamp - previousSnapshot->timestamp;
        if (seconds > 0) {
            addRates(info, *interfaces, previousSnapshot->interfaces, seconds);
        }
    }
    previousSnapshot = Snapshot{.timestamp = timestamp, .interfaces = std::move(*interfaces)};
    return info;
}

}  // namespace tarnwick
