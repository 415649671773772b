// SPDX-License-Identifier: MIT
#include "settings/key_name.h"

#include <algorithm>
#include <array>
#include <limits>
#include <optional>
#include <string_view>

#include "settings/key_codes.h"

namespace tarnwick {
namespace {

struct FixedName {
    std::int64_t keyCode;
    std::string_view name;
};

constexpr std::array kFixedNames = {
    FixedName{key_code::kReturn, "\u21A9"},
    FixedName{key_code::kTab, "\u21E5"},
    FixedName{key_code::kSpace, "Space"},
    FixedName{key_code::kDelete, "\u232B"},
    FixedName{key_code::kEscape, "\u238B"},
    FixedName{key_code::kHome, "\u2196"},
    FixedName{key_code::kPageUp, "\u21DE"},
    FixedName{key_code::kForwardDelete, "\u2326"},
    FixedName{key_code::kEnd, "\u2198"},
    FixedName{key_code::kPageDown, "\u21DF"},
    FixedName{key_code::kLeftArrow, "\u2190"},
    FixedName{key_code::kRightArrow, "\u2192"},
    FixedName{key_code::kDownArrow, "\u2193"},
    FixedName{key_code::kUpArrow, "\u2191"},
    FixedName{key_code::kF1, "F1"},
    FixedName{key_code::kF2, "F2"},
    FixedName{key_code::kF3, "F3"},
    FixedName{key_code::kF4, "F4"},
    FixedName{key_code::kF5, "F5"},
    FixedName{key_code::kF6, "F6"},
    FixedName{key_code::kF7, "F7"},
    FixedName{key_code::kF8, "F8"},
    FixedName{key_code::kF9, "F9"},
    FixedName{key_code::kF10, "F10"},
    FixedName{key_code::kF11, "F11"},
    FixedName{key_code::kF12, "F12"},
};

std::optional<std::string> fixedName(std::int64_t keyCode) {
    const auto entry =
        std::find_if(kFixedNames.begin(), kFixedNames.end(),
                     [keyCode](const FixedName& each) { return each.keyCode == keyCode; });
    if (entry == kFixedNames.end()) {
        return std::nullopt;
    }
    return std::string(entry->name);
}

std::optional<std::string> layoutName(std::int64_t keyCode, platform::KeyboardLayout& layout) {
    if (keyCode < 0 || keyCode > std::numeric_limits<std::uint16_t>::max()) {
        return std::nullopt;
    }
    auto text = layout.displayText(static_cast<std::uint16_t>(keyCode));
    return text && !text->empty() ? text : std::nullopt;
}

}  // namespace

std::string keyName(std::int64_t keyCode, platform::KeyboardLayout& layout) {
    if (auto name = fixedName(keyCode)) {
        return *name;
    }
    if (auto name = layoutName(keyCode, layout)) {
        return *name;
    }
    return "Key " + std::to_string(keyCode);
}

}  // namespace tarnwick
