// SPDX-License-Identifier: MIT
// Decodes the binary records of macOS with kernel statistics from plain bytes.
//
// Numbers are in the byte order of the machine; the bytes need no alignment. A decoder returns
// nothing if the bytes are too few for its record, and ignores bytes after it.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

#include "platform/kernel.h"

namespace tarnwick {

/// `host_statistics64` flavour that gives the page counts.
inline constexpr std::int32_t kHostVMInfo64Flavour = 4;
/// Size of `vm_statistics64` as `host_statistics64` counts it, in 32-bit words.
inline constexpr std::uint32_t kHostVMInfo64Count = 62;
/// `sysctl` name of the boot time.
inline constexpr std::array<std::int32_t, 2> kBootTimeName{1, 21};

/// Sizes of the records, bytes.
inline constexpr std::size_t kVMStatisticsSize = 248;
inline constexpr std::size_t kSwapUsageSize = 32;
inline constexpr std::size_t kTimeValueSize = 16;
static_assert(kVMStatisticsSize == kHostVMInfo64Count * sizeof(std::uint32_t));

/// Where the 32-bit page counts lie in `vm_statistics64`, bytes.
inline constexpr std::size_t kFreeCountOffset = 0;
inline constexpr std::size_t kWireCountOffset = 12;
inline constexpr std::size_t kPurgeableCountOffset = 88;
inline constexpr std::size_t kSpeculativeCountOffset = 92;
inline constexpr std::size_t kCompressorPageCountOffset = 128;
inline constexpr std::size_t kExternalPageCountOffset = 136;
inline constexpr std::size_t kInternalPageCountOffset = 140;

/// Where the 64-bit byte counts lie in `xsw_usage`, bytes. The page size and a flag that says
/// whether swap is encrypted follow them.
inline constexpr std::size_t kSwapTotalOffset = 0;
inline constexpr std::size_t kSwapAvailableOffset = 8;
inline constexpr std::size_t kSwapUsedOffset = 16;

/// Where the 64-bit seconds and the 32-bit microseconds lie in `timeval`, bytes.
inline constexpr std::size_t kTimeSecondsOffset = 0;
inline constexpr std::size_t kTimeMicrosecondsOffset = 8;

std::optional<platform::VMStatistics> decodeVMStatistics(std::span<const std::byte> bytes);

std::optional<platform::SwapUsage> decodeSwapUsage(std::span<const std::byte> bytes);

std::optional<platform::TimeValue> decodeTimeValue(std::span<const std::byte> bytes);

}  // namespace tarnwick
