// SPDX-License-Identifier: MIT
// The process table made of the bytes that raw system calls deliver.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "platform/macos/readers/raw_process_table.h"
#include "platform/process_table.h"

namespace tarnwick {

/// Takes the whole table in one buffer of the size that the system names, and the task information
/// of each process as it is visited. Any thread.
class ProcessTableReader final : public platform::ProcessTable {
 public:
    explicit ProcessTableReader(platform::RawProcessTable& raw) : raw_(raw) {}

    platform::ProcessListing forEachProcess(const Visit& visit) override;
    std::optional<std::string> executablePath(std::int32_t identifier) override;
    /// Nothing is kept.
    void releaseCaches() override {}

    std::int32_t ownIdentifier() override { return raw_.ownIdentifier(); }
    std::int64_t processorCount() override { return raw_.processorCount(); }
    std::optional<platform::TimebaseInfo> timebaseInfo() override { return raw_.timebaseInfo(); }
    std::optional<platform::RunningApplication> runningApplication(
        std::int32_t identifier) override {
        return raw_.runningApplication(identifier);
    }
    std::string displayName(const std::string& path) override { return raw_.displayName(path); }

 private:
    platform::RawProcessTable& raw_;
};

}  // namespace tarnwick
