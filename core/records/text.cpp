// SPDX-License-Identifier: MIT
#include "core/records/text.h"

#include <array>
#include <iomanip>
#include <locale>
#include <sstream>
#include <utility>

namespace tarnwick {
namespace {

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
    // A stream, because std::to_chars for floating point is missing in some standard libraries.
    std::ostringstream text;
    text.imbue(std::locale::classic());
    text << std::fixed << std::setprecision(decimals) << value;
    return std::move(text).str();
}

std::string percentText(double value, int decimals) {
    return fixedText(value, decimals) + '%';
}

}  // namespace tarnwick
