// SPDX-License-Identifier: MIT
#include "platform/linux/power/linux_power_sources.h"

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <string_view>
#include <system_error>
#include <utility>

#include "platform/linux/files/kept_file.h"
#include "platform/linux/power/power_supply.h"

namespace tarnwick::platform {

namespace {

/// The machine's battery, and whether outside power is connected; absent if no supply tells.
struct Supplies {
    Packs packs;
    std::optional<bool> outside;
};

/// The folders of the power supplies, by name: BAT2 comes before BAT10. Absent when they cannot be
/// listed.
std::optional<std::vector<std::string>> suppliesIn(const std::string& folder) {
    std::vector<std::string> supplies;
    std::error_code error;
    std::filesystem::directory_iterator entry(folder, error);
    for (; !error && entry != std::filesystem::directory_iterator(); entry.increment(error)) {
        supplies.push_back(entry->path().native());
    }
    // A missing folder means that the kernel has no power supplies, so the machine has none.
    if (error && error != std::errc::no_such_file_or_directory) {
        return std::nullopt;
    }
    std::ranges::sort(supplies, [](const std::string& a, const std::string& b) {
        return ::strverscmp(a.c_str(), b.c_str()) < 0;
    });
    return supplies;
}

void read(const std::string& folder, const std::vector<std::string_view>& files,
          PowerSupply& supply) {
    for (const std::string_view file : files) {
        if (std::optional<std::string> text = readWholeFile(folder + '/' + std::string(file))) {
            supply.take(file, std::move(*text));
        }
    }
}

std::optional<Supplies> readSupplies(const std::string& folder) {
    const std::optional<std::vector<std::string>> folders = suppliesIn(folder);
    if (!folders) {
        return std::nullopt;
    }
    Supplies supplies;
    for (const std::string& each : *folders) {
        PowerSupply supply;
        read(each, {"type", "scope", "online"}, supply);
        if (supply.isSystemBattery()) {
            read(each, filesOfBattery(), supply);
            if (supply.figure("present") != 0) {
                supplies.packs.push_back(std::move(supply));
            }
        } else if (const std::optional<bool> supplied = supply.suppliesFromOutside()) {
            supplies.outside = *supplied || supplies.outside.value_or(false);
        }
    }
    return supplies;
}

Packs readPacks(const std::string& folder) {
    return readSupplies(folder).value_or(Supplies()).packs;
}

}  // namespace

LinuxPowerSources::LinuxPowerSources(std::string root)
    : folder_(belowRoot(root, "sys/class/power_supply")) {}

std::optional<std::vector<PowerSourceDescription>> LinuxPowerSources::descriptions() {
    const std::optional<Supplies> supplies = readSupplies(folder_);
    if (!supplies) {
        return std::nullopt;
    }
    std::vector<PowerSourceDescription> sources;
    if (!supplies->packs.empty()) {
        sources.push_back(describe(supplies->packs, supplies->outside));
    }
    return sources;
}

std::optional<std::int64_t> LinuxPowerSources::cycleCount() {
    return cyclesOf(readPacks(folder_));
}

std::string LinuxPowerSources::identity() {
    return identityOf(readPacks(folder_));
}

std::optional<HealthReading> LinuxPowerSources::readHealth() {
    const Packs packs = readPacks(folder_);
    return packs.empty() ? std::nullopt : std::optional(HealthReading{healthPercentage(packs), {}});
}

}  // namespace tarnwick::platform
