// SPDX-License-Identifier: MIT
#include "ui/qt/threshold_slider_widget.h"

#include <QAccessible>
#include <QAccessibleInterface>
#include <cmath>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <map>

#include "tests/ui/qt/accessible_events.h"
#include "tests/ui/qt/settings_widget_fixture.h"
#include "ui/qt/settings_cards.h"

namespace tarnwick::qt {
namespace {

using Thumb = DualThresholdSlider::Thumb;

/// How often widgets paint themselves.
class PaintsOfEach final : public QObject {
 public:
    std::map<QObject*, int> paints;

    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::Paint) {
            ++paints[watched];
        }
        return false;
    }
};

class ThresholdSliderWidgetTest : public SettingsWidgetFixture {
 protected:
    void SetUp() override {
        select(Tab::customize);
        slider = sliderOf("CPU Usage");
    }
    ThresholdSliderWidget* sliderOf(const char* card) {
        return find(card)->findChild<ThresholdSliderWidget*>();
    }
    ThresholdThumbWidget* thumb(const char* name, const char* card = "CPU Usage") {
        return find(card)->findChild<ThresholdThumbWidget*>(name);
    }
    /// Where a percentage lies on a slider.
    QPointF at(double percent) const {
        return {10 + (slider->width() - 20) * percent / 100, slider->height() / 2.0};
    }
    void drag(double from, std::initializer_list<double> to) {
        mouse(slider, QEvent::MouseButtonPress, at(from));
        for (const double percent : to) {
            mouse(slider, QEvent::MouseMove, at(percent));
        }
        mouse(slider, QEvent::MouseButtonRelease, at(*(to.end() - 1)));
        catchUp();
    }
    QAccessibleInterface* accessible(const char* name, const char* card = "CPU Usage") {
        return QAccessible::queryAccessibleInterface(thumb(name, card));
    }
    double centre(const char* name) const {
        auto* found = slider->findChild<QWidget*>(name);
        return found->x() + found->width() / 2.0;
    }
    QImage picture() {
        QImage image(slider->size(), QImage::Format_ARGB32_Premultiplied);
        image.fill(theme.color(ColorRole::card));
        slider->render(&image, QPoint(), QRegion(), QWidget::DrawChildren);
        return image;
    }

    ThresholdSliderWidget* slider = nullptr;
};

TEST_F(ThresholdSliderWidgetTest, ThumbsStandAtTheirValues) {
    EXPECT_NEAR(centre("thumb.normal"), at(80).x(), 0.5);
    EXPECT_NEAR(centre("thumb.high"), at(90).x(), 0.5);
    EXPECT_GE(thumb("thumb.normal")->width(), 24);
    EXPECT_GE(thumb("thumb.normal")->height(), 24);
}

TEST_F(ThresholdSliderWidgetTest, ADragMovesAThumb) {
    drag(80, {70, 60, 40});
    EXPECT_EQ(settings.cpuNormal(), 40);
    EXPECT_EQ(settings.cpuHigh(), 90);
    EXPECT_NEAR(centre("thumb.normal"), at(40).x(), 0.5);
    drag(90, {55});
    EXPECT_EQ(settings.cpuHigh(), 55);
}

TEST_F(ThresholdSliderWidgetTest, EveryChangeOfADragIsStoredAndShownAtOnce) {
    const std::size_t before = store.writes().size();
    mouse(slider, QEvent::MouseButtonPress, at(80));
    mouse(slider, QEvent::MouseMove, at(70));
    EXPECT_EQ(settings.cpuNormal(), 70);
    EXPECT_NEAR(centre("thumb.normal"), at(70).x(), 0.5);
    mouse(slider, QEvent::MouseMove, at(30));
    EXPECT_EQ(store.writes().size() - before, 3U);
    catchUp();
    EXPECT_EQ(find("CPU Usage")->findChildren<ThresholdPillWidget*>().at(0)->accessibleName(),
              "Normal 30%");
    mouse(slider, QEvent::MouseButtonRelease, at(30));
    mouse(slider, QEvent::MouseMove, at(50));
    EXPECT_EQ(settings.cpuNormal(), 30);
}

