// SPDX-License-Identifier: MIT
// The panel's pixels at every scale, also where a point is no whole number of them.
#include <QPainter>
#include <QtMath>
#include <cmath>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string_view>
#include <utility>
#include <vector>

#include "tests/ui/qt/panel_view_fixture.h"
#include "ui/qt/symbols.h"
#include "ui/qt/trend_row_widget.h"

namespace tarnwick::qt {
namespace {

using ::testing::ElementsAre;

/// The panel's pixels at a device pixel ratio, on its own ground.
QImage pixels(QWidget& widget, const Theme& theme, qreal ratio) {
    QImage image(widget.size() * ratio, QImage::Format_RGB32);
    image.setDevicePixelRatio(ratio);
    image.fill(theme.color(ColorRole::panel));
    widget.render(&image, QPoint(), QRegion(), QWidget::DrawChildren);
    return image;
}

class PanelViewScales : public PanelViewTest, public ::testing::WithParamInterface<qreal> {
 protected:
    PanelViewScales() {
        inputs.cpuInfo.usagePercentage = 50;
        inputs.gpuInfo.usagePercentage = 50;
        inputs.memoryInfo.used = inputs.memoryInfo.total / 2;
    }
    /// Of something that many points from an edge: the pixel there.
    int pixel(qreal points) const { return qFloor(points * ratio + 0.01); }
    QRgb ground() const { return theme.color(ColorRole::panel).rgb(); }

