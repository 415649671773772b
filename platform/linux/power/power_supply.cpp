#include "platform/linux/power/power_supply.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <system_error>
#include <utility>

#include "core/records/text.h"

namespace tarnwick::platform {

namespace {

using Word = std::string PowerSupply::*;
using Figure = std::optional<std::int64_t> PowerSupply::*;

constexpr std::array<std::pair<std::string_view, Word>, 4> kWords = {{
    {"type", &PowerSupply::type},
    {"scope", &PowerSupply::scope},
    {"status", &PowerSupply::status},
    {"health", &PowerSupply::health},
}};

constexpr std::array<std::pair<std::string_view, Figure>, 13> kFigures = {{
    {"present", &PowerSupply::present},
    {"online", &PowerSupply::online},
    {"capacity", &PowerSupply::capacity},
    {"energy_now", &PowerSupply::energyNow},
    {"energy_full", &PowerSupply::energyFull},
    {"energy_full_design", &PowerSupply::energyFullDesign},
    {"charge_now", &PowerSupply::chargeNow},
    {"charge_full", &PowerSupply::chargeFull},
    {"charge_full_design", &PowerSupply::chargeFullDesign},
    {"power_now", &PowerSupply::powerNow},
    {"current_now", &PowerSupply::currentNow},
    {"voltage_now", &PowerSupply::voltageNow},
    {"cycle_count", &PowerSupply::cycleCount},
}};

constexpr std::array<std::string_view, 3> kEverySupply = {"type", "scope", "online"};

constexpr std::array<std::string_view, 14> kBattery = {
    "present",
    "status",
    "capacity",
    "health",
    "energy_now",
    "energy_full",
    "charge_now",
    "charge_full",
    "power_now",
    "current_now",
    "voltage_now",
    "cycle_count",
    "energy_full_design",
    "charge_full_design",
};

// Faults in the kernel's words, with the macOS words for them.
constexpr std::array<std::pair<std::string_view, std::string_view>, 4> kFaults = {{
    {"Dead", "Replace Now"},
    {"Unspecified failure", "Check Battery"},
    {"Blown fuse", "Permanent Battery Failure"},
    {"Cell imbalance", "Service Battery"},
}};

constexpr double kLongestTime = 10 * 24 * 60;
constexpr double kLargestHealth = 200;

/// The absolute value of a figure that is known and not 0; its sign has no meaning.
std::optional<double> amount(const std::optional<std::int64_t>& figure) {
    if (!figure || *figure == 0) {
        return std::nullopt;
    }
    return std::fabs(static_cast<double>(*figure));
}

std::optional<double> product(std::optional<double> a, std::optional<double> b) {
    return a && b ? std::optional(*a * *b) : std::nullopt;
}

std::optional<double> quotient(std::optional<double> a, std::optional<double> b) {
    return a && b ? std::optional(*a / *b) : std::nullopt;
}

std::optional<double> either(std::optional<double> a, std::optional<double> b) {
    return a ? a : b;
}

/// Content, capacity and change per hour of a battery, all in one unit.
struct Content {
    std::optional<double> now;
    std::optional<double> full;
    std::optional<double> rate;
};

Content contentOf(const PowerSupply& supply) {
    // 0 is a valid content: the battery is empty.
    const auto held = [](const std::optional<std::int64_t>& figure) {
        return figure && *figure >= 0 ? std::optional(static_cast<double>(*figure)) : std::nullopt;
    };
    const std::optional<double> power = amount(supply.powerNow);
    const std::optional<double> current = amount(supply.currentNow);
    const std::optional<double> volts =
        quotient(amount(supply.voltageNow), std::optional<double>(1e6));
    if (held(supply.energyNow)) {
        return {held(supply.energyNow), amount(supply.energyFull),
                either(power, product(current, volts))};
    }
    return {held(supply.chargeNow), amount(supply.chargeFull),
            either(current, quotient(power, volts))};
}

std::optional<std::int64_t> minutes(double content, std::optional<double> rate) {
    const std::optional<double> time = quotient(std::optional(std::max(content, 0.0) * 60), rate);
    if (!time || *time > kLongestTime) {
        return std::nullopt;
    }
    return static_cast<std::int64_t>(*time);
}

bool isOnPower(const PowerSupply& supply, std::optional<bool> outside) {
    // The supply that charges the battery may not be listed, for example a USB port that only
    // powers.
    if (supply.status == "Charging") {
        return true;
    }
    return outside.value_or(supply.status == "Full" || supply.status == "Not charging");
}

}  // namespace

std::optional<std::int64_t> parseFigure(std::string_view text) {
    std::int64_t figure = 0;
    const char* const end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data(), end, figure);
    // Without a line break the file, and perhaps the figure, was cut short.
    if (error != std::errc() || rest == end || *rest != '\n') {
        return std::nullopt;
    }
    return figure;
}

