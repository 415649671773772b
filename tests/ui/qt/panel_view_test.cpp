// SPDX-License-Identifier: MIT
#include "ui/qt/panel_view.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QMenu>
#include <QMouseEvent>
#include <QPainter>
#include <QtMath>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/ui/qt/drawn.h"
#include "tests/ui/qt/paint_counter.h"
#include "tests/ui/qt/panel_view_fixture.h"
#include "ui/qt/button_widget.h"
#include "ui/qt/grid.h"
#include "ui/qt/row_content.h"
#include "ui/qt/symbols.h"

namespace tarnwick::qt {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Pair;
using ::testing::UnorderedElementsAre;

TEST_F(PanelViewTest, HasAWidgetForEachItemInOrder) {
    show(testing::calmMachine());
    const Page page = homePage(testing::calmMachine(), formatter);
    QList<BlockWidget*> widgets = blocks();
    ASSERT_EQ(widgets.size(), static_cast<int>(page.size()));
    std::sort(widgets.begin(), widgets.end(),
              [](const QWidget* a, const QWidget* b) { return a->y() < b->y(); });
    for (std::size_t i = 0; i < page.size(); ++i) {
        const QWidget* widget = widgets[static_cast<int>(i)];
        EXPECT_EQ(widget->objectName().toStdString(), page[i].id);
        EXPECT_TRUE(widget->isVisible());
    }
}

TEST_F(PanelViewTest, OnlyWhatChangedIsPaintedAgain) {
    HomePageInputs inputs = testing::calmMachine();
    show(inputs);
    PaintCounter counter;
    inputs.cpuInfo.usagePercentage = 43;
    show(inputs);
    EXPECT_THAT(counter.paints, UnorderedElementsAre(Pair("bar.cpu", 1), Pair("view", 1)));
    // The ground behind it, and nothing of any other block.
    EXPECT_EQ(counter.regions["view"].boundingRect(), find("bar.cpu")->geometry());
}

TEST_F(PanelViewTest, TheSamePageIsNotPaintedAgain) {
    show(testing::calmMachine());
    PaintCounter counter;
    show(testing::calmMachine());
    EXPECT_THAT(counter.paints, IsEmpty());
}

TEST_F(PanelViewTest, AnotherSummaryIsPaintedInTheColumnAlone) {
    HomePageInputs inputs = testing::calmMachine();
    show(inputs);
    inputs.displaySummary.popoverText = "Another one.";
    PaintCounter counter;
    show(inputs);
    const QWidget* header = find("header");
    EXPECT_EQ(counter.regions["header"].boundingRect().translated(header->pos()),
              QRect(16, header->y(), 288, header->height()));
}

TEST_F(PanelViewTest, WidgetsOfItemsThatStayAreKept) {
    HomePageInputs inputs = testing::calmMachine();
    show(inputs);
    const QWidget* cpu = find("bar.cpu");
    const QWidget* memory = find("bar.memory");
    inputs.gpuInfo.isAvailable = false;
    inputs.cpuInfo.usagePercentage = 99;
    show(inputs);
    EXPECT_EQ(find("bar.cpu"), cpu);
    EXPECT_EQ(find("bar.memory"), memory);
    EXPECT_EQ(find("bar.gpu"), nullptr);
    EXPECT_NE(find("topCPU"), nullptr);
}

TEST_F(PanelViewTest, AnItemOfAnotherKindGetsANewWidget) {
    view.setPage({{"a", 0, CaptionText{"text"}}});
    settle();
    view.setPage({{"a", 0, InfoRow{"label", "value"}}});
    settle();
    ASSERT_EQ(blocks().size(), 1);
    EXPECT_EQ(blocks()[0]->accessibleName(), "label, value");
}

TEST_F(PanelViewTest, GoingDarkPaintsEverythingAgain) {
    show(testing::calmMachine());
    PaintCounter counter;
    theme.setDark(true);
    settle();
    for (const BlockWidget* block : blocks()) {
        EXPECT_GE(counter.paints[block->objectName().toStdString()], 1)
            << block->objectName().toStdString();
    }
}

TEST_F(PanelViewTest, LargerFontsMakeItHigherAndWiderAndTheUsualOneMakesItAsBefore) {
    show(testing::calmMachine());
    const int height = view.height();
    const QFont old = QApplication::font();
    QFont larger = old;
    larger.setPointSizeF(18);
    QApplication::setFont(larger);
    settle();
    EXPECT_GT(view.height(), height);
    EXPECT_EQ(view.width(), 480);
    EXPECT_EQ(find("bar.cpu")->width(), 480 - 32);
    QApplication::setFont(old);
    settle();
    EXPECT_EQ(view.size(), QSize(kPanelWidth, height));
}

TEST_F(PanelViewTest, LevelsAreToldApartByMoreThanTheirColour) {
    const auto mark = [this](Tint tint) {
        const auto found = rowContent(UsageBar{"CPU", "cpu", 42, "42.0%", tint}, theme).mark;
        return found ? found->name : std::string();
    };
    EXPECT_EQ(mark(Tint::green), "");
    EXPECT_EQ(mark(Tint::yellow), "info.circle.fill");
    EXPECT_EQ(mark(Tint::red), "exclamationmark.triangle.fill");
    EXPECT_EQ(mark(Tint::gray), "");

    // The same in a trend: before its figure, too.
    const auto inkBeforeFigure = [this](Tint tint) {
        view.setPage({{"trend", 0, TrendRow{"CPU", "42%", {1, 2}, tint}}});
        view.show();
        settle();
        QWidget* trend = find("trend");
        QImage image(trend->size(), QImage::Format_RGB32);
        image.fill(theme.color(ColorRole::panel));
        trend->render(&image, QPoint(), QRegion(), QWidget::DrawChildren);
        int count = 0;
        for (int x = 0; x < grid::kMarkSize; ++x) {
            for (int y = image.height() / 2; y < image.height(); ++y) {
                count += image.pixel(x, y) == theme.color(tint).rgb() ? 1 : 0;
            }
        }
        return count;
    };
    EXPECT_EQ(inkBeforeFigure(Tint::green), 0);
    EXPECT_GT(inkBeforeFigure(Tint::yellow), 40);
    EXPECT_GT(inkBeforeFigure(Tint::red), 40);
}

TEST_F(PanelViewTest, KeepsItsHeightWhicheverMetricTheSummaryIsAbout) {
    HomePageInputs inputs = testing::calmMachine();
    show(inputs);
    const int height = view.height();
    for (const char* summary : {"CPU usage is at 99%, above the high threshold.",
                                "GPU usage is at 100%, above the normal threshold.",
                                "Memory usage is at 100%, above the normal threshold.",
                                "Storage usage is at 100%, above the normal threshold.", ""}) {
        inputs.displaySummary.popoverText = summary;
        show(inputs);
        EXPECT_EQ(view.height(), height) << summary;
    }
}

TEST_F(PanelViewTest, CutTextsAreWholeInTheToolTip) {
    HomePageInputs inputs = testing::calmMachine();
    const std::string name = "a volume with a name that no panel of this width could ever show";
    inputs.storageInfo.front().name = name;
    show(inputs);
    EXPECT_TRUE(toolTip(find("bar.storage")).contains(QString::fromStdString(name)));
    EXPECT_FALSE(toolTip(find("bar.storage")).contains("494.38 GB"));
}

TEST_F(PanelViewTest, TextsThatFitAndHaveNothingToAddHaveNoToolTip) {
    show(testing::calmMachine());
    for (const char* id : {"uptime", "thermals", "battery.cycles"}) {
        EXPECT_EQ(toolTip(find(id)), "") << id;
    }
}

TEST_F(PanelViewTest, WhatIsMeasuredAndNotShownIsInTheToolTip) {
    HomePageInputs inputs = testing::calmMachine();
    inputs.cpuInfo.userPercentage = 30;
    inputs.cpuInfo.systemPercentage = 12.5;
    inputs.cpuInfo.coreUsages = {50, 34};
    show(inputs);
    EXPECT_EQ(toolTip(find("bar.cpu")), "User 30.0%, system 12.5%, cores 50% 34%");
    EXPECT_TRUE(find("bar.cpu")->accessibleDescription().startsWith("User 30.0%"));
    EXPECT_TRUE(QAccessible::queryAccessibleInterface(find("bar.cpu"))
                    ->text(QAccessible::Description)
                    .endsWith(". User 30.0%, system 12.5%, cores 50% 34%"));
    // The figures of the next page.
    inputs.cpuInfo.coreUsages = {51, 33};
    show(inputs);
    EXPECT_EQ(toolTip(find("bar.cpu")), "User 30.0%, system 12.5%, cores 51% 33%");
    hideToolTip();
}

TEST_F(PanelViewTest, AToolTipStandsBelowWhatItTellsOf) {
    show(testing::calmMachine());
    ASSERT_FALSE(toolTip(find("bar.memory")).isEmpty());
    QWidget* shown = nullptr;
    for (QWidget* each : QApplication::topLevelWidgets()) {
        shown = each->objectName() == "toolTip" && each->isVisible() ? each : shown;
    }
    ASSERT_NE(shown, nullptr);
    const QRect bar(find("bar.memory")->mapToGlobal(QPoint()), find("bar.memory")->size());
    EXPECT_EQ(shown->geometry().topLeft(), bar.bottomLeft() + QPoint(0, 5));
    // In the program's own colours, also with a long text inside.
    const QImage image = shown->grab().toImage();
    EXPECT_EQ(image.pixelColor(image.width() / 2, 3), theme.color(ColorRole::card));
    // Whatever is pressed, it goes.
    press(&view, Qt::Key_A);
    EXPECT_EQ(shownToolTip(), "");
    settle();
}

TEST_F(PanelViewTest, TheToolTipOfATrendTellsTheValueBelowThePointer) {
    PerformanceDetailInputs inputs;
    inputs.cpuUsageHistory = {UsageSample{{}, 100, 10}, UsageSample{{}, 102, 90},
                              UsageSample{{}, 104, 40}};
    show(inputs);
    QWidget* trend = find("trend.cpu");
    const auto at = [&](int x) {
        hideToolTip();
        const QPoint position(x, trend->height() / 2);
        QHelpEvent help(QEvent::ToolTip, position, trend->mapToGlobal(position));
        QApplication::sendEvent(trend, &help);
        return shownToolTip();
    };
    EXPECT_EQ(at(5), "Lowest 10%, highest 90%");
    EXPECT_EQ(at(trend->width() - 120), "10% 4 s ago, lowest 10%, highest 90%");
    EXPECT_EQ(at(trend->width() - 60), "90% 2 s ago, lowest 10%, highest 90%");
    EXPECT_EQ(at(trend->width() - 1), "40% now, lowest 10%, highest 90%");
    hideToolTip();
}

TEST_F(PanelViewTest, NamesAreNeverMarkup) {
    HomePageInputs inputs = testing::calmMachine();
    inputs.storageInfo.front().name = "<b>bold</b> and a name that is too long to be shown whole";
    show(inputs);
    EXPECT_TRUE(toolTip(find("bar.storage")).contains("<b>bold</b>"));
}

TEST_F(PanelViewTest, IconButtonsSayTheirNameInAToolTip) {
    show(testing::calmMachine());
    EXPECT_EQ(toolTip(find("button.refresh")), "Refresh");
    EXPECT_EQ(toolTip(find("button.quit")), "");
}

TEST_F(PanelViewTest, ClicksAskForTheActionOfTheButton) {
    HomePageInputs inputs = testing::calmMachine();
    inputs.enabledActions = {
        PanelAction::refresh, PanelAction::showSettings,     PanelAction::openActivityMonitor,
        PanelAction::quit,    PanelAction::showMemoryDetail, PanelAction::showPerformanceDetail};
    show(inputs);
    for (const char* name :
         {"button.refresh", "button.showSettings", "button.openActivityMonitor", "button.quit",
          "button.showMemoryDetail", "button.showPerformanceDetail"}) {
        click(find(name));
    }
    EXPECT_THAT(pressed,
                ElementsAre(PanelAction::refresh, PanelAction::showSettings,
                            PanelAction::openActivityMonitor, PanelAction::quit,
                            PanelAction::showMemoryDetail, PanelAction::showPerformanceDetail));
}

TEST_F(PanelViewTest, TheMenuIsInTheLookOfThePanel) {
    for (const bool isDark : {false, true}) {
        theme.setDark(isDark);
        show(testing::calmMachine());
        QContextMenuEvent event(QContextMenuEvent::Mouse, QPoint(40, 60),
                                view.mapToGlobal(QPoint(40, 60)));
        QApplication::sendEvent(&view, &event);
        settle();
        auto* menu = view.findChild<QMenu*>("menu");
        ASSERT_NE(menu, nullptr);
        EXPECT_EQ(menu->font().pointSizeF(),
                  theme.style(FontRole::subheadline).font().pointSizeF());
        const QRect first = menu->actionGeometry(menu->actions().front());
        menu->setActiveAction(menu->actions().front());
        settle();
        const QImage image = drawn(menu, theme.color(ColorRole::panel));
        const QRect second = menu->actionGeometry(menu->actions()[1]);
        EXPECT_EQ(image.pixelColor(second.left() + 3, second.center().y()),
                  theme.color(ColorRole::card));
        // The active entry is marked over its whole width.
        EXPECT_NE(image.pixelColor(first.right() - 3, first.center().y()),
                  theme.color(ColorRole::card));
        EXPECT_GE(first.width(), menu->width() - 12);
        menu->close();
        settle();
    }
}

TEST_F(PanelViewTest, ARightClickShowsAMenu) {
    show(testing::calmMachine());
    const PanelAction actions[] = {PanelAction::copy, PanelAction::refresh,
                                   PanelAction::showSettings, PanelAction::quit};
    const char* titles[] = {"Copy", "Refresh", "Settings", "Quit"};
    for (int entry = 0; entry < 4; ++entry) {
        // Also over a block, and over a button.
        QWidget* place = find(entry % 2 == 0 ? "bar.cpu" : "button.quit");
        const QPoint position = place->rect().center();
        QContextMenuEvent event(QContextMenuEvent::Mouse, position, place->mapToGlobal(position));
        QApplication::sendEvent(place, &event);
        settle();
        auto* menu = view.findChild<QMenu*>("menu");
        ASSERT_NE(menu, nullptr);
        EXPECT_TRUE(menu->isVisible());
        ASSERT_EQ(menu->actions().size(), 4);
        EXPECT_EQ(menu->actions()[entry]->text(), titles[entry]);
        menu->actions()[entry]->trigger();
        menu->close();
        settle();
        EXPECT_EQ(view.findChild<QMenu*>("menu"), nullptr);
    }
    EXPECT_THAT(pressed, ::testing::ElementsAreArray(actions));
}

TEST_F(PanelViewTest, ARightClickThatIsToldOfTwiceShowsOneMenu) {
    show(testing::calmMachine());
    QWidget* place = find("bar.cpu");
    const QPoint position = place->rect().center();
    QMouseEvent pressOfMouse(QEvent::MouseButtonPress, position, place->mapToGlobal(position),
                             Qt::RightButton, Qt::RightButton, Qt::NoModifier);
    QApplication::sendEvent(place, &pressOfMouse);
    QContextMenuEvent event(QContextMenuEvent::Mouse, position, place->mapToGlobal(position));
    QApplication::sendEvent(place, &event);
    settle();
    const auto menus = view.findChildren<QMenu*>("menu");
    ASSERT_EQ(menus.size(), 1);
    EXPECT_TRUE(menus.front()->isVisible());
    menus.front()->close();
    settle();
}

TEST_F(PanelViewTest, DisabledButtonsAreThereAndDoNothing) {
    show(testing::calmMachine());
    for (const char* name : {"button.showSettings", "button.openActivityMonitor",
                             "button.showMemoryDetail", "button.showPerformanceDetail"}) {
        ASSERT_NE(find(name), nullptr);
        EXPECT_TRUE(find(name)->isVisible());
        EXPECT_FALSE(find(name)->isEnabled());
        click(find(name));
        press(find(name), Qt::Key_Return);
    }
    EXPECT_THAT(pressed, IsEmpty());
}

TEST_F(PanelViewTest, ButtonsAreEnabledOnceTheirTargetIsThere) {
    HomePageInputs inputs = testing::calmMachine();
    show(inputs);
    const QWidget* settings = find("button.showSettings");
    inputs.enabledActions.insert(PanelAction::showSettings);
    show(inputs);
    EXPECT_EQ(find("button.showSettings"), settings);
    EXPECT_TRUE(settings->isEnabled());
}

TEST_F(PanelViewTest, KeysPressTheFocusedButton) {
    show(testing::calmMachine());
    press(find("button.quit"), Qt::Key_Space);
    press(find("button.quit"), Qt::Key_Return);
    press(find("button.quit"), Qt::Key_Enter);
    EXPECT_THAT(pressed, ElementsAre(PanelAction::quit, PanelAction::quit, PanelAction::quit));
}

TEST_F(PanelViewTest, AHeldKeyPressesOnce) {
    show(testing::calmMachine());
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter}) {
        for (const bool isRepeated : {false, true, true}) {
            QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier, QString(), isRepeated);
            QApplication::sendEvent(find("button.quit"), &event);
        }
    }
    EXPECT_THAT(pressed, ElementsAre(PanelAction::quit, PanelAction::quit));
}