    const qreal ratio = GetParam();
    HomePageInputs inputs = testing::calmMachine();
};

/// From top to bottom, the heights of what has one colour without a break.
std::vector<int> stripes(const QImage& image, int x, int top, int bottom) {
    std::vector<int> heights;
    for (int y = top; y < bottom; ++y) {
        if (y == top || image.pixel(x, y) != image.pixel(x, y - 1)) {
            heights.push_back(0);
        }
        ++heights.back();
    }
    return heights;
}

TEST_P(PanelViewScales, BarsHaveSharpEdgesAndOneHeightWhereverTheyLie) {
    show(inputs);
    const QImage image = pixels(view, theme, ratio);
    for (const char* id : {"bar.cpu", "bar.gpu", "bar.memory", "bar.storage"}) {
        const QRect place = find(id)->geometry();
        const int below = place.bottom() + 1;
        // In what is full, and in what is empty.
        for (const int x : {place.left() + 20, place.right() - 20}) {
            const std::vector<int> heights =
                stripes(image, pixel(x), pixel(below - 10), pixel(below + 3));
            EXPECT_THAT(heights, ElementsAre(::testing::_, qRound(6 * ratio), ::testing::_))
                << id << ' ' << x;
        }
    }
}

TEST_P(PanelViewScales, BarsAreAsLongAsTheirShare) {
    show(inputs);
    const QImage image = pixels(view, theme, ratio);
    const QRgb green = theme.color(Tint::green).rgb();
    const QRect place = find("bar.cpu")->geometry();
    const int middle = pixel(place.bottom() + 1 - 3);
    // Half of 288 points, the last of them the round end, and the track from there on.
    EXPECT_EQ(image.pixel(pixel(place.left() + 1), middle), green);
    EXPECT_EQ(image.pixel(pixel(place.left() + 143) - 1, middle), green);
    const QRgb track = image.pixel(pixel(place.left() + 144) + 1, middle);
    EXPECT_NE(track, green);
    EXPECT_NE(track, ground());
    EXPECT_EQ(image.pixel(pixel(place.left() + 286), middle), track);
    EXPECT_EQ(image.pixel(pixel(place.right() + 1), middle), ground());
}

TEST_P(PanelViewScales, SymbolsAreDrawnInEveryPixel) {
    show(inputs);
    const QImage image = pixels(view, theme, ratio);
    const auto expectSymbol = [&](const char* id, const char* name, ColorRole colour, int height) {
        const QRect place = find(id)->geometry();
        const QImage symbol = symbolImage(name, theme.color(colour), 16 * ratio);
        QImage expected(symbol.size(), image.format());
        expected.fill(ground());
        QPainter(&expected).drawImage(0, 0, symbol);
        const int top = place.top() + (height - 16) / 2;
        const QPoint corner(qRound(place.left() * ratio), qRound(top * ratio));
        EXPECT_EQ(image.copy(QRect(corner, symbol.size())), expected) << id;
    };
    for (const auto& [id, name] : {std::pair{"uptime", "clock"}, {"thermals", "thermometer"}}) {
        expectSymbol(id, name, ColorRole::secondaryText, find(id)->height());
    }
    for (const auto& [id, name] : {std::pair{"bar.cpu", "cpu"},
                                   {"bar.gpu", "display.2"},
                                   {"bar.memory", "memorychip"},
                                   {"bar.storage", "internaldrive"}}) {
        expectSymbol(id, name, ColorRole::text, find(id)->height() - 12);
    }
}

TEST_P(PanelViewScales, DividersAreEquallyThinHairlinesAcrossThePage) {
    // At odd and at even places.
    show(Page{{"first", 0, PanelDivider{}},
              {"second", 12, PanelDivider{}},
              {"third", 12, PanelDivider{}}});
    const QImage image = pixels(view, theme, ratio);
    for (const char* id : {"first", "second", "third"}) {
        const QRect place = find(id)->geometry();
        EXPECT_EQ(place.height(), 1);
        const int top = pixel(place.top() - 3);
        const std::vector<int> heights =
            stripes(image, pixel(place.left() + 100), top, pixel(place.top() + 5));
        ASSERT_THAT(heights, ElementsAre(::testing::_, qFloor(ratio), ::testing::_)) << id;
        const int row = top + heights[0];
        const QRgb hairline = image.pixel(pixel(place.left()), row);
        for (int x = pixel(place.left()); x < pixel(place.right() + 1); ++x) {
            ASSERT_EQ(image.pixel(x, row), hairline) << x;
        }
        EXPECT_EQ(image.pixel(pixel(place.left()) - 1, row), ground());
        EXPECT_EQ(image.pixel(pixel(place.right() + 1), row), ground());
    }
}

TEST_P(PanelViewScales, ValuesAtTheRightShareOneEdge) {
    // The same last sign in every row.
    inputs.batteryInfo.cycleCount = 7;
    inputs.systemInfo.uptime = 3600;
    show(inputs);
    const auto lastInk = [&](const char* id) {
        const QImage image = pixels(*find(id), theme, ratio);
        const bool isBar = std::string_view(id).starts_with("bar.");
        const int height = image.height() - (isBar ? qCeil(8 * ratio) : 0);
        for (int x = image.width() - 1; x >= 0; --x) {
            for (int y = 0; y < height; ++y) {
                if (image.pixel(x, y) != theme.color(ColorRole::panel).rgb()) {
                    return image.width() - x;
                }
            }
        }
        return -1;
    };
    for (const char* id : {"uptime", "thermals", "bar.cpu", "bar.gpu", "battery.capacity",
                           "battery.cycles", "battery.condition"}) {
        EXPECT_GE(lastInk(id), 1) << id;
        EXPECT_LE(lastInk(id), 3 * ratio) << id;
    }
}

TEST_P(PanelViewScales, ALongNameLeavesRoomBeforeTheValue) {
    inputs.storageInfo.front().name = std::string(200, 'W');
    show(inputs);
    const QImage image = pixels(*find("bar.storage"), theme, ratio);
    const qreal valueWidth = theme.style(FontRole::caption).width("267.12 GB / 494.38 GB");
    const int valueStart = qFloor((288 - valueWidth) * ratio);
    // Without the points where the two texts' own anti-aliasing may reach.
    for (int x = valueStart - pixel(11); x < valueStart - pixel(1); ++x) {
        for (int y = 0; y < image.height() - pixel(12); ++y) {
            ASSERT_EQ(image.pixel(x, y), theme.color(ColorRole::panel).rgb()) << x << ' ' << y;
        }
    }
}

/// How much of a column's height the line covers, in points: 1 for a pixel of its full colour.
double covered(const QImage& image, int x, const QColor& ground, const QColor& line) {
    double sum = 0;
    for (int y = 0; y < image.height(); ++y) {
        const QColor color = image.pixelColor(x, y);
        sum += static_cast<double>(ground.blue() - color.blue()) / (ground.blue() - line.blue());
    }
    return sum / image.devicePixelRatio();
}

TEST_P(PanelViewScales, TheTrendsLineIsWholeAtTheEdgesOfItsFrame) {
    const QFont old = QApplication::font();
    QFont small = old;
    // Texts lower than the sparkline leave it the height of the row.
    small.setPointSizeF(6);
    QApplication::setFont(small);
    view.setPage({{"trend", 0, TrendRow{"CPU", "11%", {0, 100, 100, 0, 0}, Tint::red}}});
    view.show();
    settle();
    const QImage image = pixels(*find("trend"), theme, ratio);
    const QColor ground = theme.color(ColorRole::panel);
    const QColor red = theme.color(Tint::red);
    // Along the upper edge, then along the lower one.
    const int left = 288 - TrendRow::kSparklineWidth;
    EXPECT_NEAR(covered(image, pixel(left + 45), ground, red), SparklineView::kLineWidth, 0.1);
    EXPECT_NEAR(covered(image, pixel(left + 110), ground, red), SparklineView::kLineWidth, 0.1);
    QApplication::setFont(old);
    settle();
}

/// What stands in the place of a line.
TEST_P(PanelViewScales, OneValueIsABarInTheMiddleOfTheFrame) {
    // Two rows, so that one of them lies between two pixels at some scale.
    const TrendRow one{"CPU", "11%", {40}, Tint::red};
    show(Page{{"a", 0, one}, {"b", 7, one}});
    const QImage image = pixels(view, theme, ratio);
    QColor ink = theme.color(ColorRole::secondaryText);
    ink.setAlphaF(0.2F);
    QImage blended(1, 1, QImage::Format_RGB32);
    blended.fill(ground());
    QPainter(&blended).fillRect(blended.rect(), ink);
    for (const char* id : {"a", "b"}) {
        const QRect place = find(id)->geometry();
        const int left = place.right() + 1 - 120;
        const qreal middle = place.top() + place.height() / 2.0;
        for (const int x : {left + 2, left + 60, left + 117}) {
            const std::vector<int> heights =
                stripes(image, pixel(x), pixel(place.top()), pixel(place.bottom() + 1));
            ASSERT_THAT(heights, ElementsAre(::testing::_, qRound(2 * ratio), ::testing::_)) << id;
            EXPECT_NEAR(pixel(place.top()) + heights[0] + heights[1] / 2.0, middle * ratio, 1);
            const QColor drawn = image.pixelColor(pixel(x), pixel(place.top()) + heights[0]);
            EXPECT_NEAR(drawn.red(), blended.pixelColor(0, 0).red(), 1);
            EXPECT_NEAR(drawn.blue(), blended.pixelColor(0, 0).blue(), 1);
        }
        // Round at its ends, and nothing beyond them.
        const int row = pixel(middle);
        EXPECT_EQ(image.pixel(pixel(left) - 1, row), ground());
        EXPECT_NE(image.pixel(pixel(left + 1), row), ground());
        EXPECT_EQ(image.pixel(pixel(left + 120), row), ground());
    }
}

/// How far the peak of a line is drawn above its frame, points. It rises over one step and falls
/// over the next, of `count` values.
double tipOfPeak(int count, const Theme& theme, qreal ratio) {
    SparklineView sparkline{std::vector<double>(static_cast<std::size_t>(count)), Tint::red};
    sparkline.values[sparkline.values.size() / 2] = 100;
    constexpr int top = 20;
    QImage image(QSize(120, 28 + 2 * top) * ratio, QImage::Format_RGB32);
    image.setDevicePixelRatio(ratio);
    image.fill(Qt::white);
    QPainter painter(&image);
    paintSparkline(painter, sparkline, theme, QRectF(0, top, 120, 28));
    painter.end();
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            // A tip is thin.
            if (image.pixelColor(x, y).blue() < 240) {
                return top - y / ratio;
            }
        }
    }
    return 0;
}

