#include "platform/linux/desktop/item_picture.h"

#include <QFont>
#include <QFontMetricsF>
#include <QGuiApplication>
#include <QPainter>
#include <QPainterPath>
#include <QtMath>
#include <array>

namespace tarnwick::platform {
namespace {

constexpr std::array kSquareSizes = {16, 22, 24, 32, 48, 64};

// One row in points; a picture of any height is this row made larger or smaller.
constexpr qreal kRowHeight = 18;
constexpr qreal kIconSize = 16;
constexpr qreal kSpacing = 4;
constexpr qreal kTextWidth = 72;
constexpr int kFontSize = 11;
constexpr qreal kEdgeWidth = 2;
constexpr float kEdgeOpacity = 0.35F;

QFont textFont() {
    QFont font = QGuiApplication::font();
    font.setPixelSize(kFontSize);
    font.setWeight(QFont::Medium);
    // Shapes that fall between pixels must scale with the row.
    font.setHintingPreference(QFont::PreferNoHinting);
    return font;
}

}  // namespace

QImage squarePicture(const IconPainter& painter, const ItemIcon& icon, int pixels) {
    QImage picture = painter ? painter(icon.symbol, icon.tint, icon.dark, pixels) : QImage();
    if (picture.isNull()) {
        picture = QImage(pixels, pixels, QImage::Format_ARGB32_Premultiplied);
        picture.fill(Qt::transparent);
    } else if (picture.width() != pixels || picture.height() != pixels) {
        picture = picture.scaled(pixels, pixels, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    }
    picture.setDevicePixelRatio(1);
    return picture;
}

IconPixmaps squarePixmaps(const IconPainter& painter, const ItemIcon& icon) {
    IconPixmaps pixmaps;
    for (const int size : kSquareSizes) {
        pixmaps.append(toPixmap(squarePicture(painter, icon, size)));
    }
    return pixmaps;
}

int widePictureWidth(int height) {
    return qCeil((kIconSize + kSpacing + kTextWidth) * height / kRowHeight);
}

QImage widePicture(const IconPainter& painter, const ItemIcon& icon, const QString& text,
                   int height) {
    QImage picture(widePictureWidth(height), height, QImage::Format_ARGB32_Premultiplied);
    picture.fill(Qt::transparent);
    QPainter canvas(&picture);
    canvas.setRenderHint(QPainter::Antialiasing);
    const qreal scale = height / kRowHeight;
    const int iconPixels = qRound(kIconSize * scale);
    canvas.drawImage(0, (height - iconPixels) / 2, squarePicture(painter, icon, iconPixels));

    canvas.scale(scale, scale);
    const QFont font = textFont();
    const QFontMetricsF metrics(font);
    const qreal baseline = (kRowHeight + metrics.capHeight()) / 2;
    QPainterPath letters;
    letters.addText(kIconSize + kSpacing, baseline, font,
                    metrics.elidedText(text, Qt::ElideRight, kTextWidth));
    QColor edge = icon.dark ? Qt::black : Qt::white;
    edge.setAlphaF(kEdgeOpacity);
    canvas.strokePath(letters, QPen(edge, kEdgeWidth, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    canvas.fillPath(letters, icon.dark ? Qt::white : Qt::black);
    return picture;
}

}  // namespace tarnwick::platform
