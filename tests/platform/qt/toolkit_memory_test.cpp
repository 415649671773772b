// SPDX-License-Identifier: MIT
#include "platform/qt/toolkit_memory.h"

#include <QFont>
#include <QFontMetricsF>
#include <QImage>
#include <QPainter>
#include <QPixmap>
#include <QPixmapCache>
#include <QtGui/private/qfont_p.h>
#include <QtGui/private/qfontengine_p.h>
#include <gtest/gtest.h>

namespace tarnwick::qt {
namespace {

QImage drawn(const QFont& font) {
    QImage image(200, 40, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::white);
    QPainter painter(&image);
    painter.setFont(font);
    painter.drawText(4, 28, "Memory 42%");
    return image;
}

TEST(UnusedFonts, AreLetGoOf) {
    drawn(QFont(QString(), 23));
    EXPECT_GT(QFontCache::instance()->engineDataCache.size(), 0);
    freeUnusedFonts();
    EXPECT_EQ(QFontCache::instance()->engineDataCache.size(), 0);
}

TEST(UnusedFonts, AreLetGoOfHoweverLongAFontLives) {
    const QFont font(QString(), 23);
    for (int round = 0; round < 3; ++round) {
        drawn(font);
        // What draws the letters, with a count of those who use it.
        QFontEngine* const engine = QFontPrivate::get(font)->engineForScript(QChar::Script_Latin);
        engine->ref.ref();
        freeUnusedFonts();
        const bool isLast = !engine->ref.deref();
        EXPECT_TRUE(isLast) << "in round " << round;
        if (isLast) {
            delete engine;
        }
    }
}

TEST(UnusedFonts, AreLoadedAgainWhenTheyAreUsed) {
    const QFont font(QString(), 17);
    const QImage before = drawn(font);
    const qreal width = QFontMetricsF(font).horizontalAdvance("Memory");
    freeUnusedFonts();
    EXPECT_EQ(drawn(font), before);
    EXPECT_EQ(drawn(QFont(QString(), 17)), before);
    EXPECT_EQ(QFontMetricsF(font).horizontalAdvance("Memory"), width);
}

TEST(UnusedFonts, MayBeLetGoOfWhileOneIsInUse) {
    const QFont font(QString(), 17);
    const QFontMetricsF metrics(font);
    const qreal width = metrics.horizontalAdvance("Memory");
    freeUnusedFonts();
    freeUnusedFonts();
    EXPECT_EQ(metrics.horizontalAdvance("Memory"), width);
}

TEST(UnusedPictures, AreLetGoOf) {
    const QPixmapCache::Key key = QPixmapCache::insert(QPixmap(8, 8));
    QPixmap kept;
    ASSERT_TRUE(QPixmapCache::find(key, &kept));
    freeUnusedPictures();
    EXPECT_FALSE(QPixmapCache::find(key, &kept));
    // Whoever has one keeps it.
    EXPECT_EQ(kept.size(), QSize(8, 8));
}

}  // namespace
}  // namespace tarnwick::qt
