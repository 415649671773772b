// SPDX-License-Identifier: MIT
#include "platform/linux/desktop/tray/item_picture.h"

#include <QColor>
#include <QFont>
#include <QFontMetricsF>
#include <QGuiApplication>
#include <QRect>
#include <algorithm>
#include <cmath>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <vector>

namespace tarnwick::platform {
namespace {

using ::testing::ElementsAre;

QImage filled(int pixels, const QColor& color) {
    QImage image(pixels, pixels, QImage::Format_ARGB32_Premultiplied);
    image.fill(color);
    return image;
}

/// A full square: green, yellow or red, brighter on dark.
QImage paintSquare(const std::string& symbol, Tint tint, bool dark, int pixels) {
    if (symbol != "square") {
        return {};
    }
    const int level = dark ? 255 : 200;
    switch (tint) {
        case Tint::yellow:
            return filled(pixels, QColor(level, level, 0));
        case Tint::red:
            return filled(pixels, QColor(level, 0, 0));
        default:
            return filled(pixels, QColor(0, level, 0));
    }
}

/// Pixels with an alpha above nothing, from column `begin` on.
int inkFrom(const QImage& image, int begin, int end) {
    int ink = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = begin; x < end; ++x) {
            ink += qAlpha(image.pixel(x, y)) > 0 ? 1 : 0;
        }
    }
    return ink;
}

const ItemIcon kGreen{.symbol = "square", .tint = Tint::green, .dark = false};

TEST(Pixmap, HoldsUnmultipliedColoursMostSignificantByteFirst) {
    QImage image(2, 1, QImage::Format_ARGB32);
    image.setPixel(0, 0, qRgba(0x11, 0x22, 0x33, 0x80));
    image.setPixel(1, 0, qRgba(0xAA, 0xBB, 0xCC, 0xFF));
    const IconPixmap pixmap = toPixmap(image);
    EXPECT_EQ(pixmap.width, 2);
    EXPECT_EQ(pixmap.height, 1);
    EXPECT_EQ(pixmap.bytes, QByteArray::fromHex("80112233ffaabbcc"));
}

TEST(Pixmap, HasRowsWithoutPaddingWhateverTheImagesFormat) {
    QImage image(3, 2, QImage::Format_RGB888);
    image.fill(QColor(1, 2, 3));
    const IconPixmap pixmap = toPixmap(image);
    EXPECT_EQ(pixmap.bytes, QByteArray::fromHex("ff010203").repeated(6));
}

TEST(SquarePixmaps, ComeInEverySizeThatHostsAskFor) {
    std::vector<int> sizes;
    for (const IconPixmap& each : squarePixmaps(paintSquare, kGreen)) {
        EXPECT_EQ(each.width, each.height);
        EXPECT_EQ(each.bytes.size(), 4 * each.width * each.height);
        sizes.push_back(each.width);
    }
    EXPECT_THAT(sizes, ElementsAre(16, 22, 24, 32, 48, 64));
}

TEST(SquarePixmaps, CarryTheTintInTheShadeOfTheDesktop) {
    const auto first = [](Tint tint, bool dark) {
        const IconPixmaps all = squarePixmaps(paintSquare, {"square", tint, dark});
        return all.first().bytes.first(4).toHex();
    };
    EXPECT_EQ(first(Tint::green, false), "ff00c800");
    EXPECT_EQ(first(Tint::yellow, false), "ffc8c800");
    EXPECT_EQ(first(Tint::red, false), "ffc80000");
    EXPECT_EQ(first(Tint::green, true), "ff00ff00");
}

TEST(SquarePicture, IsTransparentForASymbolWithoutADrawing) {
    const QImage picture = squarePicture(paintSquare, {.symbol = "unknown"}, 22);
    EXPECT_EQ(picture.size(), QSize(22, 22));
    EXPECT_EQ(inkFrom(picture, 0, 22), 0);
}

TEST(SquarePicture, HasTheAskedSizeWhateverThePainterReturns) {
    const auto small = [](const std::string&, Tint, bool, int) {
        QImage image = filled(10, Qt::red);
        image.setDevicePixelRatio(2);
        return image;
    };
    const QImage picture = squarePicture(small, kGreen, 32);
    EXPECT_EQ(picture.size(), QSize(32, 32));
    EXPECT_EQ(picture.devicePixelRatio(), 1);
    EXPECT_EQ(inkFrom(picture, 0, 32), 32 * 32);
}

/// A row of the full square and a text, twice the size of points.
QImage row(const QString& text, bool dark = false) {
    const ItemIcon icon{.symbol = "square", .tint = Tint::green, .dark = dark};
    return widePicture(squarePicture(paintSquare, icon, wideIconSize(36)), text, dark, 36);
}

TEST(WidePicture, KeepsItsWidthForEveryText) {
    for (const char* text : {"RAM 5%", "Disk 100%", "A text that is far too long for its place"}) {
        EXPECT_EQ(row(text).size(), QSize(widePictureWidth(36), 36)) << text;
    }
    EXPECT_EQ(widePictureWidth(18), 92);
    EXPECT_EQ(widePictureWidth(36), 184);
    EXPECT_EQ(wideIconSize(36), 32);
}

TEST(WidePicture, ShowsTheIconAtTheLeftAndTheTextBesideIt) {
    const QImage picture = row("CPU 12%");
    EXPECT_EQ(picture.pixelColor(4, 18), QColor(0, 200, 0));
    EXPECT_EQ(inkFrom(picture, 0, 32), 32 * 32);
    EXPECT_GT(inkFrom(picture, 40, 184), 200);
    EXPECT_EQ(inkFrom(row(""), 36, 184), 0);
}

