// SPDX-License-Identifier: MIT
// Lines on standard error that users should know about.
#pragma once

#include <string_view>

namespace tarnwick::platform {

/// Prints one line for the user, "tarnwick: ..."; line breaks in the message become spaces. For
/// facts that need no window but must not be hidden: a damaged store, no tray. Any thread.
void notice(std::string_view message);

}  // namespace tarnwick::platform
