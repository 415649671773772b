#include "ui/qt/symbols.h"

#include <QCache>
#include <QFile>
#include <QPaintDevice>
#include <QPainter>
#include <QString>
#include <QSvgRenderer>
#include <QtMath>

// The drawings are compiled into a static library; without this the linker would leave them out.
// The macro must stand outside every namespace.
static void loadDrawings() {
    Q_INIT_RESOURCE(symbols);
}

namespace tarnwick::qt {

namespace {

QString fromUtf8(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

/// The drawing's text, empty when there is none.
QByteArray drawing(std::string_view name) {
    static const bool loaded = (loadDrawings(), true);
    Q_UNUSED(loaded)
    QFile file(":/symbols/" + fromUtf8(name) + ".svg");
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QImage rendered(std::string_view name, const QColor& colour, int pixels) {
    QByteArray svg = drawing(name);
    if (svg.isEmpty() || pixels < 1) {
        return {};
    }
    svg.replace("currentColor", colour.name(QColor::HexRgb).toLatin1());
    QImage image(pixels, pixels, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setOpacity(colour.alphaF());
    QSvgRenderer(svg).render(&painter, QRectF(0, 0, pixels, pixels));
    return image;
}

}  // namespace

bool hasSymbol(std::string_view name) {
    return !drawing(name).isEmpty();
}

QImage symbolImage(std::string_view name, const QColor& colour, qreal size,
                   qreal devicePixelRatio) {
    static QCache<QString, QImage> cache(kSymbolCacheBytes);
    const int pixels = qCeil(size * devicePixelRatio);
    const QString key =
        QString("%1 %2 %3").arg(fromUtf8(name)).arg(colour.rgba(), 8, 16).arg(pixels);
    QImage image;
    if (const QImage* kept = cache.object(key)) {
        image = *kept;
    } else {
        image = rendered(name, colour, pixels);
        if (!image.isNull()) {
            cache.insert(key, new QImage(image), image.sizeInBytes());
        }
    }
    image.setDevicePixelRatio(devicePixelRatio);
    return image;
}

void paintSymbol(QPainter& painter, std::string_view name, const QColor& colour,
                 const QPointF& position, qreal size) {
    painter.drawImage(position,
                      symbolImage(name, colour, size, painter.device()->devicePixelRatioF()));
}

}  // namespace tarnwick::qt
