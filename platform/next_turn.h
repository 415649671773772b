// SPDX-License-Identifier: MIT
// Work that runs once, on the next turn, after any number of requests.
#pragma once

#include <functional>
#include <memory>
#include <utility>

#include "platform/dispatch.h"

namespace tarnwick::platform {

/// Merges all requests of one turn of the main queue into one run of the work: observers may mark
/// something as stale many times, and it is looked at once. Main thread.
class NextTurn {
 public:
    /// Requires: `dispatch` outlives this object.
    NextTurn(Dispatch& dispatch, std::function<void()> work)
        : dispatch_(dispatch), state_(std::make_shared<State>(State{std::move(work)})) {}

    /// Runs the work on a later turn. Does nothing if a run is already due. The run is dropped if
    /// this object is destroyed before. The work may call schedule() and may destroy this object.
    void schedule() {
        if (std::exchange(state_->isDue, true)) {
            return;
        }
        dispatch_.async([weak = std::weak_ptr(state_)] {
            if (const auto state = weak.lock()) {
                state->isDue = false;
                state->work();
            }
        });
    }

 private:
    struct State {
        std::function<void()> work;
        bool isDue = false;
    };

    Dispatch& dispatch_;
    std::shared_ptr<State> state_;
};

}  // namespace tarnwick::platform
