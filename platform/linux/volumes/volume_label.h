// SPDX-License-Identifier: MIT
// Labels of file systems, as the device manager lists them.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/linux/volumes/mountinfo.h"

namespace tarnwick::platform {

/// The text with its escapes (\x20 for a space) decoded. Other characters stay.
std::string decodedHexEscapes(std::string_view text);

/// The label of a file system, from the links in dev/disk/by-label: one that leads to a device of
/// its source or to the device with its number. If there are several, the first in alphabetical
/// order. Absent if there is none.
std::optional<std::string> labelOf(const std::string& root, const Mount& mount);

}  // namespace tarnwick::platform
