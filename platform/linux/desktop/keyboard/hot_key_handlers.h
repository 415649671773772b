// What the sources of hot keys share: handles, and the handler of their events.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "platform/hot_keys.h"

namespace tarnwick::platform {

/// Calls `gone` when it is destroyed.
std::unique_ptr<HotKeyHandle> makeHandle(std::string description, std::function<void()> gone);

/// A program installs one handler; of several the newest is asked. Main thread.
class HotKeyHandlers final {
 public:
    /// The handler stays until the handle is destroyed.
    std::unique_ptr<HotKeyHandle> add(HotKeyHandler handler);
    /// Tells the handler, if there is one, of the press of a hot key. It may remove itself.
    void press(HotKeyID id) const;

 private:
    /// Its handle keeps it.
    std::weak_ptr<HotKeyHandler> handler_;
};

}  // namespace tarnwick::platform
