// SPDX-License-Identifier: MIT
// What a key is called in the text of a shortcut.
#pragma once

#include <cstdint>
#include <string>

#include "platform/keyboard_layout.h"

namespace tarnwick {

/// A fixed name for a key that is in the same place on every keyboard; otherwise the key's text in
/// `layout`; if it has none, "Key " and the code.
std::string keyName(std::int64_t keyCode, platform::KeyboardLayout& layout);

}  // namespace tarnwick
