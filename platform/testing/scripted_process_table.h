// Process tables that answer what a test wrote down.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "platform/process_table.h"
#include "platform/raw_process_table.h"
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
    /// Where given, runs inside every operation, with its line of calls().
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
    std::string displayName(const std::string& path) override;
    void releaseCaches() override;

 private:
    class Entry;

    void record(const std::string& call);

    CallRecord calls_;
};

/// Until a test says otherwise every call fails.
class ScriptedRawProcessTable final : public RawProcessTable {
 public:
    /// What the call says without a buffer.
    std::optional<std::size_t> size;
    /// What it copies into a buffer, as far as that reaches. Absent: it fails.
    std::optional<std::vector<std::byte>> table;
    /// What it says it has written, where that differs from what it copied.
    std::optional<std::size_t> written;
    /// Bytes by identifier; a process that is missing fails.
    std::map<std::int32_t, std::vector<std::byte>> tasks;
    std::map<std::int32_t, std::string> paths;
    /// The facts are those of this table.
    ScriptedProcessTable facts;

    /// "sysctl 1 14 0 0", with the size of the buffer behind it where there is one;
    /// "procPidInfo 7 4 0 96"; "procPidPath 7 4096".
    std::vector<std::string> calls() const { return calls_.all(); }

    std::optional<std::size_t> sysctl(std::span<const std::int32_t> name,
                                      std::optional<std::span<std::byte>> buffer) override;
    std::int32_t procPidInfo(std::int32_t identifier, std::int32_t flavour, std::uint64_t argument,
                             std::span<std::byte> buffer) override;
    std::int32_t procPidPath(std::int32_t identifier, std::span<std::byte> buffer) override;
    std::int32_t ownIdentifier() override { return facts.ownIdentifier(); }
    std::int64_t processorCount() override { return facts.processorCount(); }
    std::optional<TimebaseInfo> timebaseInfo() override { return facts.timebaseInfo(); }
    std::optional<RunningApplication> runningApplication(std::int32_t identifier) override {
        return facts.runningApplication(identifier);
    }
    std::string displayName(const std::string& path) override { return facts.displayName(path); }

 private:
    CallRecord calls_;
};

}  // namespace tarnwick::platform::testing
