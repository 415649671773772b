// Texts that come from outside and claim to be UTF-8.
#pragma once

#include <string>
#include <string_view>

namespace tarnwick::platform {

/// `bytes` as valid UTF-8: each longest beginning of a character that breaks off, and each byte
/// that cannot begin one, becomes one replacement character (U+FFFD).
std::string repairedUTF8(std::string_view bytes);

}  // namespace tarnwick::platform
