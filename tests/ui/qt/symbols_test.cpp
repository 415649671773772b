// SPDX-License-Identifier: MIT
#include "ui/qt/symbols.h"

#include <QFile>
#include <QPainter>
#include <QSvgRenderer>
#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <gtest/gtest.h>
#include <string>

#include "ui/qt/theme.h"

namespace tarnwick::qt {
namespace {

constexpr QRgb kRed = qRgb(255, 0, 0);

int pixelsOf(const QImage& image, QRgb colour) {
    int count = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            count += image.pixel(x, y) == colour ? 1 : 0;
        }
    }
    return count;
}

class Symbols : public ::testing::TestWithParam<const char*> {};

double lightOf(const QColor& colour) {
    const auto linear = [](double part) {
        return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF()) +
           0.0722 * linear(colour.blueF());
}

double contrastOf(const QColor& one, const QColor& other) {
    const double a = lightOf(one);
    const double b = lightOf(other);
    return (std::max(a, b) + 0.05) / (std::min(a, b) + 0.05);
}

TEST_P(Symbols, IsDrawnInTheColourInsideItsSquare) {
    ASSERT_TRUE(hasSymbol(GetParam()));
    const QImage image = symbolImage(GetParam(), Qt::red, 32);
    ASSERT_EQ(image.size(), QSize(32, 32));
    EXPECT_GT(pixelsOf(image, kRed), 40);
    // A drawing that reached the edge would be cut off there.
    for (int i = 0; i < 32; ++i) {
        EXPECT_EQ(qAlpha(image.pixel(i, 0)), 0);
        EXPECT_EQ(qAlpha(image.pixel(i, 31)), 0);
        EXPECT_EQ(qAlpha(image.pixel(0, i)), 0);
        EXPECT_EQ(qAlpha(image.pixel(31, i)), 0);
    }
}

/// The largest difference of any channel of any pixel.
int difference(const QImage& one, const QImage& other) {
    int largest = 0;
    for (int y = 0; y < one.height(); ++y) {
        for (int x = 0; x < one.width(); ++x) {
            const QRgb a = one.pixel(x, y);
            const QRgb b = other.pixel(x, y);
            largest =
                std::max({largest, std::abs(qAlpha(a) - qAlpha(b)), std::abs(qRed(a) - qRed(b)),
                          std::abs(qGreen(a) - qGreen(b)), std::abs(qBlue(a) - qBlue(b))});
        }
    }
    return largest;
}

TEST_P(Symbols, LooksLikeItsFile) {
    QFile file(QString(SYMBOLS_FOLDER) + GetParam() + ".svg");
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    QSvgRenderer renderer(file.readAll().replace("currentColor", "#ff0000"));
    ASSERT_TRUE(renderer.isValid());
    QImage expected(48, 48, QImage::Format_ARGB32_Premultiplied);
    expected.fill(Qt::transparent);
    QPainter painter(&expected);
    painter.setRenderHint(QPainter::Antialiasing);
    renderer.render(&painter, QRectF(0, 0, 48, 48));
    painter.end();
    EXPECT_LE(difference(symbolImage(GetParam(), Qt::red, 48), expected), 8);
}

INSTANTIATE_TEST_SUITE_P(, Symbols,
                         ::testing::Values("gearshape", "arrow.clockwise", "clock", "thermometer",
                                           "arrow.clockwise.circle.fill", "cpu", "display.2",
                                           "memorychip", "internaldrive",
                                           "exclamationmark.triangle.fill", "battery.100",
                                           "chevron.left", "chevron.right", "checkmark.circle.fill",
                                           "info.circle.fill", "dial.high", "info.circle", "circle",
                                           "largecircle.fill.circle", "moon.fill", "leaf.fill",
                                           "hand.raised.fill"),
                         [](const auto& row) {
                             std::string name = row.param;
                             std::replace(name.begin(), name.end(), '.', '_');
                             return name;
                         });

