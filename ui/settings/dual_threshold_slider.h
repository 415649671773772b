// SPDX-License-Identifier: MIT
// The slider that sets a metric's two thresholds. Independent of any toolkit.
#pragma once

#include <array>
#include <optional>
#include <string>

#include "settings/binding.h"

namespace tarnwick {

/// Includes both ends.
struct ClosedRange {
    double lower = 0;
    double upper = 0;

    bool operator==(const ClosedRange&) const = default;
};

/// A threshold as a whole number, cut towards zero. "0" for a value that is not a number; the
/// nearest 64-bit number for a value outside that range.
std::string wholePercentText(double value);

/// Two thumbs on one track from 0 to 100 percent. Keeps no values: reads them through the bindings.
///
/// Writes whole numbers, except where a limit is not whole. Keeps the normal threshold at least one
/// below the high one, as far as the ranges allow.
///
/// Lengths and places are points in the slider's own coordinates; the slider is `width` wide. Main
/// thread only.
class DualThresholdSlider {
 public:
    enum class Thumb { normal, high };
    enum class Adjustment { increment, decrement };
    enum class MoveCommand { up, down, left, right };

    /// Lengths from the start of the track to its end: up to the normal threshold, from there to
    /// the high one, and the rest.
    struct Segments {
        double green;
        double yellow;
        double red;
    };

    static constexpr ClosedRange kTrackRange{0, 100};
    /// Diameter of a thumb.
    static constexpr double kThumbSize = 20;
    static constexpr double kTrackHeight = 6;
    /// Side of a square around a thumb's centre. A press in the square takes the thumb.
    static constexpr double kHitSize = 28;
    /// Opacity of the secondary colour in which the track is drawn below its segments.
    static constexpr double kTrackOpacity = 0.14;
    /// White level of the thumbs, light and dark.
    static constexpr double kLightThumbLevel = 1;
    static constexpr double kDarkThumbLevel = 0.12;

    /// `title` is the metric's name. The bound values must outlive the slider.
    DualThresholdSlider(std::string title, Binding<double> normal, Binding<double> high,
                        ClosedRange normalRange, ClosedRange highRange,
                        bool keyboardNavigationEnabled);
    DualThresholdSlider(const DualThresholdSlider&) = delete;
    DualThresholdSlider& operator=(const DualThresholdSlider&) = delete;
    DualThresholdSlider(DualThresholdSlider&&) = default;
    DualThresholdSlider& operator=(DualThresholdSlider&&) = default;
    ~DualThresholdSlider() = default;

    const std::string& title() const { return title_; }
    double value(Thumb thumb) const;
    const ClosedRange& range(Thumb thumb) const;
    /// Whether the thumbs take the keyboard's focus.
    bool keyboardNavigationEnabled() const { return keyboardNavigationEnabled_; }

    /// Length of the track; at least 1.
    static double usableWidth(double width);
    /// Distance of a value from the start of the track. The track starts kThumbSize / 2 inside the
    /// slider.
    static double position(double value, double width);
    /// Centre of a thumb along the slider. Never beyond the ends of the track, so that the user can
    /// always see and take the thumb. A value that is not a number lies at the start.
    double thumbCenter(Thumb thumb, double width) const;
    /// None is below 0.
    Segments segments(double width) const;
    /// Places along the slider of the least and the greatest value that a threshold can have. There
    /// are ticks below the track.
    std::array<double, 2> ticks(double width) const;
    /// Of a tick.
    static constexpr double kTickHeight = 4;
    static constexpr double kTickGap = 3;

    /// Begins a drag at `location`, `distanceFromAxis` away from the slider's middle line: takes
    /// the thumb under the pointer, on the bare track the nearer one, and moves it there. Away from
    /// thumbs and track, does nothing and returns false.
    ///
    /// If both thumbs are under the pointer, takes the nearer one, or the other one if only that
    /// can move to the pointer. If the nearer one is already at the pointer, a later move of the
    /// pointer decides.
    bool beginDrag(double location, double distanceFromAxis, double width);
    /// Applies every change of a drag, including its beginning.
    void drag(Thumb thumb, double location, double width);
    /// The pointer has moved since beginDrag().
    void continueDrag(double location, double width);
    /// The drag has ended or was cancelled.
    void endDrag();
    bool isDraggingNormal() const { return dragged_ == Thumb::normal; }
    bool isDraggingHigh() const { return dragged_ == Thumb::high; }

    /// One percent up or down.
    void adjust(Thumb thumb, Adjustment adjustment);
    /// Sets the value that is nearest to `value` and allowed for the thumb.
    void setValue(Thumb thumb, double value);
    /// Up and right increment, down and left decrement; does nothing without keyboard navigation.
    void move(Thumb thumb, MoveCommand command);

    std::string accessibilityLabel(Thumb thumb) const;
    std::string accessibilityValue(Thumb thumb) const;

 private:
    static double valueAt(double location, double width);
    /// The value that the thumb would take if the user pointed at `raw`.
    double clamped(Thumb thumb, double raw) const;
    bool isUnder(Thumb thumb, double location, double distanceFromAxis, double width) const;
    /// Both thumbs were under the pointer at `pressed`: the one to drag to `location`; absent if
    /// undecided.
    std::optional<Thumb> movable(double pressed, double location, double width) const;

    std::string title_;
    Binding<double> normal_;
    Binding<double> high_;
    ClosedRange normalRange_;
    ClosedRange highRange_;
    bool keyboardNavigationEnabled_;
    std::optional<Thumb> dragged_;
    /// Where the drag began, if it began on both thumbs and has not moved either one yet.
    std::optional<double> undecidedFrom_;
};

}  // namespace tarnwick