TEST_F(PanelViewTest, TabWalksThroughTheEnabledButtonsInPageOrder) {
    HomePageInputs inputs = testing::calmMachine();
    inputs.enabledActions.insert(PanelAction::showPerformanceDetail);
    show(inputs);
    view.activateWindow();
    find("button.quit")->setFocus();
    settle();
    std::vector<std::string> walked;
    for (int i = 0; i < 4; ++i) {
        ASSERT_NE(QApplication::focusWidget(), nullptr);
        press(QApplication::focusWidget(), Qt::Key_Tab);
        ASSERT_NE(QApplication::focusWidget(), nullptr);
        walked.push_back(QApplication::focusWidget()->objectName().toStdString());
    }
    EXPECT_THAT(walked, ElementsAre("button.refresh", "button.showPerformanceDetail", "button.quit",
                                    "button.refresh"));
}

TEST_F(PanelViewTest, TabWalksThroughAllButtonsFromTheTopAndBack) {
    HomePageInputs inputs = testing::calmMachine();
    inputs.enabledActions = {
        PanelAction::refresh, PanelAction::showSettings,     PanelAction::openActivityMonitor,
        PanelAction::quit,    PanelAction::showMemoryDetail, PanelAction::showPerformanceDetail};
    // With a list between the buttons.
    inputs.cpuInfo.usagePercentage = 99;
    show(inputs);
    view.activateWindow();
    const std::vector<const char*> order = {
        "button.showSettings",        "button.refresh",
        "button.showMemoryDetail",    "button.showPerformanceDetail",
        "button.openActivityMonitor", "button.quit"};
    find(order.front())->setFocus(Qt::TabFocusReason);
    settle();
    const auto focused = [] {
        const QWidget* widget = QApplication::focusWidget();
        return widget == nullptr ? "" : widget->objectName().toStdString();
    };
    for (std::size_t i = 0; i <= order.size(); ++i) {
        EXPECT_EQ(focused(), order[i % order.size()]);
        press(QApplication::focusWidget(), Qt::Key_Tab);
    }
    for (std::size_t i = 0; i <= order.size(); ++i) {
        EXPECT_EQ(focused(), order[(1 + order.size() - i) % order.size()]);
        press(QApplication::focusWidget(), Qt::Key_Backtab);
    }
}

