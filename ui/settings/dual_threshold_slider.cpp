// SPDX-License-Identifier: MIT
#include "ui/settings/dual_threshold_slider.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <utility>

namespace tarnwick {

namespace {

constexpr double kSpan =
    DualThresholdSlider::kTrackRange.upper - DualThresholdSlider::kTrackRange.lower;
/// 2^63, the first whole number above the 64-bit range.
constexpr double kBeyondInteger = 9223372036854775808.0;

}  // namespace

std::string wholePercentText(double value) {
    if (std::isnan(value)) {
        return "0";
    }
    if (value >= kBeyondInteger) {
        return std::to_string(std::numeric_limits<std::int64_t>::max());
    }
    if (value < -kBeyondInteger) {
        return std::to_string(std::numeric_limits<std::int64_t>::min());
    }
    return std::to_string(static_cast<std::int64_t>(value));
}

DualThresholdSlider::DualThresholdSlider(std::string title, Binding<double> normal,
                                         Binding<double> high, ClosedRange normalRange,
                                         ClosedRange highRange, bool keyboardNavigationEnabled)
    : title_(std::move(title)),
      normal_(std::move(normal)),
      high_(std::move(high)),
      normalRange_(normalRange),
      highRange_(highRange),
      keyboardNavigationEnabled_(keyboardNavigationEnabled) {}

double DualThresholdSlider::value(Thumb thumb) const {
    return thumb == Thumb::normal ? normal_.get() : high_.get();
}

const ClosedRange& DualThresholdSlider::range(Thumb thumb) const {
    return thumb == Thumb::normal ? normalRange_ : highRange_;
}

double DualThresholdSlider::usableWidth(double width) {
    return std::max(width - kThumbSize, 1.0);
}

double DualThresholdSlider::position(double value, double width) {
    return usableWidth(width) * (value - kTrackRange.lower) / kSpan;
}

double DualThresholdSlider::thumbCenter(Thumb thumb, double width) const {
    const double track = usableWidth(width);
    const double x = position(value(thumb), width);
    return (std::isnan(x) ? 0 : std::clamp(x, 0.0, track)) + kThumbSize / 2;
}

DualThresholdSlider::Segments DualThresholdSlider::segments(double width) const {
    const double normal = value(Thumb::normal);
    const double high = value(Thumb::high);
    const auto length = [width](double percent) {
        return usableWidth(width) * std::max(0.0, percent) / kSpan;
    };
    return {length(normal - kTrackRange.lower), length(high - normal),
            length(kTrackRange.upper - high)};
}

std::array<double, 2> DualThresholdSlider::ticks(double width) const {
    return {position(normalRange_.lower, width) + kThumbSize / 2,
            position(highRange_.upper, width) + kThumbSize / 2};
}

double DualThresholdSlider::valueAt(double location, double width) {
    const double track = usableWidth(width);
    double x = location - kThumbSize / 2;
    if (x <= 0) {
        x = 0;
    } else if (x > track) {
        x = track;
    }
    return kTrackRange.lower + (x / track) * kSpan;
}

// The order of the clamps decides the result if the ranges contradict each other. In each std::min
// and std::max the bound comes first, because the first argument is the result when the second one
// is not a number.
double DualThresholdSlider::clamped(Thumb thumb, double raw) const {
    if (thumb == Thumb::normal) {
        const double limit =
            std::max(normalRange_.lower, std::min(normalRange_.upper, high_.get() - 1));
        return std::min(limit, std::max(normalRange_.lower, std::round(raw)));
    }
    const double limit = std::min(highRange_.upper, std::max(highRange_.lower, normal_.get() + 1));
    return std::max(limit, std::min(highRange_.upper, std::round(raw)));
}

void DualThresholdSlider::setValue(Thumb thumb, double value) {
    (thumb == Thumb::normal ? normal_ : high_).set(clamped(thumb, value));
}

void DualThresholdSlider::drag(Thumb thumb, double location, double width) {
    dragged_ = thumb;
    undecidedFrom_.reset();
    setValue(thumb, valueAt(location, width));
}

bool DualThresholdSlider::isUnder(Thumb thumb, double location, double distanceFromAxis,
                                  double width) const {
    return std::abs(location - thumbCenter(thumb, width)) <= kHitSize / 2 &&
           std::abs(distanceFromAxis) <= kHitSize / 2;
}

std::optional<DualThresholdSlider::Thumb> DualThresholdSlider::movable(double pressed,
                                                                       double location,
                                                                       double width) const {
    const double raw = valueAt(location, width);
    const auto canMove = [&](Thumb thumb) { return clamped(thumb, raw) != value(thumb); };
    const auto distance = [&](Thumb thumb) {
        return std::abs(pressed - thumbCenter(thumb, width));
    };
    const bool isHighNearer = distance(Thumb::high) < distance(Thumb::normal);
    const Thumb nearer = isHighNearer ? Thumb::high : Thumb::normal;
    if (canMove(nearer)) {
        return nearer;
    }
    const Thumb other = isHighNearer ? Thumb::normal : Thumb::high;
    const bool isThere = std::round(raw) == value(nearer);
    return !isThere && canMove(other) ? std::optional(other) : std::nullopt;
}

bool DualThresholdSlider::beginDrag(double location, double distanceFromAxis, double width) {
    // The end of the last drag may not have been reported.
    endDrag();
    const bool onNormal = isUnder(Thumb::normal, location, distanceFromAxis, width);
    const bool onHigh = isUnder(Thumb::high, location, distanceFromAxis, width);
    if (!onNormal && !onHigh) {
        if (std::abs(distanceFromAxis) > kHitSize / 2 || location < 0 || location > width) {
            return false;
        }
        const bool isHighNearer = std::abs(location - thumbCenter(Thumb::high, width)) <
                                  std::abs(location - thumbCenter(Thumb::normal, width));
        drag(isHighNearer ? Thumb::high : Thumb::normal, location, width);
        return true;
    }
    if (onNormal && onHigh) {
        undecidedFrom_ = location;
        continueDrag(location, width);
    } else {
        drag(onNormal ? Thumb::normal : Thumb::high, location, width);
    }
    return true;
}

void DualThresholdSlider::continueDrag(double location, double width) {
    const auto thumb = undecidedFrom_ ? movable(*undecidedFrom_, location, width) : dragged_;
    if (thumb) {
        drag(*thumb, location, width);
    }
}

void DualThresholdSlider::endDrag() {
    dragged_.reset();
    undecidedFrom_.reset();
}

void DualThresholdSlider::adjust(Thumb thumb, Adjustment adjustment) {
    setValue(thumb, value(thumb) + (adjustment == Adjustment::increment ? 1 : -1));
}

void DualThresholdSlider::move(Thumb thumb, MoveCommand command) {
    if (!keyboardNavigationEnabled_) {
        return;
    }
    switch (command) {
        case MoveCommand::up:
        case MoveCommand::right:
            return adjust(thumb, Adjustment::increment);
        case MoveCommand::down:
        case MoveCommand::left:
            return adjust(thumb, Adjustment::decrement);
    }
}

std::string DualThresholdSlider::accessibilityLabel(Thumb thumb) const {
    return title_ + (thumb == Thumb::normal ? " normal threshold" : " high threshold");
}

std::string DualThresholdSlider::accessibilityValue(Thumb thumb) const {
    return wholePercentText(value(thumb)) + " percent";
}

}  // namespace tarnwick
