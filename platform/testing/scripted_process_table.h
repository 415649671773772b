// SPDX-License-Identifier: MIT
// A process table with answers from a test.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "platform/process_table.h"
#include "platform/testing/answers.h"

namespace tarnwick::platform::testing {

struct ScriptedProcess {
    std::int32_t identifier = 0;
    std::string command;
    /// Absent for a process that cannot be looked at.
    std::optional<TaskInformation> task{TaskInformation{}};
};

/// Until a test says otherwise: no processes, no own identifier, one processor, a time base of
/// 1 / 1, no applications, no paths, and a display name that is the path's last piece. A test
/// changes the members between calls only; the operations may be called from any thread.
class ScriptedProcessTable final : public ProcessTable {
 public:
    /// What a walk visits, in order; none unless the listing is complete.
    std::vector<ScriptedProcess> processes;
    std::int32_t own = 0;
    std::int64_t processors = 1;
    std::optional<TimebaseInfo> timebase{TimebaseInfo{.numer = 1, .denom = 1}};
    std::map<std::int32_t, RunningApplication> applications;
    std::map<std::int32_t, std::string> paths;
    std::map<std::string, std::string> displayNames;
    /// Runs inside every operation with its line of calls(); may be null.
    std::function<void(const std::string&)> duringCall;
    Answers<ProcessListing> listing{ProcessListing::complete};

    /// "forEachProcess", "taskInformation 7", "executablePath 7", ..., in order.
    std::vector<std::string> calls() const { return calls_.all(); }
    void clearCalls() { calls_.clear(); }

    ProcessListing forEachProcess(const Visit& visit) override;
    std::int32_t ownIdentifier() override;
    std::int64_t processorCount() override;
    std::optional<TimebaseInfo> timebaseInfo() override;
    std::optional<RunningApplication> runningApplication(std::int32_t identifier) override;
    std::optional<std::string> executablePath(std::int32_t identifier) override;
    /// From `commandLines`; counted in `commandLineReads` and not recorded.
    std::string commandLine(std::int32_t identifier) override;
    std::map<std::int32_t, std::string> commandLines;
    std::atomic<int> commandLineReads = 0;
    std::string displayName(const std::string& path) override;
    void releaseCaches() override;

 private:
    class Entry;

    void record(const std::string& call);

    CallRecord calls_;
};

}  // namespace tarnwick::platform::testing
