// Lines on standard error: what a user should know about.
#pragma once

#include <string_view>

namespace tarnwick::platform {

/// Tells the user one thing in one line, "tarnwick: ..."; line breaks inside become spaces. For
/// what is not worth a window and must not be silent: a damaged store, no tray. Any thread.
void notice(std::string_view message);

}  // namespace tarnwick::platform