TEST(SymbolImage, SeverityMarksAreCutOutInWhite) {
    for (const char* name :
         {"checkmark.circle.fill", "info.circle.fill", "exclamationmark.triangle.fill"}) {
        EXPECT_GT(pixelsOf(symbolImage(name, Qt::red, 32), qRgb(255, 255, 255)), 20) << name;
    }
}

TEST(SymbolImage, InABrightColourMarksAreCutOutInTheDark) {
    for (const bool isDark : {false, true}) {
        for (const Tint tint : {Tint::green, Tint::yellow, Tint::red, Tint::orange}) {
            const QColor colour = Theme::color(tint, isDark);
            const QImage image = symbolImage("checkmark.circle.fill", colour, 32);
            // The lightest or darkest pixel is that of the mark.
            double best = 1;
            for (int y = 8; y < 24; ++y) {
                for (int x = 8; x < 24; ++x) {
                    best = std::max(best, contrastOf(image.pixelColor(x, y), colour));
                }
            }
            EXPECT_GE(best, 3) << static_cast<int>(tint) << isDark;
        }
    }
}

TEST(SymbolImage, ScalesByTheDevicePixelRatio) {
    const QImage image = symbolImage("cpu", Qt::red, 16, 1.5);
    EXPECT_EQ(image.size(), QSize(24, 24));
    EXPECT_EQ(image.devicePixelRatio(), 1.5);
}

TEST(SymbolImage, TakesTheOpacityOfTheColour) {
    const QImage image = symbolImage("checkmark.circle.fill", QColor(255, 0, 0, 128), 32);
    EXPECT_NEAR(qAlpha(image.pixel(16, 4)), 128, 1);
    // Where a fill and the stroke around it lie on each other, neither shows through.
    const QImage triangle = symbolImage("exclamationmark.triangle.fill", QColor(0, 0, 0, 128), 32);
    for (int y = 0; y < 32; ++y) {
        EXPECT_LE(qAlpha(triangle.pixel(16, y)), 129);
    }
}

TEST(SymbolImage, IsDrawnOnceForTheSameLook) {
    const QImage first = symbolImage("clock", Qt::blue, 16);
    EXPECT_EQ(symbolImage("clock", Qt::blue, 16).constBits(), first.constBits());
    EXPECT_NE(symbolImage("clock", Qt::green, 16).constBits(), first.constBits());
    EXPECT_NE(symbolImage("clock", Qt::blue, 17).constBits(), first.constBits());
}

TEST(SymbolImage, KeepsOnlySoManyBytes) {
    const QImage first = symbolImage("clock", Qt::blue, 16);
    symbolImage("clock", Qt::blue, 150);
    symbolImage("clock", Qt::red, 150);
    EXPECT_NE(symbolImage("clock", Qt::blue, 16).constBits(), first.constBits());
}

TEST(SymbolImage, IsNullForAnUnknownName) {
    EXPECT_FALSE(hasSymbol("no.such.symbol"));
    EXPECT_FALSE(hasSymbol(""));
    EXPECT_TRUE(symbolImage("no.such.symbol", Qt::red, 16).isNull());
    EXPECT_TRUE(symbolImage("cpu", Qt::red, 0).isNull());
}

TEST(PaintSymbol, PaintsAtTheScaleOfThePainter) {
    QImage canvas(40, 40, QImage::Format_ARGB32_Premultiplied);
    canvas.fill(Qt::transparent);
    canvas.setDevicePixelRatio(2);
    QPainter painter(&canvas);
    paintSymbol(painter, "checkmark.circle.fill", Qt::red, QPointF(2, 2), 16);
    painter.end();
    canvas.setDevicePixelRatio(1);
    const QImage expected = symbolImage("checkmark.circle.fill", Qt::red, 32);
    EXPECT_EQ(canvas.copy(4, 4, 32, 32), expected);
}

TEST(SymbolImage, IsTheSameWhenItIsDrawnAnew) {
    EXPECT_EQ(drawnSymbol("cpu", Qt::blue, 24), symbolImage("cpu", Qt::blue, 24));
    EXPECT_TRUE(drawnSymbol("no such symbol", Qt::blue, 24).isNull());
}

}  // namespace
}  // namespace tarnwick::qt
