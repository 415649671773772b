// SPDX-License-Identifier: MIT
// The measures of the slider for two thresholds, and who gets the keyboard.
#include <gtest/gtest.h>

#include "tests/ui/qt/drawn.h"
#include "tests/ui/qt/pointer.h"
#include "tests/ui/qt/settings_widget_fixture.h"
#include "ui/qt/threshold_slider_widget.h"

namespace tarnwick::qt {
namespace {

class ThresholdSliderDrawing : public SettingsWidgetFixture {
 protected:
    void SetUp() override {
        movePointer(kElsewhere);
        select(Tab::customize);
        slider = visible<ThresholdSliderWidget>().at(0);
    }
    /// The slider without its thumbs.
    QImage track() {
        QImage image(slider->size(), QImage::Format_RGB32);
        image.fill(theme.color(ColorRole::card));
        slider->render(&image, QPoint(), QRegion(), QWidget::RenderFlags());
        return image;
    }

    ThresholdSliderWidget* slider = nullptr;
};

TEST_F(ThresholdSliderDrawing, TheTrackIsSixPointsHighAndEndsHalfAThumbBeforeTheEdges) {
    const QImage seen = track();
    const QColor ground = theme.color(ColorRole::card);
    const QColor green = theme.color(Tint::green);
    const QColor red = theme.color(Tint::red);
    const int middle = seen.height() / 2;
    const int last = seen.width() - 11;
    for (int y = 0; y < seen.height(); ++y) {
        const bool isTrack = y >= middle - 3 && y < middle + 3;
        EXPECT_EQ(seen.pixelColor(seen.width() / 3, y), isTrack ? green : ground) << y;
        EXPECT_EQ(seen.pixelColor(last - 4, y), isTrack ? red : ground) << y;
    }
    for (const int y : {middle - 1, middle}) {
        EXPECT_EQ(seen.pixelColor(9, y), ground);
        EXPECT_NE(seen.pixelColor(10, y), ground);
        EXPECT_EQ(seen.pixelColor(12, y), green);
        EXPECT_EQ(seen.pixelColor(last - 2, y), red);
        EXPECT_NE(seen.pixelColor(last, y), ground);
        EXPECT_EQ(seen.pixelColor(last + 1, y), ground);
    }
}

TEST_F(ThresholdSliderDrawing, TheTrackIsRoundAtItsEndsAndStraightBetweenItsColours) {
    const QImage seen = track();
    const int top = seen.height() / 2 - 3;
    const int bottom = top + 5;
    const int last = seen.width() - 11;
    const auto share = [&](int x, int y, Tint tint) {
        const QColor ground = theme.color(ColorRole::card);
        return (ground.blue() - seen.pixelColor(x, y).blue()) /
               static_cast<double>(ground.blue() - theme.color(tint).blue());
    };
    for (const int y : {top, bottom}) {
        EXPECT_LT(share(10, y, Tint::green), 0.3);
        EXPECT_GT(share(10, y, Tint::green), 0);
        EXPECT_LT(share(last, y, Tint::red), 0.3);
        EXPECT_GT(share(last, y, Tint::red), 0);
        for (const double percent : {80.0, 90.0}) {
            const int border = static_cast<int>(10 + (slider->width() - 20) * percent / 100);
            const auto [left, right] = percent < 85 ? std::pair{Tint::green, Tint::yellow}
                                                    : std::pair{Tint::yellow, Tint::red};
            EXPECT_EQ(seen.pixelColor(border - 2, y), theme.color(left));
            EXPECT_EQ(seen.pixelColor(border + 2, y), theme.color(right));
        }
    }
}

TEST_F(ThresholdSliderDrawing, ThumbsAreCirclesOfTwentyPoints) {
    for (QWidget* thumb : slider->findChildren<ThresholdThumbWidget*>()) {
        // On black nothing is to be seen of its shadow.
        const QImage seen = drawn(thumb, Qt::black);
        const auto share = [&seen](int x, int y) { return seen.pixelColor(x, y).value() / 255.0; };
        double width = 0;
        double height = 0;
        double area = 0;
        for (int x = 0; x < seen.width(); ++x) {
            for (int y = 0; y < seen.height(); ++y) {
                const QPoint from = QPoint(x, y) - seen.rect().center();
                // Its dot is darker than the thumb, and surely on it.
                area += from.manhattanLength() < 8 ? 1 : share(x, y);
            }
            width += std::abs(x - 11.5) < 6 ? 1 : share(x, seen.height() / 2);
            height += std::abs(x - 11.5) < 6 ? 1 : share(seen.width() / 2, x);
        }
        EXPECT_NEAR(width, 20, 0.5);
        EXPECT_NEAR(height, 20, 0.5);
        EXPECT_NEAR(area, 314, 8);
    }
}

TEST_F(ThresholdSliderDrawing, ThumbsTakeTheKeyboardWhereItLeadsToEverything) {
    for (const JudgedMetric metric :
         {JudgedMetric::cpu, JudgedMetric::gpu, JudgedMetric::memory, JudgedMetric::storage}) {
        EXPECT_TRUE(widget->view().slider(metric).keyboardNavigationEnabled());
    }
    const auto thumbs = visible<ThresholdThumbWidget>();
    ASSERT_EQ(thumbs.size(), 8);
    for (const QWidget* thumb : thumbs) {
        EXPECT_EQ(thumb->focusPolicy(), Qt::TabFocus);
    }
}

TEST_F(ThresholdSliderDrawing, ThumbsDoNotTakeTheKeyboardWhereItLeadsToFewControls) {
    widget = std::make_unique<SettingsWidget>(
        settings, theme,
        SettingsViewEnvironment{
            .dispatch = dispatch, .keyboardLayout = layout, .keyboardNavigationEnabled = false},
        [](std::uint32_t) { return std::nullopt; });
    widget->setFixedSize(520, 500);
    widget->show();
    widget->activateWindow();
    select(Tab::customize);
    for (const JudgedMetric metric :
         {JudgedMetric::cpu, JudgedMetric::gpu, JudgedMetric::memory, JudgedMetric::storage}) {
        EXPECT_FALSE(widget->view().slider(metric).keyboardNavigationEnabled());
    }
    const auto thumbs = visible<ThresholdThumbWidget>();
    ASSERT_EQ(thumbs.size(), 8);
    for (const QWidget* thumb : thumbs) {
        EXPECT_EQ(thumb->focusPolicy(), Qt::NoFocus);
    }
    // From the switch straight to the button below them.
    find("switch")->setFocus(Qt::TabFocusReason);
    key(Qt::Key_Tab);
    EXPECT_EQ(QApplication::focusWidget(), find("reset"));
    // The pointer moves them all the same, and leaves the keyboard where it is.
    slider = visible<ThresholdSliderWidget>().at(0);
    const auto at = [this](double percent) {
        return QPointF(10 + (slider->width() - 20) * percent / 100, slider->height() / 2.0);
    };
    mouse(slider, QEvent::MouseButtonPress, at(80));
    mouse(slider, QEvent::MouseMove, at(60));
    mouse(slider, QEvent::MouseButtonRelease, at(60));
    catchUp();
    EXPECT_EQ(settings.cpuNormal(), 60);
    EXPECT_EQ(QApplication::focusWidget(), find("reset"));
}

}  // namespace
}  // namespace tarnwick::qt
