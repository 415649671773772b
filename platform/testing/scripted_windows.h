// SPDX-License-Identifier: MIT
// Windows without a screen.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/testing/answers.h"
#include "platform/windows.h"

namespace tarnwick::platform::testing {

/// The calls are recorded as "make 1", "title 1 TEXT", "content 1", "no content 1", "delegate 1",
/// "no delegate 1", "center 1", "front 1", "gone 1" (the window was destroyed) and "activate". The
/// numbers count the windows from 1. Main thread. Requires: the object outlives its windows.
class ScriptedWindows final : public Windows {
 public:
    CallRecord calls;
    /// Options of every window made, in order.
    std::vector<WindowOptions> options;
    /// The last delegate of each window; null if there is none.
    std::vector<WindowDelegate*> delegates;

    std::unique_ptr<Window> makeWindow(const WindowOptions& windowOptions) override;
    void activateIgnoringOtherApps() override { calls.add("activate"); }

    /// How many windows exist.
    int living() const { return living_; }
    /// Acts as a user who closes the window: tells its delegate if there is one.
    void closeByUser(int number);

 private:
    class ScriptedWindow;

    int living_ = 0;
};

}  // namespace tarnwick::platform::testing
