#include "platform/linux/power/linux_power_sources.h"

#include <algorithm>
#include <filesystem>
#include <span>
#include <string_view>
#include <system_error>
#include <utility>

#include "platform/linux/files/kept_file.h"

namespace tarnwick::platform {

namespace {

/// The folders of the power supplies by name. Absent when they cannot be listed.
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
    std::ranges::sort(supplies);
    return supplies;
}

void read(const std::string& folder, std::span<const std::string_view> files, PowerSupply& supply) {
    for (const std::string_view file : files) {
        if (const std::optional<std::string> text =
                readWholeFile(folder + '/' + std::string(file))) {
            supply.take(file, *text);
        }
    }
}

}  // namespace

LinuxPowerSources::LinuxPowerSources(std::string root)
    : folder_(belowRoot(root, "sys/class/power_supply")) {}

std::optional<LinuxPowerSources::Supplies> LinuxPowerSources::readSupplies() const {
    const std::optional<std::vector<std::string>> folders = suppliesIn(folder_);
    if (!folders) {
        return std::nullopt;
    }
    Supplies supplies;
    for (const std::string& folder : *folders) {
        PowerSupply supply;
        read(folder, filesOfEverySupply(), supply);
        if (supply.isSystemBattery()) {
            read(folder, filesOfBattery(), supply);
            supplies.batteries.push_back(std::move(supply));
        } else if (const std::optional<bool> supplied = supply.suppliesFromOutside()) {
            supplies.outside = *supplied || supplies.outside.value_or(false);
        }
    }
    std::erase_if(supplies.batteries,
                  [&](const PowerSupply& battery) { return !describe(battery, supplies.outside); });
    return supplies;
}

std::optional<PowerSupply> LinuxPowerSources::firstBattery() const {
    std::optional<Supplies> supplies = readSupplies();
    if (!supplies || supplies->batteries.empty()) {
        return std::nullopt;
    }
    return std::move(supplies->batteries.front());
}

std::optional<std::vector<PowerSourceDescription>> LinuxPowerSources::descriptions() {
    const std::optional<Supplies> supplies = readSupplies();
    if (!supplies) {
        return std::nullopt;
    }
    std::vector<PowerSourceDescription> sources;
    for (const PowerSupply& battery : supplies->batteries) {
        sources.push_back(*describe(battery, supplies->outside));
    }
    return sources;
}

std::optional<std::int64_t> LinuxPowerSources::cycleCount() {
    const std::optional<PowerSupply> battery = firstBattery();
    return battery ? cyclesOf(*battery) : std::nullopt;
}

std::optional<HealthReading> LinuxPowerSources::readHealth() {
    const std::optional<PowerSupply> battery = firstBattery();
    if (!battery) {
        return std::nullopt;
    }
    HealthReading reading{.health = healthPercentage(*battery), .condition = {}};
    if (std::string word = conditionWord(*battery); !word.empty()) {
        reading.condition = std::move(word);
    }
    return reading;
}

}  // namespace tarnwick::platform
