// Smooth steps from one figure to the next, for what is drawn as a length.
#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "platform/dispatch.h"

namespace tarnwick {

class MovingValue;

/// One clock for everything that moves. It ticks only while something does, and so often that the
/// eye sees one movement, no more. Main thread.
class Motion {
 public:
    // Seconds. The sixth frame is the last one, with some of a fifth of a second to spare.
    static constexpr double kDuration = 0.175;
    static constexpr double kFrame = 0.03;

    /// `dispatch` must outlive the motion.
    explicit Motion(platform::Dispatch& dispatch) : dispatch_(dispatch) {}
    Motion(const Motion&) = delete;
    Motion& operator=(const Motion&) = delete;

    /// With true nothing moves: what is on its way arrives at once, and later steps are jumps.
    void setReduced(bool isReduced);
    bool isReduced() const { return isReduced_; }
    /// The clock ticks.
    bool isRunning() const { return timer_ != nullptr; }

 private:
    friend class MovingValue;

    double now() const { return dispatch_.now(); }
    void add(MovingValue* value);
    void remove(MovingValue* value);
    void tick();

    platform::Dispatch& dispatch_;
    bool isReduced_ = false;
    /// What is on its way.
    std::vector<MovingValue*> moving_;
    /// There while anything is.
    std::unique_ptr<platform::Timer> timer_;
};

/// A figure that takes kDuration to arrive at a new value. Main thread.
class MovingValue {
 public:
    /// `changed` is called for each frame that shows another value. Without a motion every step is
    /// a jump.
    MovingValue(std::shared_ptr<Motion> motion, std::function<void()> changed);
    MovingValue(const MovingValue&) = delete;
    MovingValue& operator=(const MovingValue&) = delete;
    ~MovingValue();

    /// What to show now.
    double value() const { return shown_; }
    /// Where it is going, or has arrived.
    double target() const { return target_; }
    /// Is there at once. Does not call `changed`.
    void jumpTo(double target);
    /// Goes there from where it is now.
    void moveTo(double target);

 private:
    friend class Motion;

    /// Shows the place at that time; false once it has arrived.
    bool show(double now);

    std::shared_ptr<Motion> motion_;
    std::function<void()> changed_;
    double shown_ = 0;
    double origin_ = 0;
    double target_ = 0;
    /// When it left, seconds of the dispatch's clock.
    double start_ = 0;
};

}  // namespace tarnwick
