// Reading numbers and names out of the texts and bytes of a property dictionary.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace tarnwick {

/// The floating-point number at the start of a text, after white space: decimal, always with a
/// point, with an optional sign and exponent. 0 where the text does not start with a number;
/// infinite where the number is too large.
double numberAtStart(std::string_view text);

/// A whole text that is a decimal integer with an optional sign. Absent for anything else and for
/// what does not fit.
std::optional<std::int64_t> wholeDecimalInteger(std::string_view text);

/// Bytes as text. Absent where they are not well-formed UTF-8.
std::optional<std::string> textFromUTF8(std::span<const std::byte> bytes);

}  // namespace tarnwick
