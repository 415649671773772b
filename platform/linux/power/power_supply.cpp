// SPDX-License-Identifier: MIT
#include "platform/linux/power/power_supply.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <system_error>
#include <utility>

#include "core/records/text.h"
#include "platform/linux/files/list_items.h"

namespace tarnwick::platform {

namespace {

using Amount = std::optional<double>;
using Minutes = std::optional<std::int64_t>;

constexpr std::string_view kBattery =
    "present status capacity capacity_level health state_of_health cycle_count "
    "energy_now energy_full energy_full_design charge_now charge_full charge_full_design "
    "power_now current_now voltage_now voltage_min_design "
    "time_to_empty_now time_to_empty_avg time_to_full_now time_to_full_avg "
    "charge_control_end_threshold charge_stop_threshold manufacturer model_name serial_number";

// Faults in the kernel's words, with the macOS words for them.
constexpr std::array<std::pair<std::string_view, std::string_view>, 4> kFaults = {{
    {"Dead", "Replace Now"},
    {"Unspecified failure", "Check Battery"},
    {"Blown fuse", "Permanent Battery Failure"},
    {"Cell imbalance", "Service Battery"},
}};

// What one pack does, all do: the first of these that a pack reports.
constexpr std::array<std::string_view, 4> kStates = {"Discharging", "Charging", "Not charging",
                                                     "Full"};

constexpr double kLongestTime = 10 * 24 * 60;
constexpr double kLargestHealth = 200;
constexpr double kSecondsPerHour = 3600;

Amount sum(Amount a, Amount b) {
    return a && b ? Amount(*a + *b) : std::nullopt;
}

Amount product(Amount a, Amount b) {
    return a && b ? Amount(*a * *b) : std::nullopt;
}

Amount quotient(Amount a, Amount b) {
    return a && b ? Amount(*a / *b) : std::nullopt;
}

template <typename T>
std::optional<T> either(std::optional<T> a, std::optional<T> b) {
    return a ? a : b;
}

Amount atLeast(Amount lowest, const PowerSupply& pack, std::string_view file) {
    const Amount figure = pack.figure(file);
    return figure >= lowest ? figure : std::nullopt;
}

Amount positive(const PowerSupply& pack, std::string_view file) {
    return atLeast(1, pack, file);
}

/// The absolute value of a rate that is known and not 0; its sign has no meaning.
Amount rate(const PowerSupply& pack, std::string_view file) {
    const Amount figure = pack.figure(file);
    return figure && *figure != 0 ? Amount(std::fabs(*figure)) : std::nullopt;
}

/// Content, capacity and change per hour of a pack in the unit that its driver counts in.
struct Content {
    bool isEnergy = false;
    Amount now;
    Amount full;
    Amount rate;
};

Content contentOf(const PowerSupply& pack) {
    const Amount power = rate(pack, "power_now");
    const Amount current = rate(pack, "current_now");
    const Amount volts = quotient(rate(pack, "voltage_now"), 1e6);
    Content content;
    // 0 is a valid content: the battery is empty.
    content.now = atLeast(0, pack, "energy_now");
    content.isEnergy = content.now.has_value();
    if (content.isEnergy) {
        content.full = positive(pack, "energy_full");
        content.rate = either(power, product(current, volts));
    } else {
        content.now = atLeast(0, pack, "charge_now");
        content.full = positive(pack, "charge_full");
        content.rate = either(current, quotient(power, volts));
    }
    // 0 is a valid rate, too, of one pack beside another one.
    if (!content.rate && (pack.figure("power_now") == 0 || pack.figure("current_now") == 0)) {
        content.rate = 0;
    }
    return content;
}

/// The volts that make an energy of a charge: those of the pack, not of the moment, so that its
/// weight stays what it is.
Amount nominalVolts(const PowerSupply& pack) {
    return quotient(either(positive(pack, "voltage_min_design"), positive(pack, "voltage_now")),
                    1e6);
}

/// Percent; 100 where there is no limit.
double chargeLimit(const PowerSupply& pack) {
    for (const char* file : {"charge_control_end_threshold", "charge_stop_threshold"}) {
        if (const Amount limit = positive(pack, file); limit && *limit < 100) {
            return *limit;
        }
    }
    return 100;
}

Minutes minutes(Amount amount, Amount perHour) {
    const Amount time = perHour > 0.0 ? quotient(product(amount, 60), perHour) : std::nullopt;
    return time && *time <= kLongestTime ? Minutes(*time) : std::nullopt;
}

/// The time that the gauge tells: its latest figure, else its average.
Minutes toldTime(const PowerSupply& gauge, const std::string& name) {
    return either(minutes(positive(gauge, name + "_now"), kSecondsPerHour),
                  minutes(positive(gauge, name + "_avg"), kSecondsPerHour));
}

/// The time until all packs are empty or, while charging, have reached their limits. A pack that
/// charges while another one discharges works against it; one that waits has no part in the rate.
Minutes reckonedTime(const Packs& packs, std::string_view state) {
    Amount amount = 0;
    Amount perHour = 0;
    for (const PowerSupply& pack : packs) {
        Content content = contentOf(pack);
        if (state == "Charging") {
            content.now =
                sum(product(content.full, chargeLimit(pack) / 100), product(content.now, -1));
            content.now = content.now ? Amount(std::max(*content.now, 0.0)) : std::nullopt;
        }
        // Charges at different voltages cannot be added, nor can charge and energy.
        const Amount unit = packs.size() == 1 || content.isEnergy ? 1 : nominalVolts(pack);
        amount = sum(amount, product(content.now, unit));
        const std::string_view status = pack.word("status");
        if (state.empty() || status == state) {
            perHour = sum(perHour, product(content.rate, unit));
        } else if (status == "Charging") {
            perHour = sum(perHour, product(content.rate, product(unit, -1)));
        }
    }
    return minutes(amount, perHour);
}

/// Watts of all packs that are in this state, less those of packs that charge meanwhile.
Amount wattsOf(const Packs& packs, std::string_view state) {
    Amount watts = 0;
    for (const PowerSupply& pack : packs) {
        const std::string_view status = pack.word("status");
        if (status == state || status == "Charging") {
            const Content content = contentOf(pack);
            const Amount volts = quotient(rate(pack, "voltage_now"), 1e6);
            const Amount own = content.isEnergy ? content.rate : product(content.rate, volts);
            watts = sum(watts, quotient(own, status == state ? 1e6 : -1e6));
        }
    }
    return watts > 0.0 ? watts : std::nullopt;
}

/// Percent.
Amount levelOf(const PowerSupply& pack) {
    const Content content = contentOf(pack);
    const Amount told = atLeast(0, pack, "capacity");
    const Amount share = product(quotient(content.now, content.full), 100);
    return told && *told <= 100 ? told : share ? Amount(std::min(*share, 100.0)) : std::nullopt;
}

/// Percent; not cut where it is above the design.
Amount healthOf(const PowerSupply& pack) {
    const Amount share =
        either(quotient(positive(pack, "energy_full"), positive(pack, "energy_full_design")),
               quotient(positive(pack, "charge_full"), positive(pack, "charge_full_design")));
    for (const Amount health : {positive(pack, "state_of_health"), product(share, 100)}) {
        if (health && *health <= kLargestHealth) {
            return health;
        }
    }
    return std::nullopt;
}

/// The mean of what is known, weighed by an energy where all of those packs tell it.
Amount meanOf(const Packs& packs, Amount (*figureOf)(const PowerSupply&), std::string_view energy,
              std::string_view charge) {
    double count = 0;
    double plain = 0;
    Amount weight = 0;
    Amount weighed = 0;
    for (const PowerSupply& pack : packs) {
        if (const Amount figure = figureOf(pack)) {
            const Amount own =
                either(positive(pack, energy), product(positive(pack, charge), nominalVolts(pack)));
            count += 1;
            plain += *figure;
            weight = sum(weight, own);
            weighed = sum(weighed, product(figure, own));
        }
    }
    return count == 0 ? std::nullopt : either(quotient(weighed, weight), Amount(plain / count));
}

std::string wordOf(const PowerSupply& pack) {
    const std::string_view word = pack.word("health");
    const bool isEmpty = pack.word("capacity_level") == "Critical" || levelOf(pack) == 0.0;
    if (word == "Unknown" || (word == "Dead" && isEmpty)) {
        return {};
    }
    const auto fault =
        std::ranges::find(kFaults, word, [](const auto& entry) { return entry.first; });
    return std::string(fault == kFaults.end() ? word : fault->second);
}

int severityOf(std::string_view word) {
    const bool isFault =
        std::ranges::any_of(kFaults, [&](const auto& entry) { return entry.second == word; });
    return isFault ? 3 : word.empty() ? 0 : word == "Good" ? 1 : 2;
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

void PowerSupply::take(std::string_view file, std::string text) {
    texts_.insert_or_assign(std::string(file), std::move(text));
}

std::string_view PowerSupply::text(std::string_view file) const {
    const auto found = texts_.find(file);
    return found == texts_.end() ? std::string_view() : found->second;
}

std::optional<std::int64_t> PowerSupply::figure(std::string_view file) const {
    return parseFigure(text(file));
}

std::string_view PowerSupply::word(std::string_view file) const {
    return parseWord(text(file));
}

bool PowerSupply::isSystemBattery() const {
    return word("type") == "Battery" && word("scope") != "Device";
}

std::optional<bool> PowerSupply::suppliesFromOutside() const {
    const std::string_view type = word("type");
    const std::optional<std::int64_t> online = figure("online");
    // An uninterruptible supply is online whether it runs from the mains or from its own battery.
    if (type.empty() || type == "Battery" || type == "UPS" || word("scope") == "Device" ||
        !online || *online < 0) {
        return std::nullopt;
    }
    return *online > 0;
}

std::vector<std::string_view> filesOfBattery() {
    return listItems(kBattery, ' ');
}

std::optional<std::int64_t> chargeLevel(const Packs& packs) {
    const Amount level = meanOf(packs, levelOf, "energy_full", "charge_full");
    return level ? std::optional(std::llround(*level)) : std::nullopt;
}

std::optional<std::int64_t> healthPercentage(const Packs& packs) {
    const Amount health = meanOf(packs, healthOf, "energy_full_design", "charge_full_design");
    return health >= 0.5 ? std::optional(std::llround(std::min(*health, 100.0))) : std::nullopt;
}

std::string conditionWord(const Packs& packs) {
    std::string worst;
    for (const PowerSupply& pack : packs) {
        if (std::string word = wordOf(pack); severityOf(word) > severityOf(worst)) {
            worst = std::move(word);
        }
    }
    return worst;
}

std::optional<std::int64_t> cyclesOf(const Packs& packs) {
    std::optional<std::int64_t> most;
    for (const PowerSupply& pack : packs) {
        most = std::max(most, pack.figure("cycle_count"));
    }
    return most > 0 ? most : std::nullopt;
}

std::string identityOf(const Packs& packs) {
    std::string words;
    for (const PowerSupply& pack : packs) {
        for (const char* file : {"manufacturer", "model_name", "serial_number"}) {
            words += std::string(pack.word(file)) + '\n';
        }
    }
    // The settings need not know a serial number.
    return words.empty() ? words : std::to_string(std::hash<std::string>()(words));
}

PowerSourceDescription describe(const Packs& packs, std::optional<bool> outside) {
    std::string_view state;
    for (const std::string_view one : kStates) {
        const auto reports = [&](const PowerSupply& pack) { return pack.word("status") == one; };
        if (state.empty() && std::ranges::any_of(packs, reports)) {
            state = one;
        }
    }
    // The supply that charges the battery may not be listed, for example a USB port that only
    // powers.
    const bool isOnPower =
        state == "Charging" || outside.value_or(state == "Full" || state == "Not charging");
    const bool discharges = state == "Discharging" || (state.empty() && !isOnPower);
    const auto told = [&](const char* name) {
        return packs.size() == 1 ? toldTime(packs.front(), name) : std::nullopt;
    };
    PowerSourceDescription source;
    source.type = "InternalBattery";
    source.currentCapacity = chargeLevel(packs);
    source.isCharging = state == "Charging";
    source.powerSourceState = isOnPower ? "AC Power" : "Battery Power";
    source.batteryHealthCondition = conditionWord(packs);
    if (state == "Discharging" || state == "Charging") {
        source.power = wattsOf(packs, state);
    }
    if (discharges) {
        source.timeToEmpty = either(told("time_to_empty"), reckonedTime(packs, state));
    } else if (state == "Charging") {
        const bool isToTheFull =
            std::ranges::all_of(packs, [](auto& pack) { return chargeLimit(pack) == 100; });
        source.timeToFullCharge =
            either(isToTheFull ? told("time_to_full") : std::nullopt, reckonedTime(packs, state));
    }
    return source;
}

}  // namespace tarnwick::platform
