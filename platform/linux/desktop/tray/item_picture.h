// The status item's pictures: the icon as a square in the sizes that tray hosts ask for, or icon
// and text side by side.
#pragma once

#include <QImage>
#include <QString>
#include <functional>
#include <string>

#include "core/records/tint.h"
#include "platform/linux/desktop/tray/dbus_types.h"

namespace tarnwick::platform {

/// Draws a symbol as a square of `pixels` on a transparent ground, in the shade of `tint` for a
/// light or a dark desktop. A null image when there is no such symbol.
using IconPainter =
    std::function<QImage(const std::string& symbol, Tint tint, bool dark, int pixels)>;

/// What one picture shows.
struct ItemIcon {
    std::string symbol;
    Tint tint = Tint::green;
    /// The desktop prefers dark.
    bool dark = false;

    bool operator==(const ItemIcon&) const = default;
};

/// The icon as a square of `pixels`; transparent when the painter has no such symbol.
QImage squarePicture(const IconPainter& painter, const ItemIcon& icon, int pixels);

/// The icon in each size that hosts ask for: 16, 22, 24, 32, 48 and 64 pixels.
IconPixmaps squarePixmaps(const IconPainter& painter, const ItemIcon& icon);

/// Width of widePicture() for a height, both in pixels: the same for every text, so that nothing
/// beside the item moves when the text changes.
int widePictureWidth(int height);

/// Edge of the icon in a widePicture() of a height, both in pixels.
int wideIconSize(int height);

/// `icon`, wideIconSize() pixels wide, and text in one row, `height` pixels high. The text is cut
/// with an ellipsis where it does not fit; its digits take the same room each. It is dark, or light
/// for a dark desktop; the ground of the bar is not known and may be of the letters' own shade, so
/// they carry an edge of the opposite one.
QImage widePicture(const QImage& icon, const QString& text, bool dark, int height);

}  // namespace tarnwick::platform
