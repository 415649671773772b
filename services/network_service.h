// SPDX-License-Identifier: MIT
// Network throughput from the cumulative byte counters of the interfaces.
#pragma once

#include <functional>
#include <mutex>
#include <optional>

#include "core/records/metric_records.h"
#include "platform/kernel.h"
#include "platform/log.h"
#include "platform/network_interfaces.h"

namespace tarnwick {

/// Turns byte counters into the rates since the previous sample. A counter contributes nothing to a
/// sample when it went backwards (it wrapped or was reset), when its interface is new, or when the
/// width of the interface's counters changed. Any thread; calls take turns.
class NetworkService {
 public:
    using ReadCounters = std::function<std::optional<platform::InterfaceTable>()>;
    /// Seconds of a monotonic clock.
    using Now = std::function<double()>;

    NetworkService(ReadCounters readCounters, Now now);
    /// Reads a machine's interfaces and its raw monotonic clock.
    NetworkService(platform::NetworkInterfaces& interfaces, platform::Kernel& kernel,
                   platform::Logger logger = platform::Logger());

    /// The process-wide instance on the current platform, made on first use, never destroyed.
    static NetworkService& shared();

    /// Never fails: without counters everything is 0 and `hasSample` is false; the next call with
    /// counters compares with the last call that had counters. The first sample has no rates.
    NetworkInfo readNetworkInfo();

 private:
    struct Snapshot {
        /// Seconds, as `now` gives them.
        double timestamp = 0;
        platform::InterfaceTable interfaces;
    };

    /// Guarded by `lock`; absent until the first table was read, never cleared.
    std::optional<Snapshot> previousSnapshot;
    std::mutex lock;
    const ReadCounters readCounters_;
    const Now now_;
};

}  // namespace tarnwick
