// Labels of file systems, as the device manager lists them.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace tarnwick::platform {

/// The text with its escapes (\x20 for a space) decoded. Other characters stay.
std::string decodedHexEscapes(std::string_view text);

/// The label of the file system on `device` (a path below `root`), from the links in
/// dev/disk/by-label. If there are several, the first in alphabetical order. Absent if there is
/// none.
std::optional<std::string> labelOfDevice(const std::string& root, const std::string& device);

}  // namespace tarnwick::platform
