// SPDX-License-Identifier: MIT
#include "platform/linux/graphics/runtime_power.h"

#include <algorithm>
#include <filesystem>
#include <string_view>
#include <system_error>
#include <utility>

#include "platform/linux/graphics/graphics_files.h"

namespace tarnwick::platform {

namespace {

constexpr double kUsualSecondsUntilSleep = 8;
constexpr std::uint64_t kLongestMillisecondsUntilSleep = 60'000;

std::string_view wordIn(KeptFile& file) {
    return firstLineOf(file.read().value_or(""));
}

}  // namespace

RuntimePower::RuntimePower(const std::string& device, std::string card)
    : status_(device + "/power/runtime_status", 64),
      control_(device + "/power/control", 64),
      delay_(device + "/power/autosuspend_delay_ms", 64),
      users_(device + "/power/runtime_usage", 64),
      awake_(device + "/power/runtime_active_time", 64),
      card_(std::move(card)) {}

bool RuntimePower::isAwake() {
    const std::optional<std::string_view> status = status_.read();
    return !status || *status == "active\n" || *status == "unsupported\n";
}

bool RuntimePower::couldSleep() {
    return wordIn(control_) == "auto" && !drivesAScreen();
}

bool RuntimePower::isHeldAwake() {
    return parseCount(users_.read().value_or("")).value_or(0) > 0;
}

std::optional<std::uint64_t> RuntimePower::millisecondsAwake() {
    return parseCount(awake_.read().value_or(""));
}

double RuntimePower::secondsUntilSleep() {
    const std::optional<std::uint64_t> delay = parseCount(delay_.read().value_or(""));
    if (!delay) {
        return kUsualSecondsUntilSleep;
    }
    return static_cast<double>(std::min(*delay, kLongestMillisecondsUntilSleep)) / 1000;
}

bool RuntimePower::Connector::isLit() {
    return wordIn(enabled) == "enabled" && wordIn(power) == "On";
}

bool RuntimePower::drivesAScreen() {
    if (lit_ && lit_->isLit()) {
        return true;
    }
    lit_.reset();
    // Looked for each time, because docks bring connectors and take them away.
    const std::filesystem::path card(card_);
    const std::string prefix = card.filename().native() + '-';
    std::error_code error;
    std::filesystem::directory_iterator entry(card.parent_path(), error);
    for (; !error && entry != std::filesystem::directory_iterator(); entry.increment(error)) {
        const std::string folder = entry->path().native();
        if (!entry->path().filename().native().starts_with(prefix)) {
            continue;
        }
        Connector connector{KeptFile(folder + "/enabled", 64), KeptFile(folder + "/dpms", 64)};
        if (connector.isLit()) {
            lit_ = std::move(connector);
            return true;
        }
    }
    return false;
}

}  // namespace tarnwick::platform
