// SPDX-License-Identifier: MIT
// Repairs text from outside that should be UTF-8.
#pragma once

#include <string>
#include <string_view>

namespace tarnwick::platform {

/// Returns `bytes` as valid UTF-8. If a character breaks off early, its valid beginning becomes one
/// replacement character (U+FFFD). Each byte that cannot begin a character becomes one, too.
std::string repairedUTF8(std::string_view bytes);

}  // namespace tarnwick::platform