TEST_F(ThresholdSliderWidgetTest, ThumbsGoToTheirEndsAndNotPastEachOther) {
    drag(80, {-20});
    EXPECT_EQ(settings.cpuNormal(), 10);
    drag(90, {120});
    EXPECT_EQ(settings.cpuHigh(), 100);
    drag(10, {120});
    EXPECT_EQ(settings.cpuNormal(), 99);
    drag(99, {50});
    EXPECT_EQ(settings.cpuNormal(), 50);
    drag(100, {20});
    EXPECT_EQ(settings.cpuHigh(), 51);
    slider = sliderOf("Storage Usage");
    drag(80, {0});
    drag(90, {0});
    EXPECT_EQ(settings.storageNormal(), 50);
    EXPECT_EQ(settings.storageHigh(), 51);
}

TEST_F(ThresholdSliderWidgetTest, APressOnTheTrackMovesAThumbAndOtherButtonsDoNothing) {
    drag(30, {60});
    EXPECT_EQ(settings.cpuNormal(), 60);
    settings.setCPUNormal(80);
    catchUp();
    QMouseEvent right(QEvent::MouseButtonPress, at(80), slider->mapToGlobal(at(80)),
                      Qt::RightButton, Qt::RightButton, Qt::NoModifier);
    QApplication::sendEvent(slider, &right);
    mouse(slider, QEvent::MouseMove, at(40));
    EXPECT_EQ(settings.cpuNormal(), 80);
}

TEST_F(ThresholdSliderWidgetTest, TheDraggedThumbHasTheKeyboardAfterwards) {
    drag(90, {95});
    EXPECT_EQ(QApplication::focusWidget(), thumb("thumb.high"));
    EXPECT_EQ(find("focusRing"), nullptr);
    key(Qt::Key_Left);
    EXPECT_EQ(settings.cpuHigh(), 94);
}

TEST_F(ThresholdSliderWidgetTest, ArrowKeysMoveByOnePercent) {
    thumb("thumb.normal")->setFocus(Qt::TabFocusReason);
    key(Qt::Key_Up);
    EXPECT_EQ(settings.cpuNormal(), 81);
    key(Qt::Key_Right);
    EXPECT_EQ(settings.cpuNormal(), 82);
    key(Qt::Key_Down);
    key(Qt::Key_Left);
    key(Qt::Key_Left);
    EXPECT_EQ(settings.cpuNormal(), 79);
    EXPECT_NEAR(centre("thumb.normal"), at(79).x(), 0.5);
    key(Qt::Key_PageUp);
    key(Qt::Key_Home);
    EXPECT_EQ(settings.cpuNormal(), 79);
    EXPECT_EQ(QApplication::focusWidget(), thumb("thumb.normal"));
}

TEST_F(ThresholdSliderWidgetTest, ChangesFromElsewhereMoveTheThumbs) {
    settings.setCPUNormal(25);
    settings.setCPUHigh(35);
    catchUp();
    EXPECT_NEAR(centre("thumb.normal"), at(25).x(), 0.5);
    EXPECT_NEAR(centre("thumb.high"), at(35).x(), 0.5);
}

TEST_F(ThresholdSliderWidgetTest, WhatNobodyCouldHaveSetStaysWithinReach) {
    settings.setCPUNormal(-500);
    settings.setCPUHigh(1e9);
    catchUp();
    EXPECT_NEAR(centre("thumb.normal"), at(0).x(), 0.5);
    EXPECT_NEAR(centre("thumb.high"), at(100).x(), 0.5);
    settings.setCPUHigh(std::nan(""));
    catchUp();
    EXPECT_NEAR(centre("thumb.high"), at(0).x(), 0.5);
}

TEST_F(ThresholdSliderWidgetTest, WhatNobodyCouldHaveSetCanBeDragged) {
    settings.setCPUNormal(std::nan(""));
    settings.setCPUHigh(1e9);
    catchUp();
    drag(100, {95});
    EXPECT_EQ(settings.cpuHigh(), 95);
    drag(0, {50});
    EXPECT_EQ(settings.cpuNormal(), 50);
}

TEST_F(ThresholdSliderWidgetTest, ADragEndsWithTheButtonWhereverItIsReleased) {
    mouse(slider, QEvent::MouseButtonPress, at(80));
    QMouseEvent hover(QEvent::MouseMove, at(50), slider->mapToGlobal(at(50)), Qt::NoButton,
                      Qt::NoButton, Qt::NoModifier);
    QApplication::sendEvent(slider, &hover);
    EXPECT_FALSE(widget->view().slider(JudgedMetric::cpu).isDraggingNormal());
    mouse(slider, QEvent::MouseMove, at(50));
    EXPECT_EQ(settings.cpuNormal(), 80);
}