TEST_F(PanelViewTest, ATitleThatTheButtonsLeaveNoRoomIsCutAndWholeInTheToolTip) {
    const QFont old = QApplication::font();
    QFont huge = old;
    huge.setPointSizeF(old.pointSizeF() * 10);
    QApplication::setFont(huge);
    show(testing::calmMachine());
    QWidget* header = find("header");
    const int left = find("button.showSettings")->x();
    ASSERT_GT(theme.style(FontRole::headline).width("Tarnwick"), left);
    QImage image(header->size(), QImage::Format_RGB32);
    image.fill(theme.color(ColorRole::panel));
    header->render(&image, QPoint(), QRegion(), QWidget::RenderFlags());
    for (int y = 0; y < theme.style(FontRole::headline).lineHeight(); ++y) {
        for (int x = left - 4; x < image.width(); ++x) {
            ASSERT_EQ(image.pixel(x, y), theme.color(ColorRole::panel).rgb()) << x << ' ' << y;
        }
    }
    const QPoint position(10, 10);
    QHelpEvent help(QEvent::ToolTip, position, header->mapToGlobal(position));
    QApplication::sendEvent(header, &help);
    EXPECT_TRUE(shownToolTip().contains("Tarnwick"));
    hideToolTip();
    QApplication::setFont(old);
    settle();
}

