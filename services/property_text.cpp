// SPDX-License-Identifier: MIT
#include "services/property_text.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <locale>
#include <sstream>
#include <system_error>

#include "core/records/text.h"

namespace tarnwick {

namespace {

/// Removes a leading plus sign. "+-" stays as it is, so that it is no number.
std::string_view withoutPlus(std::string_view text) {
    if (text.size() > 1 && text[0] == '+' && text[1] != '-') {
        text.remove_prefix(1);
    }
    return text;
}

std::size_t digitsAt(std::string_view text, std::size_t at) {
    const std::size_t end = text.find_first_not_of("0123456789", std::min(at, text.size()));
    return (end == std::string_view::npos ? text.size() : end) - std::min(at, text.size());
}

/// The decimal number at the start of the text: minus, digits, point, exponent. Empty if the text
/// does not start with one; words such as "nan" and "inf" are not numbers here.
std::string_view numberPrefix(std::string_view text) {
    std::size_t end = text.starts_with('-') ? 1 : 0;
    const std::size_t whole = digitsAt(text, end);
    end += whole;
    std::size_t fraction = 0;
    if (end < text.size() && text[end] == '.') {
        fraction = digitsAt(text, end + 1);
        end += 1 + fraction;
    }
    if (whole + fraction == 0) {
        return {};
    }
    if (end < text.size() && (text[end] == 'e' || text[end] == 'E')) {
        const bool isSigned =
            end + 1 < text.size() && (text[end + 1] == '+' || text[end + 1] == '-');
        const std::size_t exponent = end + (isSigned ? 2 : 1);
        if (const std::size_t digits = digitsAt(text, exponent); digits > 0) {
            end = exponent + digits;
        }
    }
    return text.substr(0, end);
}

/// The value of a number outside the range of a double: 0 if it is too small, else infinite.
double outOfRange(std::string_view number) {
    const double sign = number.starts_with('-') ? -1 : 1;
    const std::size_t exponent = number.find_first_of("eE");
    const bool isSmall = exponent == std::string_view::npos
                             ? number.find_first_of("123456789") > number.find('.')
                             : number[exponent + 1] == '-';
    return isSmall ? 0 : sign * std::numeric_limits<double>::infinity();
}

/// The number of bytes of the code point at the start; 0 if it is not well formed, as are overlong
/// forms, surrogates and code points above U+10FFFF.
std::size_t codePointLength(std::string_view text) {
    const auto byteAt = [text](std::size_t index) -> unsigned {
        return index < text.size() ? static_cast<unsigned char>(text[index]) : 0U;
    };
    const unsigned first = byteAt(0);
    if (first < 0x80) {
        return 1;
    }
    const std::size_t length = first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : 2;
    if (first < 0xC2 || first > 0xF4) {
        return 0;
    }
    unsigned lowest = 0x80;
    unsigned highest = 0xBF;
    switch (first) {
        case 0xE0:
            lowest = 0xA0;
            break;
        case 0xED:
            highest = 0x9F;
            break;
        case 0xF0:
            lowest = 0x90;
            break;
        case 0xF4:
            highest = 0x8F;
            break;
        default:
            break;
    }
    if (byteAt(1) < lowest || byteAt(1) > highest) {
        return 0;
    }
    for (std::size_t index = 2; index < length; ++index) {
        if ((byteAt(index) & 0xC0U) != 0x80) {
            return 0;
        }
    }
    return length;
}

}  // namespace

double numberAtStart(std::string_view text) {
    const std::string_view number = numberPrefix(withoutPlus(trimmed(text)));
    if (number.empty()) {
        return 0;
    }
    // A stream, because std::from_chars for floating point is missing in some standard libraries.
    std::istringstream stream{std::string(number)};
    stream.imbue(std::locale::classic());
    double value = 0;
    return stream >> value ? value : outOfRange(number);
}

std::optional<std::int64_t> wholeDecimalInteger(std::string_view text) {
    const std::string_view number = withoutPlus(text);
    const char* const end = number.data() + number.size();
    std::int64_t value = 0;
    const auto [rest, error] = std::from_chars(number.data(), end, value);
    if (error != std::errc() || rest != end) {
        return std::nullopt;
    }
    return value;
}

std::optional<std::string> textFromUTF8(std::span<const std::byte> bytes) {
    std::string text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    for (std::string_view rest = text; !rest.empty();) {
        const std::size_t length = codePointLength(rest);
        if (length == 0) {
            return std::nullopt;
        }
        rest.remove_prefix(length);
    }
    return text;
}

}  // namespace tarnwick
