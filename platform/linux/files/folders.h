// SPDX-License-Identifier: MIT
// Folders of the user that may not be there yet.
#pragma once

#include <filesystem>
#include <system_error>

namespace tarnwick::platform {

/// Makes `folder` and its missing parent folders. Only this user can access the new folders, and
/// they survive a power cut as far as the file system allows. Succeeds if the folder exists
/// already.
std::error_code makeFolder(const std::filesystem::path& folder);

/// After this call, entries made, renamed or removed in `folder` survive a power cut, as far as the
/// file system allows.
void makeLasting(const std::filesystem::path& folder);

}  // namespace tarnwick::platform
