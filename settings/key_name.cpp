#include "settings/key_name.h"

#include <algorithm>
#include <array>
#include <limits>
#include <optional>
#include <string_view>

namespace tarnwick {
namespace {

struct FixedName {
    std::int64_t keyCode;
    std::string_view name;
};

constexpr std::array kFixedNames = {
    FixedName{36, "\u21A9"},                            // Return
    FixedName{48, "\u21E5"},                            // Tab
    FixedName{49, "Space"},   FixedName{51, "\u232B"},  // Delete
    FixedName{53, "\u238B"},                            // Escape
    FixedName{96, "F5"},      FixedName{97, "F6"},      FixedName{98, "F7"},
    FixedName{99, "F3"},      FixedName{100, "F8"},     FixedName{101, "F9"},
    FixedName{103, "F11"},    FixedName{109, "F10"},    FixedName{111, "F12"},
    FixedName{115, "\u2196"},                            // Home
    FixedName{116, "\u21DE"},                            // Page Up
    FixedName{117, "\u2326"},                            // Forward Delete
    FixedName{118, "F4"},     FixedName{119, "\u2198"},  // End
    FixedName{120, "F2"},     FixedName{121, "\u21DF"},  // Page Down
    FixedName{122, "F1"},     FixedName{123, "\u2190"},  // Left
    FixedName{124, "\u2192"},                            // Right
    FixedName{125, "\u2193"},                            // Down
    FixedName{126, "\u2191"},                            // Up
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
