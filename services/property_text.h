// SPDX-License-Identifier: MIT
// Reading numbers and names out of the texts and bytes of a property dictionary.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace tarnwick {

/// The floating-point number at the start of a text, after white space: decimal, with a point in
/// every locale, with an optional sign and exponent. 0 if the text does not start with a number;
/// infinite if the number is too large.
double numberAtStart(std::string_view text);

/// The value of a text that is as a whole one decimal integer with an optional sign. Absent for any
/// other text and for a number that does not fit.
std::optional<std::int64_t> wholeDecimalInteger(std::string_view text);

/// Bytes as text. Absent if they are not well-formed UTF-8.
std::optional<std::string> textFromUTF8(std::span<const std::byte> bytes);

}  // namespace tarnwick
