// SPDX-License-Identifier: MIT
// The colours and fonts that every widget draws with.
#pragma once

#include <QColor>
#include <QFont>
#include <map>
#include <optional>
#include <utility>
#include <vector>

#include "core/records/tint.h"
#include "platform/qt/text_style.h"

namespace tarnwick::qt {

enum class ColorRole {
    /// Background of the panel.
    panel,
    /// Background of a window, and of the cards on it.
    window,
    card,
    text,
    /// Less prominent text.
    secondaryText,
    /// The empty part of a bar.
    track,
    /// Background of buttons and rows that can be pressed: normal, under the pointer and pressed.
    control,
    controlHovered,
    controlPressed,
    hairline,
    /// Focus rings and selections.
    accent,
};

enum class FontRole {
    headline,
    subheadline,
    subheadlineMedium,
    caption,
    captionMedium,
};

/// So opaque are links under the pointer.
inline constexpr float kHoveredLink = 0.75F;
inline constexpr float kPressedLink = 0.5F;

/// Light or dark, each with more contrast if the user wants it. Main thread; one for the process,
/// outliving every widget that draws with it.
class Theme {
 public:
    /// Also sets the application's palette.
    explicit Theme(bool isDark = false);

    bool isDark() const { return isDark_; }
    /// Takes effect at once: the application's new palette makes every widget paint itself again.
    void setDark(bool isDark);
    /// With true less prominent texts, lines and grounds stand out more. Takes effect at once, too.
    void setHighContrast(bool isHigh);

    QColor color(ColorRole role) const;
    QColor color(Tint tint) const { return color(tint, isDark_); }
    /// The shade of `tint` for light or dark, independent of the current theme.
    static QColor color(Tint tint, bool isDark);
    /// Derived from the desktop's interface font; the sizes scale with the size of that font. The
    /// reference is valid until the desktop's font changes.
    const TextStyle& style(FontRole role) const;
    /// The same at a share of its size, above 0.
    const TextStyle& style(FontRole role, qreal share) const;
    /// What is `length` logical pixels beside texts of a usual size, beside the texts of the
    /// desktop's interface font: at least as much, and at most twice as much.
    int scaled(int length) const;

 private:
    void applyPalette() const;
    /// Derives styles and scale from the interface font, unless they are derived from it already.
    void takeFont() const;

    bool isDark_;
    bool isHighContrast_ = false;
    /// The interface font that `styles_` and `scale_` come from.
    mutable std::optional<QFont> base_;
    mutable std::vector<TextStyle> styles_;
    /// By role and share of the size.
    mutable std::map<std::pair<FontRole, qreal>, TextStyle> scaledStyles_;
    mutable qreal scale_ = 1;
};

}  // namespace tarnwick::qt
