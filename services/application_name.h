// The name of the application that a process belongs to.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "platform/process_table.h"

namespace tarnwick {

/// The path of the outermost bundle around an executable: up to and with the first piece that ends
/// in ".app", in any case of letters. Absent when no piece does.
std::optional<std::string> enclosingBundlePath(std::string_view executablePath);

/// Asks the running applications first, then the bundle around the executable, then the executable
/// itself. Absent when none gives a name.
std::optional<std::string> applicationName(platform::ProcessTable& table, std::int32_t identifier);

}  // namespace tarnwick
