// SPDX-License-Identifier: MIT
#include "platform/linux/desktop/tray/item_picture.h"

#include <QDir>
#include <QFile>
#include <QFont>
#include <QFontMetricsF>
#include <QGuiApplication>
#include <QPainter>
#include <QSaveFile>
#include <QtMath>
#include <array>

#include "platform/desktop.h"
#include "platform/qt/text_style.h"

namespace tarnwick::platform {
namespace {

constexpr std::array kSquareSizes = {16, 22, 24, 32, 48, 64};

// Sizes in a row of 18 points; a picture of another height is scaled from it.
constexpr qreal kRowHeight = 18;
constexpr qreal kIconSize = 16;
constexpr qreal kSpacing = StatusItemContent::kSpacing;
constexpr qreal kTextWidth = StatusItemContent::kTextWidth;
// The edge consists of copies of the letters, moved by this width in four directions. Its opacity
// keeps letters readable on a bar of the same shade.
constexpr qreal kEdgeWidth = 1;
constexpr float kEdgeOpacity = 0.8F;

QFont textFont(qreal scale) {
    QFont font = QGuiApplication::font();
    font.setPixelSize(qRound(StatusItemContent::kFontSize * scale));
    font.setWeight(QFont::Medium);
    // Without subpixels: on a transparent ground coloured edges have nothing to blend with.
    font.setStyleStrategy(QFont::NoSubpixelAntialias);
    return font;
}

// Edge of the picture in pixels. Hosts scale it down to their own size.
constexpr int kPixels = 64;

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

int wideIconSize(int height) {
    return qRound(kIconSize * height / kRowHeight);
}

QImage widePicture(const QImage& icon, const QString& text, bool dark, int height) {
    QImage picture(widePictureWidth(height), height, QImage::Format_ARGB32_Premultiplied);
    picture.fill(Qt::transparent);
    QPainter canvas(&picture);
    canvas.drawImage(0, (height - icon.height()) / 2, icon);

    // Letters are drawn from the glyph cache, never as outlines: filling outlines would wake the
    // toolkit's painting threads at every tick.
    const qreal scale = height / kRowHeight;
    const QFont font = textFont(scale);
    const qt::TextStyle style(font);
    const QString shown = style.elided(text, kTextWidth * scale);
    const QPointF start(qRound((kIconSize + kSpacing) * scale),
                        qRound((height + QFontMetricsF(font).capHeight()) / 2));
    QColor edge = dark ? Qt::black : Qt::white;
    edge.setAlphaF(kEdgeOpacity);
    const qreal width = kEdgeWidth * scale;
    for (const QPointF& side :
         {QPointF(-width, 0), QPointF(width, 0), QPointF(0, -width), QPointF(0, width)}) {
        style.draw(canvas, start + side, shown, edge);
    }
    style.draw(canvas, start, shown, dark ? Qt::white : Qt::black);
    return picture;
}

PictureFile::PictureFile(std::string runtimeFolder) {
    if (!runtimeFolder.empty()) {
        folder_ = QDir(QString::fromStdString(runtimeFolder)).filePath("tarnwick");
    }
}

PictureFile::~PictureFile() {
    for (const auto& [name, path] : written_) {
        QFile::remove(path);
    }
    if (!written_.empty()) {
        // Fails if another program keeps something in the folder; then the folder must stay.
        QDir().rmdir(folder_);
    }
}

QString PictureFile::path(const IconPainter& painter, const ItemIcon& icon) {
    if (folder_.isEmpty()) {
        return {};
    }
    const QString name = QString("%1-%2-%3.png")
                             .arg(QString::fromStdString(icon.symbol).replace('/', '_'))
                             .arg(static_cast<int>(icon.tint))
                             .arg(icon.dark ? "dark" : "light");
    if (const auto known = written_.find(name); known != written_.end()) {
        return known->second;
    }
    const QString path = QDir(folder_).filePath(name);
    QSaveFile file(path);
    if (!QDir().mkpath(folder_) || !file.open(QIODevice::WriteOnly) ||
        !squarePicture(painter, icon, kPixels).save(&file, "PNG") || !file.commit()) {
        return {};
    }
    written_.emplace(name, path);
    return path;
}

}  // namespace tarnwick::platform
