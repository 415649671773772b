// SPDX-License-Identifier: MIT
// What of the panel moves, and what is painted for it.
#include <QAbstractButton>
#include <QApplication>
#include <QContextMenuEvent>
#include <QMenu>
#include <QPainter>
#include <QScreen>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/testing/manual_dispatch.h"
#include "tests/ui/panel/detail_fixtures.h"
#include "tests/ui/panel/home_fixtures.h"
#include "tests/ui/qt/drawn.h"
#include "tests/ui/qt/paint_counter.h"
#include "tests/ui/qt/settle.h"
#include "ui/panel/motion.h"
#include "ui/qt/grid.h"
#include "ui/qt/panel_view.h"

namespace tarnwick::qt {
namespace {

using ::testing::IsEmpty;
using ::testing::Pair;
using ::testing::UnorderedElementsAre;

class PanelMotionTest : public ::testing::Test {
 protected:
    PanelMotionTest() { view.setObjectName("view"); }

    void show(const HomePageInputs& machine) {
        view.setPage(homePage(machine, formatter));
        view.show();
        settle();
    }
    /// Turns the clock to the next frame and lets it be painted.
    void nextFrame() {
        manual.advance(Motion::kFrame);
        settle();
    }
    QWidget* find(const char* name) const { return view.findChild<QWidget*>(name); }
    QImage pictureOf(const char* name) const {
        return drawn(find(name), theme.color(ColorRole::panel));
    }
    void press(const char* name) const { qobject_cast<QAbstractButton*>(find(name))->click(); }
    /// Pixels of the bar's middle line that are in its colour.
    int length(const char* name, Tint tint = Tint::green) const {
        QWidget* bar = find(name);
        QImage image(bar->size(), QImage::Format_RGB32);
        image.fill(theme.color(ColorRole::panel));
        bar->render(&image, QPoint(), QRegion(), QWidget::DrawChildren);
        int count = 0;
        for (int x = 0; x < image.width(); ++x) {
            count += image.pixel(x, image.height() - 3) == theme.color(tint).rgb() ? 1 : 0;
        }
        return count;
    }

