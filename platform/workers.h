// SPDX-License-Identifier: MIT
// Work that may never come back.
#pragma once

#include <functional>

namespace tarnwick::platform {

/// Any thread but the main one.
class Workers {
 public:
    enum class Outcome {
        ended,
        /// The work goes on, and nobody waits for it any more.
        late,
        /// No thread can be started now: the work is dropped.
        refused,
    };

    virtual ~Workers() = default;

    /// Runs `work` on another thread and waits until it has ended, `seconds` at most. What the work
    /// uses must live until it has ended, however late.
    virtual Outcome run(std::function<void()> work, double seconds) = 0;
};

/// Waits on the system's clock for threads that something else starts.
class ThreadWorkers final : public Workers {
 public:
    /// False where no thread can be started; the work is dropped then.
    using Start = std::function<bool(std::function<void()>)>;

    explicit ThreadWorkers(Start start);

    Outcome run(std::function<void()> work, double seconds) override;

 private:
    const Start start_;
};

/// For work that is known to come back: runs it on the caller's thread.
Workers& noWorkers();

}  // namespace tarnwick::platform
