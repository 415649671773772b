// SPDX-License-Identifier: MIT
// The rhythm of readings.
#pragma once

namespace tarnwick::probe {

/// Moments at equal distances, in seconds of a clock. They do not drift, however long a reading
/// takes.
class Pace {
 public:
    Pace(double interval, double now) : interval_(interval), moment_(now) {}

    /// When the next reading is due.
    double next() { return moment_ += interval_; }

    /// Call this when the reading begins. If it is one interval late or more, as after the program
    /// was stopped, the missed moments are left out. Otherwise readings would follow at once, and
    /// without time between them they have no rates.
    void begin(double now) {
        if (now - moment_ >= interval_) {
            moment_ = now;
        }
    }

 private:
    const double interval_;
    double moment_;
};

}  // namespace tarnwick::probe
