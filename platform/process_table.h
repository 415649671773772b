// SPDX-License-Identifier: MIT
// The processes of the machine and the applications that they belong to, under the names of the
// calls that macOS has for them. Other systems give the same from their own sources.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace tarnwick::platform {

/// The fields of `proc_taskinfo` that the program reads.
struct TaskInformation {
    /// Resident memory, bytes.
    std::uint64_t residentSize = 0;
    /// Cumulative user time, absolute-time units.
    std::uint64_t totalUser = 0;
    /// Cumulative system time, absolute-time units.
    std::uint64_t totalSystem = 0;
};

/// `mach_timebase_info`: an absolute-time unit is numer / denom nanoseconds.
struct TimebaseInfo {
    std::uint32_t numer = 0;
    std::uint32_t denom = 0;
};

/// `NSRunningApplication`.
struct RunningApplication {
    static constexpr std::int64_t kRegularPolicy = 0;
    static constexpr std::int64_t kAccessoryPolicy = 1;

    /// kRegularPolicy for programs that a person sees as an application; other values for helpers.
    std::int64_t activationPolicy = kRegularPolicy;
    /// In the user's language. Absent when the application has none.
    std::optional<std::string> localizedName{};
};

/// One process while the table is walked; valid during its visit only.
class ProcessEntry {
 public:
    virtual ~ProcessEntry() = default;

    virtual std::int32_t identifier() const = 0;
    /// `proc_pidinfo`, task information, read at the call. Absent when the process has ended or may
    /// not be looked at.
    virtual std::optional<TaskInformation> taskInformation() = 0;
    /// The short command name: any bytes but zero, as a rule at most 16. Empty when unknown. Costs
    /// nothing after taskInformation(): where both come from one source, that is read once.
    virtual std::string_view command() = 0;
};

/// How a walk over the process table ended.
enum class ProcessListing {
    /// Every process was visited.
    complete,
    /// The size of the table could not be learned; none was visited.
    noBufferSize,
    /// The table could not be read; none was visited.
    noList,
};

/// Facts about processes outside the walk. Every kind of source shares them.
class ProcessFacts {
 public:
    virtual ~ProcessFacts() = default;

    /// `getpid`, as the table numbers processes; 0 when the program is not in the table.
    virtual std::int32_t ownIdentifier() = 0;
    /// `NSProcessInfo` `processorCount`; below 1 when unknown.
    virtual std::int64_t processorCount() = 0;
    /// `mach_timebase_info`. Absent on failure.
    virtual std::optional<TimebaseInfo> timebaseInfo() = 0;
    /// `NSRunningApplication` `runningApplicationWithProcessIdentifier:`. Absent when the process
    /// is no application.
    virtual std::optional<RunningApplication> runningApplication(std::int32_t identifier) = 0;
    /// `NSFileManager` `displayNameAtPath:`.
    virtual std::string displayName(const std::string& path) = 0;
};

/// Any thread. During a visit the facts may be read, but a second walk must not be started.
class ProcessTable : public ProcessFacts {
 public:
    using Visit = std::function<void(ProcessEntry&)>;

    /// Visits every process in the order of the table, each once.
    virtual ProcessListing forEachProcess(const Visit& visit) = 0;
    /// `proc_pidpath`: any bytes but zero. Absent when there is no path or it may not be known.
    virtual std::optional<std::string> executablePath(std::int32_t identifier) = 0;
    /// The command that the process was started with, its arguments separated by blanks: any bytes
    /// but zero. The executable's path where the system does not tell it; empty when unknown.
    virtual std::string commandLine(std::int32_t identifier) {
        return executablePath(identifier).value_or(std::string());
    }
    /// Releases what a walk keeps for the next one, such as open files. Call this if no walk is
    /// expected soon. The next walk works like the first one.
    virtual void releaseCaches() = 0;
};

}  // namespace tarnwick::platform
