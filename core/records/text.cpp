// SPDX-License-Identifier: MIT
#include "core/records/text.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdio>
#include <limits>

namespace tarnwick {
namespace {

/// Bytes: the largest double has 309 digits; beside them a sign, a point and a few decimals.
constexpr std::size_t kLongestFixedText = std::numeric_limits<double>::max_exponent10 + 32;

/// Length of the white-space character that `text` begins with; 0 when it begins with none.
std::size_t leadingSpace(std::string_view text) {
    if (text.empty()) {
        return 0;
    }
    const char first = text.front();
    if (first == ' ' || (first >= '\t' && first <= '\r')) {
        return 1;
    }
    // U+0085, U+00A0, U+1680, U+2000 to U+200B, U+2028, U+2029, U+202F, U+205F, U+3000.
    static constexpr std::array<std::string_view, 20> kWide = {
        "\xC2\x85",     "\xC2\xA0",     "\xE1\x9A\x80", "\xE2\x80\x80", "\xE2\x80\x81",
        "\xE2\x80\x82", "\xE2\x80\x83", "\xE2\x80\x84", "\xE2\x80\x85", "\xE2\x80\x86",
        "\xE2\x80\x87", "\xE2\x80\x88", "\xE2\x80\x89", "\xE2\x80\x8A", "\xE2\x80\x8B",
        "\xE2\x80\xA8", "\xE2\x80\xA9", "\xE2\x80\xAF", "\xE2\x81\x9F", "\xE3\x80\x80"};
    for (const std::string_view space : kWide) {
        if (text.starts_with(space)) {
            return space.size();
        }
    }
    return 0;
}

/// Length of the white-space character that `text` ends with; 0 when it ends with none.
std::size_t trailingSpace(std::string_view text) {
    for (const std::size_t length : {std::size_t{1}, std::size_t{2}, std::size_t{3}}) {
        if (text.size() >= length && leadingSpace(text.substr(text.size() - length)) == length) {
            return length;
        }
    }
    return 0;
}

}  // namespace

std::string_view trimmed(std::string_view text) {
    while (const std::size_t length = leadingSpace(text)) {
        text.remove_prefix(length);
    }
    while (const std::size_t length = trailingSpace(text)) {
        text.remove_suffix(length);
    }
    return text;
}

std::string fixedText(double value, int decimals) {
    // Neither by std::to_chars, which some standard libraries lack for floating point, nor by a
    // stream, which makes a locale each time.
    std::array<char, kLongestFixedText> buffer{};
    const int length = std::snprintf(buffer.data(), buffer.size(), "%.*f", decimals, value);
    const auto most = static_cast<int>(buffer.size()) - 1;
    std::string text(buffer.data(), static_cast<std::size_t>(std::clamp(length, 0, most)));
    // The session's language may have another point, of one byte or more.
    if (const std::size_t point = text.find_first_not_of("-0123456789");
        decimals > 0 && std::isfinite(value) && point != std::string::npos) {
        text.replace(point, text.size() - point - static_cast<std::size_t>(decimals), ".");
    }
    return text;
}

std::string percentText(double value, int decimals) {
    return fixedText(value, decimals) + '%';
}

}  // namespace tarnwick
