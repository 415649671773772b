// SPDX-License-Identifier: MIT
// Repairs text from outside: what should be UTF-8, and what should be a name on one line.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace tarnwick::platform {

/// Returns `bytes` as valid UTF-8. If a character breaks off early, its valid beginning becomes one
/// replacement character (U+FFFD). Each byte that cannot begin a character becomes one, too.
std::string repairedUTF8(std::string_view bytes);

/// The same for a name that stands beside other text: each control character and each end of a line
/// or paragraph becomes a space, and the invisible marks that turn the direction of the text around
/// them are left out.
std::string repairedName(std::string_view bytes);

/// The first `count` characters of `text`, which is valid UTF-8.
std::string_view firstCharacters(std::string_view text, std::size_t count);

/// Whether a character of `text`, which is valid UTF-8, leaves a mark: it is neither a space nor
/// invisible.
bool canBeSeen(std::string_view text);

}  // namespace tarnwick::platform
