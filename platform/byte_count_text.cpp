// SPDX-License-Identifier: MIT
#include "platform/byte_count_text.h"

#include <array>
#include <string_view>

namespace tarnwick::platform {

namespace {

struct Unit {
    std::string_view name;
    int decimals;
};

constexpr std::array<Unit, 7> kUnits = {
    {{"bytes", 0}, {"KB", 0}, {"MB", 1}, {"GB", 2}, {"TB", 2}, {"PB", 2}, {"EB", 2}}};

// A number with decimals: `fraction` holds as many decimals as the unit shows.
struct Rounded {
    std::uint64_t whole = 0;
    std::uint64_t fraction = 0;
};

// count / size, halves rounded up, by long division: the largest size times 10 still fits.
Rounded divided(std::uint64_t count, std::uint64_t size, int decimals) {
    Rounded result{.whole = count / size};
    std::uint64_t remainder = count % size;
    std::uint64_t one = 1;
    for (int decimal = 0; decimal < decimals; ++decimal) {
        remainder *= 10;
        result.fraction = result.fraction * 10 + remainder / size;
        remainder %= size;
        one *= 10;
    }
    if (remainder >= size - remainder) {
        ++result.fraction;
    }
    result.whole += result.fraction / one;
    result.fraction %= one;
    return result;
}

// Requires: `number` has at most four digits.
std::string grouped(std::uint64_t number) {
    std::string text = std::to_string(number);
    if (text.size() > 3) {
        text.insert(text.size() - 3, 1, ',');
    }
    return text;
}

std::string textOf(const Rounded& number, const Unit& unit) {
    std::string text = grouped(number.whole);
    if (number.fraction != 0) {
        std::string digits = std::to_string(number.fraction);
        digits.insert(0, static_cast<std::size_t>(unit.decimals) - digits.size(), '0');
        digits.erase(digits.find_last_not_of('0') + 1);
        text += '.';
        text += digits;
    }
    text += ' ';
    text += unit.name;
    return text;
}

}  // namespace

std::string PlainByteCountFormatter::stringFromByteCount(std::int64_t byteCount,
                                                         CountStyle style) const {
    if (byteCount == 0) {
        return "Zero KB";
    }
    const std::string sign = byteCount < 0 ? "-" : "";
    const auto bits = static_cast<std::uint64_t>(byteCount);
    const std::uint64_t count = byteCount < 0 ? 0 - bits : bits;
    if (count == 1) {
        return sign + "1 byte";
    }

    const std::uint64_t step = style == CountStyle::file ? 1000 : 1024;
    std::size_t unit = 0;
    std::uint64_t size = 1;
    Rounded number = divided(count, size, kUnits[unit].decimals);
    while (number.whole >= step && unit + 1 < kUnits.size()) {
        ++unit;
        size *= step;
        number = divided(count, size, kUnits[unit].decimals);
    }
    return sign + textOf(number, kUnits[unit]);
}

}  // namespace tarnwick::platform