std::string_view parseWord(std::string_view text) {
    const std::string_view word = trimmed(text.substr(0, text.find('\n')));
    const bool isPrintable = std::ranges::all_of(word, [](char c) { return c >= ' ' && c <= '~'; });
    return isPrintable ? word : std::string_view();
}

void PowerSupply::take(std::string_view file, std::string_view text) {
    for (const auto& [name, word] : kWords) {
        if (name == file) {
            this->*word = parseWord(text);
        }
    }
    for (const auto& [name, figure] : kFigures) {
        if (name == file) {
            this->*figure = parseFigure(text);
        }
    }
}

bool PowerSupply::isSystemBattery() const {
    return type == "Battery" && scope != "Device";
}

std::optional<bool> PowerSupply::suppliesFromOutside() const {
    // An uninterruptible supply is online whether it runs from the mains or from its own battery.
    if (type.empty() || type == "Battery" || type == "UPS" || scope == "Device" || !online ||
        *online < 0) {
        return std::nullopt;
    }
    return *online > 0;
}

std::span<const std::string_view> filesOfEverySupply() {
    return kEverySupply;
}

std::span<const std::string_view> filesOfBattery() {
    return kBattery;
}

std::optional<std::int64_t> chargeLevel(const PowerSupply& supply) {
    if (supply.capacity && *supply.capacity >= 0 && *supply.capacity <= 100) {
        return supply.capacity;
    }
    const Content content = contentOf(supply);
    if (!content.now || !content.full) {
        return std::nullopt;
    }
    return std::llround(std::min(*content.now / *content.full, 1.0) * 100);
}

std::optional<std::int64_t> healthPercentage(const PowerSupply& supply) {
    const auto known = [](const std::optional<std::int64_t>& figure) {
        return figure && *figure > 0 ? amount(figure) : std::nullopt;
    };
    const std::optional<double> share =
        either(quotient(known(supply.energyFull), known(supply.energyFullDesign)),
               quotient(known(supply.chargeFull), known(supply.chargeFullDesign)));
    if (!share || *share * 100 > kLargestHealth) {
        return std::nullopt;
    }
    const std::int64_t percentage = std::llround(std::min(*share, 1.0) * 100);
    return percentage >= 1 ? std::optional(percentage) : std::nullopt;
}

std::string conditionWord(const PowerSupply& supply) {
    if (supply.health == "Unknown") {
        return {};
    }
    const auto fault =
        std::ranges::find(kFaults, supply.health, [](const auto& entry) { return entry.first; });
    return fault == kFaults.end() ? supply.health : std::string(fault->second);
}

std::optional<PowerSourceDescription> describe(const PowerSupply& supply,
                                               std::optional<bool> outside) {
    const std::optional<std::int64_t> level = chargeLevel(supply);
    if (supply.present == 0 || !level) {
        return std::nullopt;
    }
    PowerSourceDescription source;
    source.type = "InternalBattery";
    source.currentCapacity = level;
    source.isCharging = supply.status == "Charging";
    source.powerSourceState = isOnPower(supply, outside) ? "AC Power" : "Battery Power";
    source.batteryHealthCondition = conditionWord(supply);

    const Content content = contentOf(supply);
    const bool isKnown = supply.status == "Charging" || supply.status == "Discharging" ||
                         supply.status == "Full" || supply.status == "Not charging";
    const bool discharges =
        supply.status == "Discharging" || (!isKnown && source.powerSourceState != "AC Power");
    if (discharges && content.now) {
        source.timeToEmpty = minutes(*content.now, content.rate);
    } else if (source.isCharging == true && content.now && content.full) {
        source.timeToFullCharge = minutes(*content.full - *content.now, content.rate);
    }
    return source;
}

std::optional<std::int64_t> cyclesOf(const PowerSupply& supply) {
    return supply.cycleCount && *supply.cycleCount > 0 ? supply.cycleCount : std::nullopt;
}

}  // namespace tarnwick::platform
