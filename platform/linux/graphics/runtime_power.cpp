#include "platform/linux/graphics/runtime_power.h"

#include <algorithm>
#include <string_view>

#include "platform/linux/graphics/graphics_files.h"

namespace tarnwick::platform {

namespace {

constexpr double kUsualSecondsUntilSleep = 8;
constexpr std::uint64_t kLongestMillisecondsUntilSleep = 60'000;

std::string_view wordIn(KeptFile& file) {
    return firstLineOf(file.read().value_or(""));
}

}  // namespace

RuntimePower::RuntimePower(const std::string& device, const std::vector<std::string>& connectors)
    : status_(device + "/power/runtime_status", 64),
      control_(device + "/power/control", 64),
      delay_(device + "/power/autosuspend_delay_ms", 64),
      users_(device + "/power/runtime_usage", 64),
      awake_(device + "/power/runtime_active_time", 64) {
    for (const std::string& connector : connectors) {
        connectors_.push_back({.enabled = KeptFile(connector + "/enabled", 64),
                               .power = KeptFile(connector + "/dpms", 64)});
    }
}

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

bool RuntimePower::drivesAScreen() {
    for (std::size_t tried = 0; tried < connectors_.size(); ++tried) {
        const std::size_t index = (lit_ + tried) % connectors_.size();
        Connector& connector = connectors_[index];
        if (wordIn(connector.enabled) == "enabled" && wordIn(connector.power) == "On") {
            lit_ = index;
            return true;
        }
    }
    return false;
}

}  // namespace tarnwick::platform
