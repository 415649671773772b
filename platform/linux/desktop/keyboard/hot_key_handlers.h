// SPDX-License-Identifier: MIT
// Code that all sources of hot keys share: handles, and the handler of their events.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "platform/hot_keys.h"

namespace tarnwick::platform {

/// Calls `gone` when it is destroyed.
std::unique_ptr<HotKeyHandle> makeHandle(std::string description, std::function<void()> gone);

/// Holds one handler. A program installs one; if it installs several, the newest is called. Main
/// thread.
class HotKeyHandlers final {
 public:
    /// The handler stays until the handle is destroyed.
    std::unique_ptr<HotKeyHandle> add(HotKeyHandler handler);
    /// Calls the handler, if there is one, for a press of a hot key. The handler may remove itself.
    void press(HotKeyID id) const;

 private:
    /// The handle owns the handler.
    std::weak_ptr<HotKeyHandler> handler_;
};

}  // namespace tarnwick::platform
