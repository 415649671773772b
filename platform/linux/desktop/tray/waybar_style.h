// SPDX-License-Identifier: MIT
// Whether waybar's bar is light or dark, which its style sheet alone decides.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tarnwick::platform {

/// Whether text on the bar should be light, according to a style sheet of waybar's: by the colour
/// of the text of the tray or of the bar, else by that of their ground. Absent if it names neither
/// in a way that can be read.
std::optional<bool> wantsLightText(std::string_view styleSheet);

/// Where waybar looks for its style sheet unless it is started with another one, in this order.
/// `environment` returns a variable's value, or null.
std::vector<std::string> waybarStyleFiles(
    const std::function<const char*(const char*)>& environment);

/// The first of the files that can be read; empty if there is none. Not on the main thread.
std::string styleSheet(const std::vector<std::string>& files);

}  // namespace tarnwick::platform
