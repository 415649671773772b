// SPDX-License-Identifier: MIT
// The system calls below the process table of macOS, with scripted answers.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "platform/macos/readers/raw_process_table.h"
#include "platform/testing/answers.h"
#include "platform/testing/scripted_process_table.h"

namespace tarnwick::platform::testing {

/// Every call fails until a test sets its answer.
class ScriptedRawProcessTable final : public RawProcessTable {
 public:
    /// The size that the call gives without a buffer.
    std::optional<std::size_t> size;
    /// The bytes that it copies into a buffer, as far as they fit. Absent: it fails.
    std::optional<std::vector<std::byte>> table;
    /// The size that it claims to have written, if it differs from what it copied.
    std::optional<std::size_t> written;
    /// Bytes by identifier; a process that is missing fails.
    std::map<std::int32_t, std::vector<std::byte>> tasks;
    std::map<std::int32_t, std::string> paths;
    /// This table gives all other facts.
    ScriptedProcessTable facts;

    /// "sysctl 1 14 0 0", followed by the size of the buffer if there is one; "procPidInfo 7 4 0
    /// 96"; "procPidPath 7 4096".
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
