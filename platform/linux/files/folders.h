// Folders of the user that may not be there yet.
#pragma once

#include <filesystem>
#include <system_error>

namespace tarnwick::platform {

/// Makes `folder` and what is missing above it, for this user only, and lasting.
std::error_code makeFolder(const std::filesystem::path& folder);

/// Lets what was made, renamed or removed in `folder` outlast a power cut, as far as the file
/// system can.
void makeLasting(const std::filesystem::path& folder);

}  // namespace tarnwick::platform
