// The rhythm of readings.
#pragma once

namespace tarnwick::probe {

/// Moments at equal distances, which do not drift however long a reading takes. Seconds of a clock.
class Pace {
 public:
    Pace(double interval, double now) : interval_(interval), moment_(now) {}

    /// When the next reading is due.
    double next() { return moment_ += interval_; }

    /// The reading begins. Where it is a whole interval late, as after the program was stopped, the
    /// moments that were missed are left out: readings at no distance have no rates.
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
