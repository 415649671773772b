// Work that is due once, soon, however often it is asked for.
#pragma once

#include <functional>
#include <memory>
#include <utility>

#include "platform/dispatch.h"

namespace tarnwick::platform {

/// Collapses the requests of one turn of the main queue: what observers mark stale many times is
/// looked at once. Main thread.
class NextTurn {
 public:
    /// `dispatch` must outlive this.
    NextTurn(Dispatch& dispatch, std::function<void()> work)
        : dispatch_(dispatch), state_(std::make_shared<State>(State{std::move(work)})) {}

    /// Runs the work on a later turn, unless it is due already or this is gone by then. The work
    /// may schedule itself again, and may destroy this.
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
