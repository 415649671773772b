// The slider with which a metric's two thresholds are set, without a toolkit.
#pragma once

#include <optional>
#include <string>

#include "settings/binding.h"

namespace tarnwick {

/// Both ends belong to it.
struct ClosedRange {
    double lower = 0;
    double upper = 0;

    bool operator==(const ClosedRange&) const = default;
};

/// A threshold as a whole number: cut toward zero. What is not a number is "0", and what no 64-bit
/// number can hold is the nearest one.
std::string wholePercentText(double value);

/// Two thumbs on one track from 0 to 100 percent. Keeps no values: reads them through the bindings
/// and writes whole numbers where those at its limits are whole, the normal one at least one below
/// the high one as far as the ranges allow. Lengths and places are points in the slider's own
/// coordinates, in which it is `width` wide. Main thread only.
class DualThresholdSlider {
 public:
    enum class Thumb { normal, high };
    enum class Adjustment { increment, decrement };
    enum class MoveCommand { up, down, left, right };

    /// From the start of the track to its end: up to the normal threshold, from there to the high
    /// one, and the rest.
    struct Segments {
        double green;
        double yellow;
        double red;
    };

    static constexpr ClosedRange kTrackRange{0, 100};
    /// Diameter of a thumb.
    static constexpr double kThumbSize = 20;
    static constexpr double kTrackHeight = 6;
    /// Side of the square around a thumb's centre in which a press takes the thumb.
    static constexpr double kHitSize = 28;
    /// Of the secondary colour, with which the track is drawn below its segments.
    static constexpr double kTrackOpacity = 0.14;
    /// White level of the thumbs, light and dark.
    static constexpr double kLightThumbLevel = 1;
    static constexpr double kDarkThumbLevel = 0.12;

    /// `title` is the metric's name. What is bound must outlive the slider.
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
    /// The thumbs take the keyboard's focus.
    bool keyboardNavigationEnabled() const { return keyboardNavigationEnabled_; }

    /// Length of the track; at least 1.
    static double usableWidth(double width);
    /// Distance of a value from the start of the track, which lies kThumbSize / 2 within the
    /// slider.
    static double position(double value, double width);
    /// Centre of a thumb along the slider; never beyond the ends of the track, whose start is the
    /// place of what is not a number: a thumb can always be seen and taken.
    double thumbCenter(Thumb thumb, double width) const;
    /// None is below 0.
    Segments segments(double width) const;

    /// Begins a drag at a place: takes the thumb that is under the pointer, and moves it there. Of
    /// two thumbs under the pointer it is the nearer, unless that one cannot move to the pointer
    /// and the other can; a nearer one that is there already waits for the pointer to move. False,
    /// and nothing happens, away from both thumbs; `distanceFromAxis` is how far from the slider's
    /// middle line the place is.
    bool beginDrag(double location, double distanceFromAxis, double width);
    /// Every change of a drag, also its beginning.
    void drag(Thumb thumb, double location, double width);
    /// The pointer has moved since beginDrag().
    void continueDrag(double location, double width);
    /// The drag has ended or was cancelled.
    void endDrag();
    bool isDraggingNormal() const { return dragged_ == Thumb::normal; }
    bool isDraggingHigh() const { return dragged_ == Thumb::high; }

    /// One percent up or down.
    void adjust(Thumb thumb, Adjustment adjustment);
    /// As near to `value` as the thumb may go.
    void setValue(Thumb thumb, double value);
    /// Up and right increment, down and left decrement; does nothing without keyboard navigation.
    void move(Thumb thumb, MoveCommand command);

    std::string accessibilityLabel(Thumb thumb) const;
    std::string accessibilityValue(Thumb thumb) const;

 private:
    static double valueAt(double location, double width);
    /// What the thumb would be set to for a value that the user points at.
    double clamped(Thumb thumb, double raw) const;
    bool isUnder(Thumb thumb, double location, double distanceFromAxis, double width) const;
    /// Of two thumbs that were under the pointer at `pressed`, the one to be dragged to it.
    std::optional<Thumb> movable(double pressed, double location, double width) const;

    std::string title_;
    Binding<double> normal_;
    Binding<double> high_;
    ClosedRange normalRange_;
    ClosedRange highRange_;
    bool keyboardNavigationEnabled_;
    std::optional<Thumb> dragged_;
    /// Where a drag began that began on both thumbs and has moved neither yet.
    std::optional<double> undecidedFrom_;
};

}  // namespace tarnwick
