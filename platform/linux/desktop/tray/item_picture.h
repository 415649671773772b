// SPDX-License-Identifier: MIT
// The status item's pictures: the icon as a square in the sizes that tray hosts ask for or as a
// file, or icon and text side by side.
#pragma once

#include <QImage>
#include <QString>
#include <functional>
#include <map>
#include <string>

#include "core/records/tint.h"
#include "platform/linux/desktop/tray/dbus_types.h"

namespace tarnwick::platform {

/// Draws a symbol as a square of `pixels` on a transparent ground, in the shade of `tint` for a
/// light or a dark desktop. A null image when there is no such symbol.
using IconPainter =
    std::function<QImage(const std::string& symbol, Tint tint, bool dark, int pixels)>;

/// The content of one picture.
struct ItemIcon {
    std::string symbol;
    Tint tint = Tint::green;
    /// Whether the desktop prefers dark.
    bool dark = false;

    bool operator==(const ItemIcon&) const = default;
};

/// The icon as a square of `pixels`; transparent when the painter has no such symbol.
QImage squarePicture(const IconPainter& painter, const ItemIcon& icon, int pixels);

/// The icon in each size that hosts ask for: 16, 22, 24, 32, 48 and 64 pixels.
IconPixmaps squarePixmaps(const IconPainter& painter, const ItemIcon& icon);

/// Width of widePicture() for a height, both in pixels. It is the same for every text, so that
/// items beside it do not move when the text changes.
int widePictureWidth(int height);

/// Edge of the icon in a widePicture() of a height, both in pixels.
int wideIconSize(int height);

/// Draws `icon`, which is wideIconSize() pixels wide, and the text in one row, `height` pixels
/// high. A text that does not fit is cut with an ellipsis; all digits have the same width.
///
/// The letters are dark, or light for a dark desktop. The colour of the bar is unknown and may be
/// close to theirs, so the letters have an edge in the opposite shade.
QImage widePicture(const QImage& icon, const QString& text, bool dark, int height);

/// Writes each different icon once. Each has its own name, because hosts cache what they read by
/// name. The destructor removes the files. Main thread.
class PictureFile final {
 public:
    /// The files lie in the folder "tarnwick" below `runtimeFolder`, which is made when needed. If
    /// `runtimeFolder` is empty, nothing is written.
    explicit PictureFile(std::string runtimeFolder);
    ~PictureFile();
    PictureFile(const PictureFile&) = delete;
    PictureFile& operator=(const PictureFile&) = delete;

    /// Path of the icon's file; empty when it could not be written.
    QString path(const IconPainter& painter, const ItemIcon& icon);

 private:
    QString folder_;
    /// The written files: name to full path.
    std::map<QString, QString> written_;
};

}  // namespace tarnwick::platform
