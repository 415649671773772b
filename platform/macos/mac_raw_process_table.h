// The calls behind the process table.
#pragma once

#include "platform/macos/readers/raw_process_table.h"

namespace tarnwick::platform {

class MacRawProcessTable final : public RawProcessTable {
 public:
    std::int32_t ownIdentifier() override;
    std::int64_t processorCount() override;
    std::optional<TimebaseInfo> timebaseInfo() override;
    std::optional<RunningApplication> runningApplication(std::int32_t identifier) override;
    std::string displayName(const std::string& path) override;

    std::optional<std::size_t> sysctl(std::span<const std::int32_t> name,
                                      std::optional<std::span<std::byte>> buffer) override;
    std::int32_t procPidInfo(std::int32_t identifier, std::int32_t flavour, std::uint64_t argument,
                             std::span<std::byte> buffer) override;
    std::int32_t procPidPath(std::int32_t identifier, std::span<std::byte> buffer) override;
};

}  // namespace tarnwick::platform
