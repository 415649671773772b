// SPDX-License-Identifier: MIT
// Any texts as the files of a battery's packs. The first byte of an input says what is known about
// outside power: '0' for none, '1' for some, any other for unknown. Lines follow: the name of a
// file, "=", and its content, to which a line break is added. An empty line begins another pack.
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "fuzz/fuzzer.h"
#include "platform/linux/power/power_supply.h"

namespace {

using tarnwick::fuzz::require;
using tarnwick::platform::Packs;

bool isPercentage(const std::optional<std::int64_t>& value, std::int64_t lowest) {
    return !value || (*value >= lowest && *value <= 100);
}

bool isTime(const std::optional<std::int64_t>& minutes) {
    return !minutes || (*minutes >= 0 && *minutes <= 14'400);
}

Packs packsOf(std::string_view text) {
    Packs packs(1);
    while (!text.empty()) {
        const std::string_view line = text.substr(0, text.find('\n'));
        text.remove_prefix(line.size() < text.size() ? line.size() + 1 : line.size());
        if (const std::size_t sign = line.find('='); sign != std::string_view::npos) {
            packs.back().take(line.substr(0, sign), std::string(line.substr(sign + 1)) + "\n");
        } else if (line.empty()) {
            packs.emplace_back();
        }
    }
    return packs;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) {
        return 0;
    }
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    const Packs packs = packsOf(text.substr(1));
    const std::optional<bool> outside = text[0] == '0'   ? std::optional(false)
                                        : text[0] == '1' ? std::optional(true)
                                                         : std::nullopt;
    for (const auto& pack : packs) {
        require(!pack.isSystemBattery() || !pack.suppliesFromOutside());
    }
    require(isPercentage(tarnwick::platform::healthPercentage(packs), 1));
    require(tarnwick::platform::cyclesOf(packs).value_or(1) >= 1);
    require(!tarnwick::platform::identityOf(packs).empty());
    for (const char c : tarnwick::platform::conditionWord(packs)) {
        require(c >= ' ' && c <= '~');
    }
    const auto source = tarnwick::platform::describe(packs, outside);
    require(isPercentage(source.currentCapacity, 0));
    require(isTime(source.timeToEmpty) && isTime(source.timeToFullCharge));
    require(!source.timeToEmpty || !source.timeToFullCharge);
    require(!source.isCharging.value() || source.powerSourceState == "AC Power");
    return 0;
}
