// SPDX-License-Identifier: MIT
#include "evaluation/battery_condition.h"

#include <algorithm>
#include <array>

#include "core/records/text.h"

namespace tarnwick {
namespace {

// "fair" is here because such a battery still works as it should.
constexpr std::array<std::string_view, 3> kNormal = {"good", "fair", "normal"};

constexpr std::array<std::string_view, 7> kService = {
    "poor",         "check battery", "service battery",           "service recommended",
    "replace soon", "replace now",   "permanent battery failure",
};

/// The condition words are English, so only the case of ASCII letters matters.
std::string lowerCased(std::string_view text) {
    std::string result(text);
    std::transform(result.begin(), result.end(), result.begin(), [](char c) {
        return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    });
    return result;
}

}  // namespace

std::string batteryConditionDisplayText(std::string_view raw) {
    const std::string word = lowerCased(trimmed(raw));
    if (std::find(kNormal.begin(), kNormal.end(), word) != kNormal.end()) {
        return "Normal";
    }
    if (std::find(kService.begin(), kService.end(), word) != kService.end()) {
        return "Service Recommended";
    }
    return "Unknown";
}

}  // namespace tarnwick
