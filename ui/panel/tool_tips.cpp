// SPDX-License-Identifier: MIT
#include "ui/panel/tool_tips.h"

#include <algorithm>
#include <cmath>

#include "core/records/percentage.h"
#include "core/records/text.h"
#include "services/system_uptime.h"
#include "ui/panel/panel_figures.h"

namespace tarnwick {

namespace {

std::string whole(double percentage) {
    return percentText(clampedPercentage(percentage), 0);
}

std::string coresText(const std::vector<double>& cores) {
    if (cores.size() > kListedCores) {
        const auto [least, greatest] = std::minmax_element(cores.begin(), cores.end());
        return std::to_string(cores.size()) + " cores from " + whole(*least) + " to " +
               whole(*greatest);
    }
    std::string text = cores.size() == 1 ? "core" : "cores";
    for (const double core : cores) {
        text += ' ' + whole(core);
    }
    return text;
}

std::string ageText(double seconds) {
    if (!(seconds >= 0.5)) {
        return "now";
    }
    if (seconds < 60) {
        return std::to_string(static_cast<int>(std::round(seconds))) + " s ago";
    }
    return uptimeText(seconds) + " ago";
}

}  // namespace

std::string cpuToolTip(const CPUInfo& cpu) {
    if (cpu.coreUsages.empty()) {
        return {};
    }
    return "User " + percentText(clampedPercentage(cpu.userPercentage), 1) + ", system " +
           percentText(clampedPercentage(cpu.systemPercentage), 1) + ", " +
           coresText(cpu.coreUsages);
}

std::string memoryToolTip(const MemoryInfo& memory, const platform::ByteCountFormatter& formatter) {
    if (memory.total == 0) {
        return {};
    }
    const std::string swap = memory.swapTotal == 0
                                 ? "no swap"
                                 : "swap " + memoryText(memory.swapUsed, formatter) + " of " +
                                       memoryText(memory.swapTotal, formatter);
    return "Free " + memoryText(memory.free, formatter) + ", cached " +
           memoryText(memory.cached, formatter) + ", " + swap;
}

std::string storageToolTip(const StorageInfo& volume,
                           const platform::ByteCountFormatter& formatter) {
    if (volume.totalSpace < 1) {
        return {};
    }
    const bool isNamedByIt = volume.mountPoint.empty() || volume.mountPoint == volume.name;
    return fileText(volume.availableSpace, formatter) + " free" +
           (isNamedByIt ? "" : ", mounted at " + volume.mountPoint);
}

std::string batteryToolTip(const BatteryInfo& battery) {
    if (!battery.hasBattery) {
        return {};
    }
    std::string text = "Charge " + std::to_string(battery.percentage) + '%';
    if (battery.isCharging) {
        text += ", charging";
    } else if (battery.isPluggedIn) {
        text += ", plugged in";
    }
    if (battery.timeRemaining > 0 && (battery.isCharging || !battery.isPluggedIn)) {
        text += ", " + uptimeText(static_cast<double>(battery.timeRemaining) * 60) +
                (battery.isCharging ? " to full" : " left");
    }
    if (battery.power) {
        text += ", " + fixedText(*battery.power, 1) + " W";
    }
    return text;
}

std::uint64_t saturatedSum(std::uint64_t one, std::uint64_t other) {
    return one > UINT64_MAX - other ? UINT64_MAX : one + other;
}

std::string totalToolTip(std::string_view what, std::uint64_t bytes,
                         const platform::ByteCountFormatter& formatter) {
    constexpr std::uint64_t most = INT64_MAX;
    return std::string(what) + " since the start: " +
           fileText(static_cast<std::int64_t>(std::min(bytes, most)), formatter);
}

std::string processToolTip(const AppProcessInfo& process) {
    return "Process " + std::to_string(process.id) +
           (process.command.empty() ? "" : ": " + process.command);
}

std::string trendToolTip(const std::vector<double>& values, const std::vector<double>& times,
                         std::optional<double> share) {
    if (values.empty()) {
        return {};
    }
    const auto [least, greatest] = std::minmax_element(values.begin(), values.end());
    std::string range = "owest " + whole(*least) + ", highest " + whole(*greatest);
    if (!share || times.size() != values.size()) {
        return 'L' + range;
    }
    const double last = static_cast<double>(values.size() - 1);
    const auto at = static_cast<std::size_t>(std::round(std::clamp(*share, 0.0, 1.0) * last));
    return whole(values[at]) + ' ' + ageText(times.back() - times[at]) + ", l" + range;
}

}  // namespace tarnwick