TEST_F(ThresholdSliderWidgetTest, ADragEndsWhenTheWindowGoesToTheBack) {
    mouse(slider, QEvent::MouseButtonPress, at(80));
    mouse(slider, QEvent::MouseMove, at(60));
    QWidget other;
    other.show();
    other.activateWindow();
    settle();
    EXPECT_FALSE(widget->view().slider(JudgedMetric::cpu).isDraggingNormal());
    mouse(slider, QEvent::MouseMove, at(50));
    EXPECT_EQ(settings.cpuNormal(), 60);
}

TEST_F(ThresholdSliderWidgetTest, ADragEndsWhenTheSliderIsHidden) {
    mouse(slider, QEvent::MouseButtonPress, at(80));
    select(Tab::about);
    EXPECT_FALSE(widget->view().slider(JudgedMetric::cpu).isDraggingNormal());
}

TEST_F(ThresholdSliderWidgetTest, AssistiveTechnologyHearsOfEachChangeOnce) {
    const AccessibleEvents events;
    thumb("thumb.normal")->setFocus(Qt::TabFocusReason);
    key(Qt::Key_Right);
    EXPECT_THAT(
        events.of(thumb("thumb.normal")),
        ::testing::IsSupersetOf({QAccessible::ValueChanged, QAccessible::DescriptionChanged}));
    EXPECT_EQ(events.count(thumb("thumb.normal"), QAccessible::ValueChanged), 1);
    EXPECT_EQ(events.count(thumb("thumb.normal"), QAccessible::DescriptionChanged), 1);
    EXPECT_EQ(events.count(thumb("thumb.high"), QAccessible::ValueChanged), 0);
}

TEST_F(ThresholdSliderWidgetTest, ADragLeavesTheOrderForAssistiveTechnology) {
    drag(80, {70});
    QAccessibleInterface* whole = QAccessible::queryAccessibleInterface(slider);
    ASSERT_EQ(whole->childCount(), 2);
    EXPECT_EQ(whole->child(0)->object(), thumb("thumb.normal"));
    EXPECT_EQ(whole->child(1)->object(), thumb("thumb.high"));
}

TEST_F(ThresholdSliderWidgetTest, EachThumbIsASliderToAssistiveTechnology) {
    struct Row {
        const char* card;
        const char* thumb;
        const char* name;
        double value;
        double minimum;
        double maximum;
    };
    const Row rows[] = {
        {"CPU Usage", "thumb.normal", "CPU Usage normal threshold", 80, 10, 99},
        {"CPU Usage", "thumb.high", "CPU Usage high threshold", 90, 11, 100},
        {"GPU Usage", "thumb.normal", "GPU Usage normal threshold", 90, 10, 99},
        {"Storage Usage", "thumb.high", "Storage Usage high threshold", 90, 51, 100},
    };
    for (const Row& row : rows) {
        QAccessibleInterface* interface = accessible(row.thumb, row.card);
        ASSERT_NE(interface, nullptr);
        EXPECT_EQ(interface->role(), QAccessible::Slider);
        EXPECT_EQ(interface->text(QAccessible::Name), row.name);
        EXPECT_EQ(interface->text(QAccessible::Value),
                  QString::number(static_cast<int>(row.value)) + " percent");
        EXPECT_TRUE(interface->state().focusable);
        ASSERT_NE(interface->valueInterface(), nullptr);
        EXPECT_EQ(interface->valueInterface()->currentValue().toDouble(), row.value);
        EXPECT_EQ(interface->valueInterface()->minimumValue().toDouble(), row.minimum);
        EXPECT_EQ(interface->valueInterface()->maximumValue().toDouble(), row.maximum);
        EXPECT_EQ(interface->valueInterface()->minimumStepSize().toDouble(), 1);
    }
}

TEST_F(ThresholdSliderWidgetTest, AssistiveTechnologyMovesThumbs) {
    QAccessibleInterface* interface = accessible("thumb.high");
    QAccessibleActionInterface* actions = interface->actionInterface();
    ASSERT_NE(actions, nullptr);
    EXPECT_TRUE(actions->actionNames().contains(QAccessibleActionInterface::increaseAction()));
    EXPECT_TRUE(actions->actionNames().contains(QAccessibleActionInterface::decreaseAction()));
    actions->doAction(QAccessibleActionInterface::increaseAction());
    EXPECT_EQ(settings.cpuHigh(), 91);
    actions->doAction(QAccessibleActionInterface::decreaseAction());
    actions->doAction(QAccessibleActionInterface::decreaseAction());
    EXPECT_EQ(settings.cpuHigh(), 89);
    EXPECT_NEAR(centre("thumb.high"), at(89).x(), 0.5);
    interface->valueInterface()->setCurrentValue(95.0);
    EXPECT_EQ(settings.cpuHigh(), 95);
    interface->valueInterface()->setCurrentValue(3);
    EXPECT_EQ(settings.cpuHigh(), 81);
    interface->valueInterface()->setCurrentValue("nonsense");
    EXPECT_EQ(settings.cpuHigh(), 81);
    actions->doAction(QAccessibleActionInterface::setFocusAction());
    EXPECT_EQ(QApplication::focusWidget(), thumb("thumb.high"));
}

