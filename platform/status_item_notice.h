// SPDX-License-Identifier: MIT
// What the user should know about the status item.
#pragma once

#include <string>

#include "core/records/published.h"

namespace tarnwick::platform {

/// A sentence or two, such as that no tray shows the item and what opens the panel without it.
/// Main thread.
class StatusItemNotice final : public ObservableObject {
 public:
    /// UTF-8; empty while there is nothing to say.
    Published<std::string> text{*this};
};

}  // namespace tarnwick::platform
