// The colours and fonts that every widget draws with.
#pragma once

#include <QColor>
#include <QFont>
#include <optional>
#include <vector>

#include "core/records/tint.h"
#include "platform/qt/text_style.h"

namespace tarnwick::qt {

enum class ColorRole {
    /// Ground of the panel.
    panel,
    /// Ground of a window, and of the cards on it.
    window,
    card,
    text,
    /// Text of less weight.
    secondaryText,
    /// The empty part of a bar.
    track,
    /// Ground of buttons and rows that can be pressed.
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

/// Light or dark. Main thread; one for the process, outliving every widget that draws with it.
class Theme {
 public:
    /// Gives the application its palette, too.
    explicit Theme(bool isDark = false);

    bool isDark() const { return isDark_; }
    /// Takes effect at once: the application's new palette makes every widget paint itself again.
    void setDark(bool isDark);

    QColor color(ColorRole role) const;
    QColor color(Tint tint) const { return color(tint, isDark_); }
    /// The shade of `tint` for light or dark, whatever the theme is.
    static QColor color(Tint tint, bool isDark);
    /// Derived from the desktop's interface font, whose size the sizes scale with. Valid until the
    /// desktop's font changes.
    const TextStyle& style(FontRole role) const;

 private:
    void applyPalette() const;

    bool isDark_;
    /// The interface font that `styles_` come from.
    mutable std::optional<QFont> base_;
    mutable std::vector<TextStyle> styles_;
};

}  // namespace tarnwick::qt
