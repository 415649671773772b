// SPDX-License-Identifier: MIT
// Smooth steps from one figure to the next, for figures that are drawn as a length.
#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "platform/dispatch.h"

namespace tarnwick {

class MovingValue;

/// One clock for everything that moves. It ticks only while something moves, and only as often as
/// the eye needs to see one movement. Main thread.
class Motion {
 public:
    // Seconds. A movement ends with its sixth frame, well within a fifth of a second.
    static constexpr double kDuration = 0.175;
    static constexpr double kFrame = 0.03;
    // Logical pixels of a bar. Shorter steps are too small to be seen as a movement, and so is the
    // rest of a longer one: each frame wakes this program and the display server.
    static constexpr double kLeastStep = 4;
    static constexpr double kLeastRest = 1;
    /// How long a symbol takes to turn once.
    static constexpr double kTurn = 0.6;

    /// `dispatch` must outlive the motion.
    explicit Motion(platform::Dispatch& dispatch) : dispatch_(dispatch) {}
    Motion(const Motion&) = delete;
    Motion& operator=(const Motion&) = delete;

    /// With true nothing moves: current movements end at once, and later steps are jumps.
    void setReduced(bool isReduced);
    bool isReduced() const { return isReduced_; }
    /// Its clock, for what else the same view does in time.
    platform::Dispatch& dispatch() const { return dispatch_; }
    /// True while the clock ticks.
    bool isRunning() const { return timer_ != nullptr; }

 private:
    friend class MovingValue;

    double now() const { return dispatch_.now(); }
    void add(MovingValue* value);
    void remove(MovingValue* value);
    void tick();

    platform::Dispatch& dispatch_;
    bool isReduced_ = false;
    /// The values that are moving now.
    std::vector<MovingValue*> moving_;
    /// Not null while any value is moving.
    std::unique_ptr<platform::Timer> timer_;
};

/// A figure that takes a while to arrive at a new value. Main thread.
class MovingValue {
 public:
    /// `changed` is called for each frame that shows another value. With a null `motion` every step
    /// is a jump. `duration` in seconds.
    MovingValue(std::shared_ptr<Motion> motion, std::function<void()> changed,
                double duration = Motion::kDuration);
    MovingValue(const MovingValue&) = delete;
    MovingValue& operator=(const MovingValue&) = delete;
    ~MovingValue();

    /// The value to show now.
    double value() const { return shown_; }
    /// The value that it moves to or has reached.
    double target() const { return target_; }
    /// Takes the value at once. Does not call `changed`.
    void jumpTo(double target);
    /// Moves to the value from the one that is shown now, and is there as soon as less than
    /// `closeness` is left of the way.
    void moveTo(double target, double closeness = 0);

 private:
    friend class Motion;

    /// Shows the value for the time `now`; false once it has arrived.
    bool show(double now);

    std::shared_ptr<Motion> motion_;
    std::function<void()> changed_;
    double duration_;
    double shown_ = 0;
    double origin_ = 0;
    double target_ = 0;
    double closeness_ = 0;
    /// When the movement began, seconds of the dispatch's clock.
    double start_ = 0;
};

}  // namespace tarnwick
