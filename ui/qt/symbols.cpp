// SPDX-License-Identifier: MIT
#include "ui/qt/symbols.h"

#include <QCache>
#include <QPainter>
#include <QPainterPath>
#include <QString>
#include <QtMath>
#include <algorithm>
#include <cmath>

#include "ui/qt/device_pixels.h"
#include "ui/symbols/symbol_drawing.h"

namespace tarnwick::qt {

namespace {

constexpr qreal kGrid = 16;

/// Null if there is no drawing of that name.
const SymbolDrawing* drawing(std::string_view name) {
    const auto drawings = symbolDrawings();
    const auto found = std::find_if(drawings.begin(), drawings.end(),
                                    [name](const auto& each) { return each.name == name; });
    return found == drawings.end() ? nullptr : &*found;
}

QPainterPath painterPath(const SymbolPart& part) {
    QPainterPath path;
    path.setFillRule(part.oddEven ? Qt::OddEvenFill : Qt::WindingFill);
    const auto at = [&part](std::size_t i) {
        return QPointF(static_cast<qreal>(part.points[i].x), static_cast<qreal>(part.points[i].y));
    };
    for (std::size_t i = 0; i < part.points.size(); ++i) {
        switch (part.points[i].kind) {
            case SymbolPoint::Kind::move:
                path.moveTo(at(i));
                break;
            case SymbolPoint::Kind::line:
                path.lineTo(at(i));
                break;
            case SymbolPoint::Kind::curve:
                path.cubicTo(at(i), at(i + 1), at(i + 2));
                i += 2;
                break;
            case SymbolPoint::Kind::curveData:
                break;
        }
    }
    return path;
}

/// Of the sRGB colour, 0 to 1.
double luminance(const QColor& colour) {
    const auto linear = [](double part) {
        return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF()) +
           0.0722 * linear(colour.blueF());
}

/// The colour of marks that are cut out of a symbol in `colour`: white, or dark where the contrast
/// to white is less than 3 to 1.
QColor cutOut(const QColor& colour) {
    constexpr double kLeastContrast = 3;
    const bool isBright = 1.05 / (luminance(colour) + 0.05) < kLeastContrast;
    return isBright ? QColor(0x1D1D1F) : QColor(Qt::white);
}

}  // namespace

bool hasSymbol(std::string_view name) {
    return drawing(name) != nullptr;
}

QImage drawnSymbol(std::string_view name, const QColor& colour, int pixels) {
    const SymbolDrawing* found = drawing(name);
    if (!found || pixels < 1) {
        return {};
    }
    QImage image(pixels, pixels, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(pixels / kGrid, pixels / kGrid);
    QColor opaque = colour;
    opaque.setAlpha(255);
    for (const SymbolPart& part : found->parts) {
        const QColor ink = part.ink == SymbolPart::Ink::white ? cutOut(opaque) : opaque;
        if (part.strokeWidth > 0) {
            painter.strokePath(painterPath(part), QPen(ink, static_cast<qreal>(part.strokeWidth),
                                                       Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        } else {
            painter.fillPath(painterPath(part), ink);
        }
    }
    // The opacity is applied to the whole image at once, because parts may overlap.
    painter.setCompositionMode(QPainter::CompositionMode_DestinationIn);
    painter.fillRect(QRectF(0, 0, kGrid, kGrid), QColor(0, 0, 0, colour.alpha()));
    painter.end();
    // A copy, because the original keeps the paint engine, which is many times its size.
    return image.copy();
}

QImage symbolImage(std::string_view name, const QColor& colour, qreal size,
                   qreal devicePixelRatio) {
    static QCache<QString, QImage> cache(kSymbolCacheBytes);
    const int pixels = qCeil(size * devicePixelRatio);
    const QString key = QString("%1 %2 %3")
                            .arg(QLatin1String(name.data(), static_cast<qsizetype>(name.size())))
                            .arg(colour.rgba(), 8, 16)
                            .arg(pixels);
    QImage image;
    if (const QImage* kept = cache.object(key)) {
        image = *kept;
    } else {
        image = drawnSymbol(name, colour, pixels);
        if (!image.isNull()) {
            cache.insert(key, new QImage(image), image.sizeInBytes());
        }
    }
    image.setDevicePixelRatio(devicePixelRatio);
    return image;
}

void paintSymbol(QPainter& painter, std::string_view name, const QColor& colour,
                 const QPointF& position, qreal size, qreal turn) {
    // Not the device's own ratio: the painter of a widget reports the widget as its device, even
    // while it draws into something else.
    const qreal scale = painter.deviceTransform().m11();
    const QImage image = symbolImage(name, colour, size, scale);
    const QPointF corner = onPixel(painter, position);
    if (turn == 0) {
        painter.drawImage(corner, image);
        return;
    }
    const QPointF middle(size / 2, size / 2);
    painter.save();
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.translate(corner + middle);
    painter.rotate(360 * turn);
    painter.drawImage(-middle, image);
    painter.restore();
}

}  // namespace tarnwick::qt
