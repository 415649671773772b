// SPDX-License-Identifier: MIT
#include "platform/macos/readers/kernel_records.h"

#include "platform/macos/readers/number_at.h"

namespace tarnwick {

std::optional<platform::VMStatistics> decodeVMStatistics(std::span<const std::byte> bytes) {
    if (bytes.size() < kVMStatisticsSize) {
        return std::nullopt;
    }
    return platform::VMStatistics{
        .free_count = numberAt<std::uint32_t>(bytes, kFreeCountOffset),
        .wire_count = numberAt<std::uint32_t>(bytes, kWireCountOffset),
        .purgeable_count = numberAt<std::uint32_t>(bytes, kPurgeableCountOffset),
        .speculative_count = numberAt<std::uint32_t>(bytes, kSpeculativeCountOffset),
        .compressor_page_count = numberAt<std::uint32_t>(bytes, kCompressorPageCountOffset),
        .external_page_count = numberAt<std::uint32_t>(bytes, kExternalPageCountOffset),
        .internal_page_count = numberAt<std::uint32_t>(bytes, kInternalPageCountOffset),
    };
}

std::optional<platform::SwapUsage> decodeSwapUsage(std::span<const std::byte> bytes) {
    if (bytes.size() < kSwapUsageSize) {
        return std::nullopt;
    }
    return platform::SwapUsage{
        .total = numberAt<std::uint64_t>(bytes, kSwapTotalOffset),
        .available = numberAt<std::uint64_t>(bytes, kSwapAvailableOffset),
        .used = numberAt<std::uint64_t>(bytes, kSwapUsedOffset),
    };
}

std::optional<platform::TimeValue> decodeTimeValue(std::span<const std::byte> bytes) {
    if (bytes.size() < kTimeValueSize) {
        return std::nullopt;
    }
    return platform::TimeValue{
        .seconds = numberAt<std::int64_t>(bytes, kTimeSecondsOffset),
        .microseconds = numberAt<std::int32_t>(bytes, kTimeMicrosecondsOffset),
    };
}

}  // namespace tarnwick
