#include "services/property_text.h"

#include <charconv>
#include <limits>
#include <system_error>

#include "core/text.h"

namespace tarnwick {

namespace {

bool isDigit(char character) {
    return character >= '0' && character <= '9';
}

/// A plus is a sign, too, unless another one follows.
std::string_view withoutPlus(std::string_view text) {
    if (text.size() > 1 && text[0] == '+' && text[1] != '-') {
        text.remove_prefix(1);
    }
    return text;
}

bool startsWithNumber(std::string_view text) {
    if (text.starts_with('-')) {
        text.remove_prefix(1);
    }
    if (text.starts_with('.')) {
        text.remove_prefix(1);
    }
    return !text.empty() && isDigit(text.front());
}

/// The value of a number that a double cannot hold: too close to 0, or too far from it.
double outOfRange(std::string_view number) {
    const double sign = number.starts_with('-') ? -1 : 1;
    const std::size_t exponent = number.find_first_of("eE");
    const bool isSmall = exponent == std::string_view::npos
                             ? number.find_first_of("123456789") > number.find('.')
                             : number[exponent + 1] == '-';
    return isSmall ? 0 : sign * std::numeric_limits<double>::infinity();
}

/// The number of bytes of the code point at the start; 0 where it is not well formed. Overlong
/// forms, surrogates and what lies beyond U+10FFFF are not.
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
    const std::string_view number = withoutPlus(trimmed(text));
    // Words such as "nan" and "inf" are no numbers here.
    if (!startsWithNumber(number)) {
        return 0;
    }
    double value = 0;
    const auto [rest, error] = std::from_chars(number.data(), number.data() + number.size(), value);
    if (error == std::errc::result_out_of_range) {
        return outOfRange(number.substr(0, static_cast<std::size_t>(rest - number.data())));
    }
    return value;
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