TEST_F(ThresholdSliderWidgetTest, IsDrawnInItsColours) {
    for (const bool isDark : {false, true}) {
        theme.setDark(isDark);
        catchUp();
        const QImage image = picture();
        const auto colour = [&](double percent, double below = 0) {
            const QPointF place = at(percent) + QPointF(0, below);
            return image.pixelColor(place.toPoint());
        };
        EXPECT_EQ(colour(30), theme.color(Tint::green));
        EXPECT_EQ(colour(85), theme.color(Tint::yellow));
        EXPECT_EQ(colour(97), theme.color(Tint::red));
        EXPECT_EQ(colour(80), theme.color(Tint::yellow));
        EXPECT_EQ(colour(90), theme.color(Tint::red));
        const int level = isDark ? 31 : 255;
        EXPECT_EQ(colour(80, 7), QColor(level, level, level));
        EXPECT_EQ(colour(90, -7), QColor(level, level, level));
        EXPECT_EQ(colour(30, 5), theme.color(ColorRole::card));
    }
}

TEST_F(ThresholdSliderWidgetTest, ThresholdsPastEachOtherLeaveTheTrackFilledAsFarAsTheyReach) {
    settings.setCPUNormal(70);
    settings.setCPUHigh(40);
    catchUp();
    const QImage image = picture();
    const auto colour = [&](double percent) { return image.pixelColor(at(percent).toPoint()); };
    // Up to normal, nothing between them, and from there as long as high is from the end.
    EXPECT_EQ(colour(20), theme.color(Tint::green));
    EXPECT_EQ(colour(55), theme.color(Tint::green));
    EXPECT_EQ(colour(85), theme.color(Tint::red));
}

TEST_F(ThresholdSliderWidgetTest, TheGroundOfTheTrackIsSeenWhereNothingCoversIt) {
    settings.setCPUNormal(std::nan(""));
    settings.setCPUHigh(std::nan(""));
    catchUp();
    const QColor ground = theme.color(ColorRole::secondaryText);
    const QColor below = theme.color(ColorRole::card);
    constexpr double opacity = DualThresholdSlider::kTrackOpacity;
    const QColor seen = picture().pixelColor(at(60).toPoint());
    EXPECT_NEAR(seen.red(), below.red() + (ground.red() - below.red()) * opacity, 2);
    EXPECT_NEAR(seen.blue(), below.blue() + (ground.blue() - below.blue()) * opacity, 2);
    EXPECT_NE(seen, below);
}

TEST_F(ThresholdSliderWidgetTest, ADragOf500ChangesPaintsOnlyWhatItMovesOnceATurn) {
    PaintsOfEach counter;
    for (QWidget* each : widget->findChildren<QWidget*>()) {
        each->installEventFilter(&counter);
    }
    const std::size_t before = store.writes().size();
    mouse(slider, QEvent::MouseButtonPress, at(80));
    constexpr int turns = 50;
    for (int turn = 0; turn < turns; ++turn) {
        for (int change = 0; change < 10; ++change) {
            mouse(slider, QEvent::MouseMove, at(20 + (turn * 10 + change) % 60));
        }
        EXPECT_LE(dispatch.mainPending(), 1U);
        catchUp();
    }
    EXPECT_EQ(store.writes().size() - before, 501U);
    for (const auto& [painted, times] : counter.paints) {
        auto* each = qobject_cast<QWidget*>(painted);
        // What the pointer moves may be painted twice: the card's pill a turn after the thumb.
        EXPECT_LE(times, 2 * turns + 2) << each->metaObject()->className();
        if (qobject_cast<ThresholdSliderWidget*>(each) != nullptr) {
            EXPECT_EQ(each, slider);
        }
        if (qobject_cast<ThresholdPillWidget*>(each) != nullptr) {
            EXPECT_TRUE(find("CPU Usage")->isAncestorOf(each));
        }
    }
    EXPECT_GT(counter.paints[slider], 0);
}

}  // namespace
}  // namespace tarnwick::qt
