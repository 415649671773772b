// SPDX-License-Identifier: MIT
// The name of the application that a process belongs to.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "platform/process_table.h"

namespace tarnwick {

/// The path of the outermost bundle around an executable: up to and including the first path
/// component that ends in ".app" (upper or lower case). Absent when there is none.
std::optional<std::string> enclosingBundlePath(std::string_view executablePath);

/// Asks the running applications first, then the bundle around the executable, then the executable
/// itself. Absent when none gives a name.
std::optional<std::string> applicationName(platform::ProcessTable& table, std::int32_t identifier);

}  // namespace tarnwick
