// SPDX-License-Identifier: MIT
// The processes that use most of the processors and of the memory.
#pragma once

#include <cstdint>
#include <mutex>
#include <unordered_map>
#include <vector>

#include "core/records/metric_records.h"
#include "platform/kernel.h"
#include "platform/log.h"
#include "platform/process_table.h"
#include "services/top_process_lists.h"

namespace tarnwick {

/// Measures every process at each call, from the growth of its cumulative processor time since the
/// previous call. A share is of the whole machine: one busy processor of eight is 12.5. Any thread.
class ProcessService {
 public:
    /// `kernel` gives the clock.
    ProcessService(platform::ProcessTable& table, platform::Kernel& kernel,
                   platform::Logger logger = platform::Logger());

    /// The process-wide instance on the current platform, made on first use, never destroyed.
    static ProcessService& shared();

    /// At most `limit` rows in each list, without this program itself. A negative limit is a fatal
    /// error. Two processes of one application are two rows. A process that is seen for the first
    /// time has 0 CPU use. When listing the processes fails twice in a row, returns the last lists
    /// that succeeded.
    TopProcessLists readTopProcesses(int limit);

    /// Forgets the times of processes that were last measured 60 seconds ago or earlier.
    void pruneStaleProcesses();

    /// No call of readTopProcesses() is expected soon: frees what the platform keeps open between
    /// calls and forgets all times, because a share since the last opening of the panel says
    /// nothing about now. The last lists are kept.
    void releaseCaches();

 private:
    /// How much processor time a process had used, and when.
    struct CPUTimes {
        /// Cumulative, absolute-time units.
        std::uint64_t user = 0;
        std::uint64_t system = 0;
        /// Seconds of the raw monotonic clock.
        double time = 0;
    };
    struct Measurement {
        /// Percent of the whole machine.
        double cpuUsage = 0;
        /// Bytes.
        std::uint64_t residentSize = 0;
    };
    /// Values that do not change while the program runs.
    struct Constants {
        double processorCount = 1;
        /// Nanoseconds of one absolute-time unit.
        double timebaseRatio = 1;
    };

    std::vector<AppProcessInfo> enumerate();
    Measurement measure(platform::ProcessEntry& process);
    double percentage(const CPUTimes& previous, const CPUTimes& current);
    const Constants& constants();
    void nameRows(TopProcessLists& lists);
    /// Adds the commands. Those of the last lists are kept, so that only newcomers are read.
    void addCommands(TopProcessLists& lists);

    platform::ProcessTable& table_;
    platform::Kernel& kernel_;
    platform::Logger logger_;
    std::once_flag constantsRead_;
    Constants constants_;
    /// Never held while the platform lists, measures or names processes.
    std::mutex lock;
    // Guarded by `lock`.
    std::unordered_map<std::int32_t, CPUTimes> previousProcessCPU;
    TopProcessLists previousTopLists;
};

}  // namespace tarnwick
