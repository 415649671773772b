// SPDX-License-Identifier: MIT
// The names of graphics cards in the databases that most systems have installed.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace tarnwick::platform {

/// Searches the names database of the PCI bus for a device, one line at a time.
class PciNameSearch {
 public:
    /// Four hexadecimal digits in lower case each.
    PciNameSearch(std::string_view vendor, std::string_view device);

    /// Reads the next line, without its line break. False if no later line can matter.
    bool take(std::string_view line);
    /// The name under which the card is sold where the database has it in brackets, else the whole
    /// name. Absent where the device is not there.
    const std::optional<std::string>& name() const { return name_; }

 private:
    const std::string vendor_;
    const std::string device_;
    bool isInVendor_ = false;
    std::optional<std::string> name_;
};

/// The same for the database of the amdgpu driver's library, which also knows revisions.
class AmdNameSearch {
 public:
    /// Four and two hexadecimal digits in lower case.
    AmdNameSearch(std::string_view device, std::string_view revision);

    bool take(std::string_view line);
    const std::optional<std::string>& name() const { return name_; }

 private:
    const std::string device_;
    const std::string revision_;
    std::optional<std::string> name_;
};

/// The name of a card in the databases below `root`; empty if none has it. `vendor` and `device`
/// have four hexadecimal digits in lower case, `revision` has two. May read megabytes, so call it
/// only once per card.
std::string graphicsName(const std::string& root, std::string_view vendor, std::string_view device,
                         std::string_view revision);

}  // namespace tarnwick::platform