TEST_F(PanelViewTest, TabFollowsThePageWhenAButtonComesBetween) {
    const auto item = [](const char* id, PanelAction action) {
        return PageItem{id, 0, NavigationButton{{id, "", action, true}}};
    };
    const PageItem first = item("first", PanelAction::showMemoryDetail);
    const PageItem second = item("second", PanelAction::showPerformanceDetail);
    const PageItem third = item("third", PanelAction::quit);
    view.setPage({first, third});
    view.show();
    settle();
    view.setPage({first, second, third});
    settle();
    view.activateWindow();
    find("button.showMemoryDetail")->setFocus();
    settle();
    press(find("button.showMemoryDetail"), Qt::Key_Tab);
    EXPECT_EQ(QApplication::focusWidget(), find("button.showPerformanceDetail"));
}

TEST_F(PanelViewTest, TheFocusRingSurroundsAButtonFocusedByKey) {
    show(testing::calmMachine());
    view.activateWindow();
    settle();
    QWidget* quit = find("button.quit");
    quit->setFocus(Qt::TabFocusReason);
    settle();
    const QWidget* ring = find("focusRing");
    EXPECT_TRUE(ring->isVisible());
    const QRect button(quit->mapTo(&view, QPoint()), quit->size());
    EXPECT_EQ(ring->geometry(), button.adjusted(-3, -3, 3, 3));
    EXPECT_TRUE(view.rect().contains(ring->geometry()));

    find("button.refresh")->setFocus(Qt::MouseFocusReason);
    settle();
    EXPECT_FALSE(ring->isVisible());
}

TEST_F(PanelViewTest, ButtonsHaveAccessibleNames) {
    show(testing::calmMachine());
    EXPECT_EQ(find("button.refresh")->accessibleName(), "Refresh");
    EXPECT_EQ(find("button.showSettings")->accessibleName(), "Settings");
    EXPECT_EQ(find("button.showMemoryDetail")->accessibleName(), "What's Using Memory?");
}

}  // namespace
}  // namespace tarnwick::qt
