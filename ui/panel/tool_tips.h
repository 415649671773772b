// SPDX-License-Identifier: MIT
// What is measured and not shown on a page: one line each, for tool tips and as the descriptions
// that screen readers read. Empty while nothing is known.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/records/metric_records.h"
#include "platform/byte_count_formatter.h"

namespace tarnwick {

/// Shares of user and system, and the load of each logical processor. On machines with more than
/// kListedCores of them the least and the greatest load.
std::string cpuToolTip(const CPUInfo& cpu);
inline constexpr std::size_t kListedCores = 16;

std::string memoryToolTip(const MemoryInfo& memory, const platform::ByteCountFormatter& formatter);
/// What is available, also where it is much.
std::string storageToolTip(const StorageInfo& volume,
                           const platform::ByteCountFormatter& formatter);
/// Charge and, while one is known, the time to empty or to full.
std::string batteryToolTip(const BatteryInfo& battery);
/// The sum, or the greatest number where it would be too great.
std::uint64_t saturatedSum(std::uint64_t one, std::uint64_t other);
/// "Received since the start: 1.2 GB".
std::string totalToolTip(std::string_view what, std::uint64_t bytes,
                         const platform::ByteCountFormatter& formatter);
/// Its number and, if known, its command.
std::string processToolTip(const AppProcessInfo& process);

/// A trend's lowest and highest value. With `share`, a place from 0 (its left end) to 1, the value
/// there and its age before them; the line has a value at equal distances. `times` are those of the
/// values, seconds of any clock; the last one counts as now.
std::string trendToolTip(const std::vector<double>& values, const std::vector<double>& times,
                         std::optional<double> share = std::nullopt);

}  // namespace tarnwick
