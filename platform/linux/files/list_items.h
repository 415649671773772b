// SPDX-License-Identifier: MIT
// Lists in texts, such as PATH.
#pragma once

#include <string_view>
#include <vector>

namespace tarnwick::platform {

/// The items of `list` in order, without empty ones. They are parts of `list`.
std::vector<std::string_view> listItems(std::string_view list, char separator = ':');

}  // namespace tarnwick::platform
