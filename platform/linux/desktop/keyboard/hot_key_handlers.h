// The handlers of hot key events, for whatever brings the events.
#pragma once

#include <list>
#include <memory>

#include "platform/hot_keys.h"

namespace tarnwick::platform {

/// Main thread.
class HotKeyHandlers final {
 public:
    /// The handler stays until the handle is destroyed, which must happen before this ends.
    std::unique_ptr<HotKeyHandle> add(HotKeyHandler handler);
    /// Offers the press of a hot key to the handlers, the newest first, until one has handled it.
    /// A handler may add and remove handlers.
    void press(HotKeyID id) const;

 private:
    class Handle;

    std::list<std::shared_ptr<HotKeyHandler>> handlers_;
};

}  // namespace tarnwick::platform
