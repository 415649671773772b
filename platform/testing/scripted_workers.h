// SPDX-License-Identifier: MIT
// Workers that a test makes hang.
#pragma once

#include <cstddef>
#include <functional>
#include <vector>

#include "platform/testing/manual_dispatch.h"
#include "platform/workers.h"

namespace tarnwick::platform::testing {

/// Runs work at once, on the caller's thread, until a test says otherwise. One thread at a time.
class ScriptedWorkers final : public Workers {
 public:
    /// Waiting turns the clock of `dispatch`, if there is one.
    explicit ScriptedWorkers(ManualDispatch* dispatch = nullptr) : dispatch_(dispatch) {}

    /// While true, work that is started hangs, and whoever waits for it waits in vain.
    bool hangs = false;
    /// So many of the next pieces of work hang.
    int hangNext = 0;
    /// While true, no thread can be started.
    bool refuses = false;
    /// Seconds waited in vain, one for each piece of work that was late.
    std::vector<double> waits{};

    /// Pieces of work that hang now.
    std::size_t hanging() const { return hanging_.size(); }
    /// All work that hangs comes back.
    void comeBack();

    Outcome run(std::function<void()> work, double seconds) override;

 private:
    ManualDispatch* const dispatch_;
    std::vector<std::function<void()>> hanging_;
};

}  // namespace tarnwick::platform::testing