TEST_P(PanelViewScales, PeaksArePointedUpToTheMiterLimitAndBluntBeyondIt) {
    // The point of two lines of that width that meet so: half the width over the sine of half the
    // angle between them.
    const auto tip = [](double step) { return 0.9 * std::hypot(step, 28) / step; };
    EXPECT_NEAR(tipOfPeak(10, theme, ratio), tip(120 / 9.0), 0.8);
    EXPECT_NEAR(tipOfPeak(30, theme, ratio), tip(120 / 29.0), 1.2);
    EXPECT_NEAR(tipOfPeak(40, theme, ratio), tip(120 / 39.0), 1.6);
    // The tip would be more than ten times the line's width long.
    ASSERT_GT(tip(120 / 49.0), 0.9 * 10);
    EXPECT_LE(tipOfPeak(50, theme, ratio), 1.5);
}

TEST_P(PanelViewScales, NoTipOfAHistoryIsCutOff) {
    std::vector<double> values(30);
    values[15] = 100;
    show(Page{{"above", 0, GroupTitle{"trends"}},
              {"trend", 11, TrendRow{"CPU", "0%", values, Tint::red}}});
    const QImage image = pixels(view, theme, ratio);
    const QRect place = find("trend")->geometry();
    const qreal frame = place.top() + (place.height() - 28) / 2.0;
    const int x = pixel(place.right() + 1 - 120 + 120 * 15 / 29.0);
    int top = 0;
    while (top < image.height() && image.pixelColor(x, top).blue() > 240) {
        ++top;
    }
    EXPECT_NEAR(frame - top / ratio, 6.16, 1.2);
}

INSTANTIATE_TEST_SUITE_P(, PanelViewScales, ::testing::Values(1.0, 1.25, 1.5, 1.75, 2.0),
                         [](const auto& row) {
                             return std::to_string(qRound(row.param * 100)) + "percent";
                         });

TEST_F(PanelViewTest, ATinyShareIsStillASliverAndNoneIsNothing) {
    HomePageInputs inputs = testing::calmMachine();
    inputs.cpuInfo.usagePercentage = 0;
    show(inputs);
    const auto greenPixels = [&] {
        const QImage image = pixels(*find("bar.cpu"), theme, 2);
        int count = 0;
        for (int y = image.height() - 12; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                const QColor pixel = image.pixelColor(x, y);
                count += pixel.green() > pixel.red() + 40 ? 1 : 0;
            }
        }
        return count;
    };
    EXPECT_EQ(greenPixels(), 0);
    inputs.cpuInfo.usagePercentage = 1;
    show(inputs);
    EXPECT_GT(greenPixels(), 10);
    // No more than its share of the track.
    EXPECT_LE(greenPixels(), 6 * 12);
}

}  // namespace
}  // namespace tarnwick::qt
