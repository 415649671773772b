// What a key is called in the text of a shortcut.
#pragma once

#include <cstdint>
#include <string>

#include "platform/keyboard_layout.h"

namespace tarnwick {

/// The fixed name of a key that every keyboard has in the same place, else the text of the key in
/// `layout`, else "Key " and the code.
std::string keyName(std::int64_t keyCode, platform::KeyboardLayout& layout);

}  // namespace tarnwick