    Theme theme;
    testing::PlainByteCountFormatter formatter;
    platform::testing::ManualDispatch manual;
    std::shared_ptr<Motion> motion = std::make_shared<Motion>(manual);
    PanelView view{theme, [](PanelAction) {}, nullptr, motion};
    HomePageInputs inputs = testing::calmMachine();
};

TEST_F(PanelMotionTest, BarsBeginAtTheirValue) {
    inputs.cpuInfo.usagePercentage = 50;
    show(inputs);
    EXPECT_FALSE(motion->isRunning());
    EXPECT_NEAR(length("bar.cpu"), 144, 2);
}

TEST_F(PanelMotionTest, ABarMovesToItsNewValueWithinAFifthOfASecond) {
    inputs.cpuInfo.usagePercentage = 25;
    show(inputs);
    inputs.cpuInfo.usagePercentage = 75;
    show(inputs);
    int last = length("bar.cpu");
    EXPECT_NEAR(last, 72, 2);
    for (int frame = 1; frame <= 6; ++frame) {
        nextFrame();
        EXPECT_GT(length("bar.cpu"), last) << frame;
        last = length("bar.cpu");
    }
    EXPECT_LE(6 * Motion::kFrame, 0.2);
    EXPECT_NEAR(last, 216, 2);
    EXPECT_FALSE(motion->isRunning());
}

TEST_F(PanelMotionTest, TheSymbolOfARefreshTurnsOnce) {
    show(inputs);
    const QImage still = pictureOf("button.refresh");
    press("button.refresh");
    QImage last = still;
    for (int frame = 1; frame * Motion::kFrame < Motion::kTurn; ++frame) {
        nextFrame();
        EXPECT_NE(pictureOf("button.refresh"), last) << frame;
        last = pictureOf("button.refresh");
    }
    nextFrame();
    EXPECT_EQ(pictureOf("button.refresh"), still);
    EXPECT_FALSE(motion->isRunning());
}

TEST_F(PanelMotionTest, TheSymbolOfARefreshTurnsAlsoFromTheMenu) {
    show(inputs);
    const QImage still = pictureOf("button.refresh");
    QContextMenuEvent event(QContextMenuEvent::Mouse, QPoint(5, 5), view.mapToGlobal(QPoint(5, 5)));
    QApplication::sendEvent(&view, &event);
    for (QAction* action : view.findChild<QMenu*>("menu")->actions()) {
        if (action->text() == "Refresh") {
            action->trigger();
        }
    }
    nextFrame();
    EXPECT_NE(pictureOf("button.refresh"), still);
    view.findChild<QMenu*>("menu")->close();
    settle();
}

TEST_F(PanelMotionTest, NoOtherSymbolTurnsAndNoneWithLessMotion) {
    show(inputs);
    press("button.showSettings");
    EXPECT_FALSE(motion->isRunning());
    motion->setReduced(true);
    const QImage still = pictureOf("button.refresh");
    press("button.refresh");
    EXPECT_FALSE(motion->isRunning());
    settle();
    EXPECT_EQ(pictureOf("button.refresh"), still);
}

TEST_F(PanelMotionTest, TextsAndColoursAreNewAtOnce) {
    show(inputs);
    inputs.cpuInfo.usagePercentage = 99;
    show(inputs);
    EXPECT_EQ(length("bar.cpu", Tint::green), 0);
    EXPECT_GT(length("bar.cpu", Tint::red), 0);
    EXPECT_EQ(find("bar.cpu")->accessibleName(), "CPU, 99.0%, high");
}

TEST_F(PanelMotionTest, AFramePaintsOnlyWhatTheBarHasPassedOver) {
    inputs.cpuInfo.usagePercentage = 25;
    show(inputs);
    inputs.cpuInfo.usagePercentage = 75;
    show(inputs);
    PaintCounter counter;
    QRegion passed;
    for (int frame = 1; frame <= 6; ++frame) {
        counter.clear();
        nextFrame();
        EXPECT_THAT(counter.paints, UnorderedElementsAre(Pair("bar.cpu", 1), Pair("view", 1)));
        passed += counter.regions["bar.cpu"];
    }
    const int height = find("bar.cpu")->height();
    // A quarter to three quarters of 288, and the round ends; on whole pixels a bar may reach a
    // point above its place.
    EXPECT_TRUE(QRect(64, height - 7, 160, 7).contains(passed.boundingRect()));
    EXPECT_TRUE(passed.boundingRect().contains(QRect(72, height - 6, 144, 6)));
}

TEST_F(PanelMotionTest, WhatItHasPassedOverIsAsIfPaintedAnew) {
    const auto onScreen = [this] { return view.screen()->grabWindow(view.winId()).toImage(); };
    for (const double usage : {75.0, 10.0, 0.0, 99.0, 2.0}) {
        inputs.cpuInfo.usagePercentage = usage;
        inputs.gpuInfo.usagePercentage = 100 - usage;
        inputs.memoryInfo.used =
            static_cast<std::uint64_t>(usage / 100 * static_cast<double>(inputs.memoryInfo.total));
        show(inputs);
        for (int frame = 1; frame <= 6; ++frame) {
            nextFrame();
            const QImage moved = onScreen();
            ASSERT_FALSE(moved.isNull());
            view.update();
            settle();
            EXPECT_EQ(moved, onScreen()) << usage << ' ' << frame;
        }
    }
}

TEST_F(PanelMotionTest, NothingIsPaintedOnceItHasArrived) {
    show(inputs);
    inputs.cpuInfo.usagePercentage = 99;
    show(inputs);
    manual.advance(1);
    settle();
    PaintCounter counter;
    const std::size_t wakeUps = manual.wakeUps();
    manual.advance(3600);
    settle();
    EXPECT_THAT(counter.paints, IsEmpty());
    EXPECT_EQ(manual.wakeUps(), wakeUps);
}

TEST_F(PanelMotionTest, AllBarsShareTheirFrames) {
    show(inputs);
    inputs.cpuInfo.usagePercentage = 10;
    inputs.gpuInfo.usagePercentage = 60;
    inputs.memoryInfo.used = testing::kGiB;
    inputs.storageInfo.front().usedSpace = 10 * testing::kGB;
    show(inputs);
    PaintCounter counter;
    const std::size_t wakeUps = manual.wakeUps();
    manual.advance(1);
    EXPECT_EQ(manual.wakeUps(), wakeUps + 6);
    settle();
    EXPECT_THAT(counter.paints,
                UnorderedElementsAre(Pair("bar.cpu", 1), Pair("bar.gpu", 1), Pair("bar.memory", 1),
                                     Pair("bar.storage", 1), Pair("view", 1)));
}

TEST_F(PanelMotionTest, StepsTooSmallToSeeAreNoMovement) {
    inputs.cpuInfo.usagePercentage = 50;
    show(inputs);
    inputs.cpuInfo.usagePercentage = 51.3;
    show(inputs);
    EXPECT_FALSE(motion->isRunning());
    inputs.cpuInfo.usagePercentage = 52.8;
    show(inputs);
    EXPECT_TRUE(motion->isRunning());
}

TEST_F(PanelMotionTest, AShortWayTakesFewerFrames) {
    inputs.cpuInfo.usagePercentage = 50;
    show(inputs);
    // 5.8 pixels: after four frames half a pixel is left.
    inputs.cpuInfo.usagePercentage = 52;
    show(inputs);
    const std::size_t wakeUps = manual.wakeUps();
    manual.advance(1);
    EXPECT_EQ(manual.wakeUps(), wakeUps + 4);
    EXPECT_FALSE(motion->isRunning());
    EXPECT_NEAR(length("bar.cpu"), 150, 2);
}

TEST_F(PanelMotionTest, BarsJumpWhereLessMotionIsAskedFor) {
    inputs.cpuInfo.usagePercentage = 25;
    show(inputs);
    motion->setReduced(true);
    inputs.cpuInfo.usagePercentage = 75;
    show(inputs);
    EXPECT_FALSE(motion->isRunning());
    EXPECT_NEAR(length("bar.cpu"), 216, 2);
}

TEST_F(PanelMotionTest, NothingButBarsMoves) {
    const auto states = testing::performanceDetailStates();
    const auto page = [this](const PerformanceDetailInputs& state) {
        return performanceDetailPage(state, formatter);
    };
    view.setPage(page(states.front().inputs));
    view.show();
    settle();
    for (const auto& state : states) {
        view.setPage(page(state.inputs));
        settle();
        EXPECT_FALSE(motion->isRunning()) << state.name;
    }
    for (const auto& state : testing::memoryDetailStates()) {
        view.setPage(memoryDetailPage(state.inputs, formatter));
        settle();
        EXPECT_FALSE(motion->isRunning()) << state.name;
    }
}

TEST_F(PanelMotionTest, APageThatIsTurnedStopsWhatMoves) {
    show(inputs);
    inputs.cpuInfo.usagePercentage = 99;
    show(inputs);
    ASSERT_TRUE(motion->isRunning());
    view.setPage(memoryDetailPage(testing::memoryDetailStates().front().inputs, formatter));
    settle();
    EXPECT_FALSE(motion->isRunning());
    view.setPage(homePage(inputs, formatter));
    EXPECT_FALSE(motion->isRunning());
}

}  // namespace
}  // namespace tarnwick::qt
