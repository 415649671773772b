// SPDX-License-Identifier: MIT
// Whether waybar's bar is light or dark, which its style sheet alone decides.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace tarnwick::platform {

/// Whether text on the bar should be light, according to a style sheet of waybar's: by the colour
/// of the text of the tray or of the bar, else by that of their ground. Absent if it names neither
/// in a way that can be read.
std::optional<bool> wantsLightText(std::string_view styleSheet);

/// The style sheet that waybar uses unless it is started with another one; empty if there is none.
/// Reads files: not on the main thread. `environment` returns a variable's value, or null.
std::string waybarStyleSheet(const std::function<const char*(const char*)>& environment);

}  // namespace tarnwick::platform