TEST(WidePicture, CutsALongTextInsideItsPlace) {
    const QImage picture = row(QString(40, 'W'));
    EXPECT_EQ(picture.width(), 184);
    // The edge of the last letter may touch the last columns; a letter that was clipped would
    // fill them.
    EXPECT_LT(inkFrom(picture, 182, 184), 24);
    EXPECT_NE(picture, row("W"));
}

/// Part of the text's room in a row of twice the size of points: opaque and dark, as letters for a
/// light desktop are and their edge is not.
bool isLetter(const QImage& picture, int x, int y) {
    const QColor color = picture.pixelColor(x, y);
    return x >= wideIconSize(36) && color.alpha() > 128 && color.lightness() < 128;
}

/// The rectangle that the letters fill in a row of twice the size of points, their edge left out.
QRect letters(const QString& text) {
    const QImage picture = row(text);
    QRect found;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            if (isLetter(picture, x, y)) {
                found |= QRect(x, y, 1, 1);
            }
        }
    }
    return found;
}

TEST(WidePicture, SetsTheTextFourPointsFromTheIconInElevenPointsAtHalfTheHeight) {
    QFont font = QGuiApplication::font();
    font.setPixelSize(22);
    font.setWeight(QFont::Medium);
    const QRectF expected = QFontMetricsF(font).tightBoundingRect("H");
    const QRect found = letters("H");
    // Sixteen points of icon and four of space, then the letter's own bearing.
    EXPECT_NEAR(found.left(), 40 + expected.left(), 1.5);
    EXPECT_NEAR(found.height(), expected.height(), 1.5);
    EXPECT_NEAR(found.center().y(), 17.5, 1);
}

TEST(WidePicture, CutsNoTextThatFitsSeventyTwoPoints) {
    QFont font = QGuiApplication::font();
    font.setPixelSize(22);
    font.setWeight(QFont::Medium);
    const QFontMetricsF metrics(font);
    QString text = "H";
    while (metrics.horizontalAdvance(text + 'i') <= 144) {
        text += 'i';
    }
    // The last letter that has room reaches further than the letters before it.
    EXPECT_GT(letters(text).right(), letters(text.chopped(1)).right());
    EXPECT_GT(letters(text).right(), 184 - 2 * metrics.horizontalAdvance('i'));
    EXPECT_LT(letters(text + "ii").right(), 184);
}

TEST(WidePicture, WritesDarkLettersOnALightDesktopAndLightOnADarkOne) {
    const QRect letter = letters("H");
    // Within the stem.
    const QPoint inside(letter.left() + 1, letter.center().y());
    EXPECT_LT(row("H").pixelColor(inside).lightness(), 20);
    EXPECT_GT(row("H", true).pixelColor(inside).lightness(), 200);
}

/// Sets the interface font for a test.
class InterfaceFont final {
 public:
    explicit InterfaceFont(const QString& family) {
        QFont font = before_;
        font.setFamily(family);
        QGuiApplication::setFont(font);
    }
    ~InterfaceFont() { QGuiApplication::setFont(before_); }
    InterfaceFont(const InterfaceFont&) = delete;
    InterfaceFont& operator=(const InterfaceFont&) = delete;

 private:
    QFont before_ = QGuiApplication::font();
};

TEST(WidePicture, EndsTextsOfAsManyDigitsInTheSameColumnWhateverTheDigits) {
    const InterfaceFont inter("Inter");
    // The narrowest and the widest digits of this font differ by more than a pixel each.
    QFont font = QGuiApplication::font();
    font.setPixelSize(22);
    ASSERT_GT(QFontMetricsF(font).horizontalAdvance("48"),
              QFontMetricsF(font).horizontalAdvance("11") + 2);
    for (const char* text : {"CPU 48%", "CPU 77%", "CPU 90%"}) {
        EXPECT_EQ(letters(text).right(), letters("CPU 11%").right()) << text;
    }
}

TEST(WidePicture, CutsATextOfWideCellsInsideItsPlace) {
    const InterfaceFont inter("Inter");
    EXPECT_LT(letters(QString(40, '1')).right(), 184);
    EXPECT_EQ(letters(QString(40, '1')), letters(QString(41, '1')));
}

/// Relative luminance of a grey from 0 to 255.
double luminance(double grey) {
    const double part = grey / 255;
    return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
}

/// How much lighter the lighter of two greys is to the eye, from 1.
double contrast(double first, double second) {
    const auto [dark, light] = std::minmax({luminance(first), luminance(second)});
    return (light + 0.05) / (dark + 0.05);
}

TEST(WidePicture, CanBeReadOnABarOfAnyShade) {
    // Of the letters or, where these are of the bar's own shade, of their edge.
    constexpr int kFewestPixels = 200;
    constexpr double kReadable = 3;
    for (const bool dark : {false, true}) {
        const QImage picture = row("CPU 12%", dark);
        for (int ground = 0; ground <= 255; ++ground) {
            int readable = 0;
            for (int y = 0; y < picture.height(); ++y) {
                for (int x = wideIconSize(36); x < picture.width(); ++x) {
                    const QColor ink = picture.pixelColor(x, y);
                    const double shown =
                        ground + (ink.lightness() - ground) * static_cast<double>(ink.alphaF());
                    readable += contrast(shown, ground) >= kReadable ? 1 : 0;
                }
            }
            EXPECT_GE(readable, kFewestPixels) << "ground " << ground << ", dark " << dark;
        }
    }
}

}  // namespace
}  // namespace tarnwick::platform
