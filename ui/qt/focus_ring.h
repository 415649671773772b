// SPDX-License-Identifier: MIT
// Marks the button that has the keyboard's focus.
#pragma once

#include "ui/qt/ring_widget.h"

namespace tarnwick::qt {

class ButtonWidget;

/// A ring around the focused button: outside its edges, above its siblings. Visible only if a key
/// gave the focus.
class FocusRing final : public RingWidget {
    Q_OBJECT

 public:
    FocusRing(const Theme& theme, QWidget* parent);

    /// Moves to the place of the focused button.
    void follow();

 private:
    /// The button of the parent that shows its focus; null without one.
    const ButtonWidget* focusedButton() const;
};

}  // namespace tarnwick::qt
