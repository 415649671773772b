// SPDX-License-Identifier: MIT
#include "ui/qt/theme.h"

#include <QApplication>
#include <QPaintEvent>
#include <QWidget>
#include <cmath>
#include <gtest/gtest.h>

#include "tests/ui/qt/settle.h"

namespace tarnwick::qt {
namespace {

double linear(double channel) {
    return channel <= 0.04045 ? channel / 12.92 : std::pow((channel + 0.055) / 1.055, 2.4);
}

double luminance(const QColor& color) {
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) +
           0.0722 * linear(color.blueF());
}

/// Between a text and an opaque ground with a translucent tint over it.
double contrast(const QColor& text, const QColor& ground, const QColor& tint) {
    const double a = tint.alphaF();
    const auto mixed = [a](double above, double below) { return above * a + below * (1 - a); };
    const double below = 0.2126 * linear(mixed(tint.redF(), ground.redF())) +
                         0.7152 * linear(mixed(tint.greenF(), ground.greenF())) +
                         0.0722 * linear(mixed(tint.blueF(), ground.blueF()));
    const double above = luminance(text);
    return (std::max(above, below) + 0.05) / (std::min(above, below) + 0.05);
}

class ThemeColours : public ::testing::TestWithParam<bool> {};

TEST_P(ThemeColours, TextsCanBeReadOnEveryGround) {
    const Theme theme(GetParam());
    for (const ColorRole text : {ColorRole::text, ColorRole::secondaryText}) {
        for (const ColorRole ground : {ColorRole::panel, ColorRole::window, ColorRole::card}) {
            EXPECT_GE(contrast(theme.color(text), theme.color(ground), QColor(0, 0, 0, 0)), 4.5);
        }
    }
    for (const ColorRole tint :
         {ColorRole::control, ColorRole::controlHovered, ColorRole::controlPressed}) {
        EXPECT_GE(contrast(theme.color(ColorRole::text), theme.color(ColorRole::panel),
                           theme.color(tint)),
                  4.5);
    }
}

TEST_P(ThemeColours, TheSelectedTabCanBeRead) {
    const Theme theme(GetParam());
    EXPECT_GE(contrast(theme.color(ColorRole::accent), theme.color(ColorRole::window),
                       theme.color(ColorRole::control)),
              4.5);
}

TEST_P(ThemeColours, ABarWithoutAMarkIsToldFromItsTrack) {
    const Theme theme(GetParam());
    EXPECT_GE(contrast(theme.color(Tint::green), theme.color(ColorRole::panel),
                       theme.color(ColorRole::track)),
              3);
}

TEST_P(ThemeColours, WithMoreContrastEveryTextAndLineStandsOut) {
    Theme theme(GetParam());
    const QColor usual = theme.color(ColorRole::secondaryText);
    theme.setHighContrast(true);
    for (const ColorRole ground : {ColorRole::panel, ColorRole::window, ColorRole::card}) {
        const QColor none(0, 0, 0, 0);
        EXPECT_GE(contrast(theme.color(ColorRole::text), theme.color(ground), none), 15);
        EXPECT_GE(contrast(theme.color(ColorRole::secondaryText), theme.color(ground), none), 7);
        EXPECT_GE(contrast(theme.color(ColorRole::accent), theme.color(ground), none), 7);
        // Against the ground beside it.
        EXPECT_GE(
            contrast(theme.color(ground), theme.color(ground), theme.color(ColorRole::hairline)),
            3);
    }
    EXPECT_EQ(QApplication::palette().color(QPalette::Text), theme.color(ColorRole::text));
    theme.setHighContrast(false);
    EXPECT_EQ(theme.color(ColorRole::secondaryText), usual);
}

INSTANTIATE_TEST_SUITE_P(, ThemeColours, ::testing::Bool(),
                         [](const auto& row) { return row.param ? "Dark" : "Light"; });

TEST(Theme, LengthsGrowWithLargeFontsAndAtMostToTwiceAsMuch) {
    const QFont old = QApplication::font();
    const Theme theme;
    const auto scaled = [&](qreal points, int length) {
        QFont font = old;
        font.setPointSizeF(points);
        QApplication::setFont(font);
        return theme.scaled(length);
    };
    EXPECT_EQ(scaled(6, 320), 320);
    EXPECT_EQ(scaled(12, 320), 320);
    EXPECT_EQ(scaled(15, 320), 400);
    EXPECT_EQ(scaled(24, 320), 640);
    EXPECT_EQ(scaled(60, 16), 32);
    QApplication::setFont(old);
}

TEST(Theme, TintsHaveTheirOwnShadeInTheDark) {
    Theme theme(false);
    EXPECT_EQ(theme.color(Tint::green), QColor(0x1C9142));
    EXPECT_EQ(theme.color(Tint::yellow), QColor(0xE0A100));
    EXPECT_EQ(theme.color(Tint::red), QColor(0xE5352B));
    EXPECT_EQ(theme.color(Tint::orange), QColor(0xE97B00));
    theme.setDark(true);
    EXPECT_EQ(theme.color(Tint::green), QColor(0x35CF63));
    EXPECT_EQ(theme.color(Tint::yellow), QColor(0xFFCF26));
    EXPECT_EQ(theme.color(Tint::red), QColor(0xFF5147));
    EXPECT_EQ(theme.color(Tint::orange), QColor(0xFF9F1C));
    EXPECT_EQ(theme.color(Tint::gray), theme.color(ColorRole::secondaryText));
}

TEST(Theme, TitlesDifferFromRowsAlsoInAFontWithoutAMediumWeight) {
    const QFont old = QApplication::font();
    for (const char* family : {"Inter", "DejaVu Sans"}) {
        QApplication::setFont(QFont(family, 11));
        const Theme theme(false);
        EXPECT_GT(theme.style(FontRole::subheadlineMedium).width("What's Using Memory?"),
                  theme.style(FontRole::subheadline).width("What's Using Memory?"))
            << family;
    }
    QApplication::setFont(old);
}

class CountingWidget final : public QWidget {
 public:
    int paints = 0;

