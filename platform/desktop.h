// SPDX-License-Identifier: MIT
// The program's place on the desktop: the status item, and what the desktop does for it.
#pragma once

#include <functional>
#include <optional>
#include <string>

#include "core/records/tint.h"

namespace tarnwick::platform {

/// What the status item shows: icon and text in one row, centred vertically. Where the program
/// draws the row itself, the icon is drawn hierarchically in `tint`; the text is set in medium
/// weight with digits of one width, on one line, aligned to the leading edge of its room and cut
/// at the end with an ellipsis.
struct StatusItemContent {
    /// Points between icon and text.
    static constexpr double kSpacing = 4;
    /// Font size of the text, points.
    static constexpr double kFontSize = 11;
    /// Room of the text, points.
    static constexpr double kTextWidth = 72;

    /// Name of the icon's symbol.
    std::string symbol;
    Tint tint = Tint::green;
    /// The live text beside the icon; absent when only the icon is shown.
    std::optional<std::string> text;
    /// Read out by screen readers for icon and text as a whole.
    std::string accessibilityLabel;

    bool operator==(const StatusItemContent&) const = default;
};

/// Presses that a status item reports. Called on the main thread.
struct StatusItemActions {
    /// Primary click: opens or closes the panel.
    std::function<void()> click{};
    /// A click by the program itself: opens or closes the panel, without regard to an earlier
    /// click.
    std::function<void()> toggle{};
    /// Middle click: refreshes.
    std::function<void()> refresh{};
    /// Menu entry "Open Panel": opens the panel, or leaves it open.
    std::function<void()> openPanel{};
    /// Menu entry "Settings": shows the settings window.
    std::function<void()> showSettings{};
    /// Menu entry "Quit": ends the program.
    std::function<void()> quit{};
};

/// The one status item. Main thread.
class StatusItem {
 public:
    virtual ~StatusItem() = default;

    /// Shows `content`; costs nothing when it is shown already.
    virtual void setContent(const StatusItemContent& content) = 0;
    virtual void setActions(StatusItemActions actions) = 0;
    /// Whether a tray shows the item, so that there is a button to click.
    virtual bool inTray() const = 0;
    /// Clicks the item's button for the user, which runs `toggle`. False when the item is in no
    /// tray.
    virtual bool performClick() = 0;
    /// What a shortcut does while the item is in no tray. Nothing where that cannot be for long.
    virtual void toggleWithoutTray() {}
};

}  // namespace tarnwick::platform