 protected:
    void paintEvent(QPaintEvent*) override { ++paints; }
};

TEST(Theme, GoingDarkPaintsWidgetsAgainAndChangesThePalette) {
    Theme theme(false);
    EXPECT_EQ(QApplication::palette().color(QPalette::Window), QColor(0xF3F3F5));
    CountingWidget widget;
    widget.show();
    settle();
    const int before = widget.paints;
    theme.setDark(true);
    settle();
    EXPECT_GT(widget.paints, before);
    EXPECT_EQ(QApplication::palette().color(QPalette::Window), QColor(0x1E1E20));

    const int dark = widget.paints;
    theme.setDark(true);
    settle();
    EXPECT_EQ(widget.paints, dark);
}

/// Sets the application's font and puts the old one back.
class DesktopFont {
 public:
    explicit DesktopFont(const QFont& font) : old_(QApplication::font()) {
        QApplication::setFont(font);
    }
    ~DesktopFont() { QApplication::setFont(old_); }

 private:
    QFont old_;
};

TEST(Theme, FontSizesFollowTheDesktopFont) {
    const Theme theme;
    QFont desktop = QApplication::font();
    desktop.setPointSizeF(11);
    {
        const DesktopFont font(desktop);
        EXPECT_DOUBLE_EQ(theme.style(FontRole::headline).font().pointSizeF(), 11.25);
        EXPECT_DOUBLE_EQ(theme.style(FontRole::caption).font().pointSizeF(), 8.625);
        EXPECT_EQ(theme.style(FontRole::headline).font().weight(), QFont::DemiBold);
        EXPECT_EQ(theme.style(FontRole::subheadline).font().weight(), QFont::Normal);
        EXPECT_GT(theme.style(FontRole::subheadlineMedium).font().weight(), QFont::Normal);
        EXPECT_GT(theme.style(FontRole::captionMedium).font().weight(), QFont::Normal);
    }
    desktop.setPointSizeF(22);
    const DesktopFont font(desktop);
    EXPECT_DOUBLE_EQ(theme.style(FontRole::headline).font().pointSizeF(), 22.5);
}

TEST(Theme, FontsWorkWhenTheDesktopCountsInPixels) {
    const Theme theme;
    QFont desktop = QApplication::font();
    desktop.setPixelSize(20);
    const DesktopFont font(desktop);
    EXPECT_GT(theme.style(FontRole::caption).font().pointSizeF(), 0);
}

TEST(ThemeFonts, TextsAreMeasuredAsTheyAreDrawnWhicheverResolutionTheFontWasMadeFor) {
    const QFont usual = QApplication::font();
    const qreal width = Theme().style(FontRole::subheadline).width("Activity Monitor");
    QImage other(1, 1, QImage::Format_RGB32);
    other.setDotsPerMeterX(7000);
    other.setDotsPerMeterY(7000);
    const QFont foreign(usual, &other);
    ASSERT_NE(QFontMetricsF(foreign).height(), QFontMetricsF(usual).height());
    QApplication::setFont(foreign);
    EXPECT_EQ(Theme().style(FontRole::subheadline).width("Activity Monitor"), width);
    QApplication::setFont(usual);
}

}  // namespace
}  // namespace tarnwick::qt
