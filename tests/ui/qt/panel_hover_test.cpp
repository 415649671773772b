// SPDX-License-Identifier: MIT
// The rows of a process list stay under the pointer, whatever happens around them.
#include <QHelpEvent>
#include <QScrollArea>
#include <QScrollBar>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/testing/manual_dispatch.h"
#include "tests/ui/panel/detail_fixtures.h"
#include "tests/ui/panel/home_fixtures.h"
#include "tests/ui/qt/pointer.h"
#include "tests/ui/qt/settle.h"
#include "ui/panel/held_order.h"
#include "ui/panel/motion.h"
#include "ui/qt/panel_view.h"
#include "ui/qt/tool_tip.h"
#include "ui/qt/top_apps_widget.h"

namespace tarnwick::qt {
namespace {

using ::testing::ElementsAre;

class PanelHoverTest : public ::testing::Test {
 protected:
    PanelHoverTest() {
        scroller.setFrameShape(QFrame::NoFrame);
        scroller.setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        scroller.setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        scroller.setWidget(view);
        scroller.setGeometry(0, 0, kPanelWidth, 780);
        movePointer(kElsewhere);
        // Bars have a test of their own.
        motion->setReduced(true);
        inputs.cpuInfo.usagePercentage = 99;
        inputs.systemInfo.uptime = 60;
        inputs.remindRestartAfterWeek = true;
        inputs.batteryDetectionComplete = false;
        inputs.topCPUProcesses = {{.id = 1, .name = "a", .cpuUsage = 20},
                                  {.id = 2, .name = "b", .cpuUsage = 10}};
        show();
    }
    ~PanelHoverTest() override { movePointer(kElsewhere); }

    void show() {
        view->setPage(page());
        scroller.show();
        settle();
    }
    QWidget* find(const char* name) const { return view->findChild<QWidget*>(name); }
    QWidget* list() const { return find("topCPU"); }
    QPoint middleOfList() const { return list()->mapToGlobal(list()->rect().center()); }
    /// The other way round.
    void turnProcesses() {
        std::swap(inputs.topCPUProcesses.front(), inputs.topCPUProcesses.back());
        show();
    }
    /// The clock goes on, then comes the same page again.
    void waitForPage(double seconds) {
        manual.advance(seconds);
        show();
    }
    std::vector<std::string> names() const {
        std::vector<std::string> all;
        const QList<ListLine*> lines = list()->findChildren<ListLine*>();
        for (int i = 1; i < lines.size(); ++i) {
            all.push_back(lines[i]->content().leading.text.toStdString());
        }
        return all;
    }
    Page page() const { return homePage(inputs, formatter); }
    /// The panel looks as it would if it had been opened now.
    void expectLatest() const {
        PanelView fresh(
            theme, [](PanelAction) {}, nullptr);
        fresh.setPage(page());
        EXPECT_EQ(view->height(), fresh.height());
        for (const PageItem& item : page()) {
            const auto* expected = fresh.findChild<QWidget*>(QString::fromStdString(item.id));
            EXPECT_EQ(find(item.id.c_str())->geometry(), expected->geometry()) << item.id;
            EXPECT_TRUE(find(item.id.c_str())->isVisible()) << item.id;
        }
    }

    Theme theme;
    testing::PlainByteCountFormatter formatter;
    HomePageInputs inputs = testing::calmMachine();
    platform::testing::ManualDispatch manual;
    std::shared_ptr<Motion> motion = std::make_shared<Motion>(manual);
    QScrollArea scroller;
    PanelView* view = new PanelView(
        theme, [](PanelAction) {}, &scroller, motion);
};

/// What may happen above the list.
struct Change {
    const char* name;
    void (*apply)(HomePageInputs&);
};

constexpr Change kChanges[] = {
    {"a row comes", [](HomePageInputs& in) { in.systemInfo.uptime = 604800; }},
    {"a bar goes", [](HomePageInputs& in) { in.gpuInfo.isAvailable = false; }},
    {"one comes and one goes",
     [](HomePageInputs& in) {
         in.systemInfo.uptime = 604800;
         in.gpuInfo.isAvailable = false;
     }},
    {"rows take the place of another",
     [](HomePageInputs& in) { in.batteryDetectionComplete = true; }},
};

TEST_F(PanelHoverTest, TheListStaysWhereItIsUntilThePointerLeaves) {
    for (const Change& change : kChanges) {
        SCOPED_TRACE(change.name);
        const HomePageInputs before = inputs;
        movePointer(middleOfList());
        const QRect place = list()->geometry();
        const int height = view->height();
        change.apply(inputs);
        turnProcesses();
        EXPECT_EQ(list()->geometry(), place);
        EXPECT_EQ(view->height(), height);
        EXPECT_THAT(names(), ElementsAre("a", "b"));
        // Nothing lies on anything else meanwhile.
        int bottom = 0;
        for (const PageItem& item : page()) {
            const QWidget* row = find(item.id.c_str());
            if (row->isVisible()) {
                EXPECT_GE(row->y(), bottom) << item.id;
                bottom = row->geometry().bottom() + 1;
            }
        }
        movePointer(kElsewhere);
        EXPECT_THAT(names(), ElementsAre("b", "a"));
        expectLatest();
        inputs = before;
        show();
        expectLatest();
    }
}

TEST_F(PanelHoverTest, ThePointerBesideTheListHoldsNothing) {
    movePointer(find("bar.cpu")->mapToGlobal(QPoint(5, 5)));
    const int y = list()->y();
    inputs.systemInfo.uptime = 604800;
    turnProcesses();
    EXPECT_GT(list()->y(), y);
    EXPECT_THAT(names(), ElementsAre("b", "a"));
    expectLatest();
}

TEST_F(PanelHoverTest, NewFiguresAboveAreShownAtOnce) {
    movePointer(middleOfList());
    inputs.cpuInfo.usagePercentage = 98;
    inputs.systemInfo.uptime = 604800;
    show();
    EXPECT_EQ(find("bar.cpu")->accessibleName(), "CPU, 98.0%, high");
    EXPECT_FALSE(find("restart")->isVisible());
    // Also with figures that say the same.
    show();
    EXPECT_FALSE(find("restart")->isVisible());
}

TEST_F(PanelHoverTest, APointerAtRestKeepsNothingWaitingForEver) {
    movePointer(middleOfList());
    inputs.systemInfo.uptime = 604800;
    const int y = list()->y();
    show();
    waitForPage(kLongestHold - 0.1);
    EXPECT_FALSE(find("restart")->isVisible());
    waitForPage(0.1);
    expectLatest();
    EXPECT_GT(list()->y(), y);
    // Moved again, it holds again.
    inputs.remindRestartAfterWeek = false;
    show();
    movePointer(middleOfList() + QPoint(1, 0));
    inputs.remindRestartAfterWeek = true;
    show();
    EXPECT_FALSE(find("restart")->isVisible());
}

TEST_F(PanelHoverTest, APointerAtRestHoldsTheOrderNoLongerThanTheRowsAbove) {
    movePointer(middleOfList());
    turnProcesses();
    EXPECT_THAT(names(), ElementsAre("a", "b"));
    manual.advance(kLongestHold);
    EXPECT_THAT(names(), ElementsAre("b", "a"));
    turnProcesses();
    EXPECT_THAT(names(), ElementsAre("a", "b"));
    // Moved again, it holds again.
    movePointer(middleOfList() + QPoint(1, 0));
    turnProcesses();
    EXPECT_THAT(names(), ElementsAre("a", "b"));
}

TEST_F(PanelHoverTest, AnOrderThatWasHeldForLongIsTheLatestAlsoWhereTheListIsTheSame) {
    movePointer(middleOfList());
    turnProcesses();
    waitForPage(kLongestHold - 0.1);
    EXPECT_THAT(names(), ElementsAre("a", "b"));
    waitForPage(0.1);
    EXPECT_THAT(names(), ElementsAre("b", "a"));
}

TEST_F(PanelHoverTest, APointerThatKeepsMovingHoldsNothingLongerThanOneAtRest) {
    for (const Change& change : kChanges) {
        SCOPED_TRACE(change.name);
        const HomePageInputs before = inputs;
        movePointer(middleOfList());
        change.apply(inputs);
        show();
        double waited = 0;
        for (int move = 0; waited < kLongestHold - 0.75; ++move, waited += 0.5) {
            movePointer(middleOfList() + QPoint(move % 2, 0));
            waitForPage(0.5);
        }
        movePointer(middleOfList() + QPoint(3, 0));
        manual.advance(kLongestHold - waited);
        // Before any later turn, in which the pointer would move on.
        expectLatest();
        movePointer(middleOfList() + QPoint(5, 0));
        inputs = before;
        movePointer(kElsewhere);
        show();
        expectLatest();
    }
}

TEST_F(PanelHoverTest, APointerThatComesBackHoldsForAsLongAgain) {
    movePointer(middleOfList());
    show();
    waitForPage(kLongestHold - 0.1);
    movePointer(kElsewhere);
    show();
    movePointer(middleOfList());
    turnProcesses();
    waitForPage(kLongestHold - 0.1);
    EXPECT_THAT(names(), ElementsAre("a", "b"));
}

TEST_F(PanelHoverTest, ASummaryThatIsTooLongForItsRoomIsCutWithAToolTip) {
    movePointer(middleOfList());
    const QString all =
        "A summary that says so much that it needs another line of its own, and then goes on and "
        "on until even that line is full and nobody reads it any more";
    inputs.displaySummary.popoverText = all.toStdString();
    show();
    auto* header = find("header");
    const QPoint position(5, header->height() - 3);
    QHelpEvent help(QEvent::ToolTip, position, header->mapToGlobal(position));
    QApplication::sendEvent(header, &help);
    EXPECT_TRUE(shownToolTip().contains(all)) << shownToolTip().toStdString();
    hideToolTip();
}

TEST_F(PanelHoverTest, LinesThatComeAndGoUnderAPointerThatNobodyHasToldOfYetAreShown) {
    // The pointer has moved on from the last line, and that is not heard of before the next page,
    // which has no such line.
    movePointer(list()->mapToGlobal(QPoint(40, list()->height() - 4)));
    QCursor::setPos(find("bar.cpu")->mapToGlobal(QPoint(5, 5)));
    inputs.topCPUProcesses.clear();
    view->setPage(page());
    settle();
    QCursor::setPos(middleOfList());
    inputs.topCPUProcesses = {{.id = 3, .name = "c", .cpuUsage = 20},
                              {.id = 4, .name = "d", .cpuUsage = 10},
                              {.id = 5, .name = "e", .cpuUsage = 5}};
    view->setPage(page());
    settle();
    EXPECT_THAT(names(), ElementsAre("c", "d", "e"));
}

TEST_F(PanelHoverTest, ARowThatCameAndWentWhileItWaitedIsNeverSeen) {
    movePointer(middleOfList());
    inputs.systemInfo.uptime = 604800;
    show();
    inputs.systemInfo.uptime = 60;
    show();
    EXPECT_EQ(find("restart"), nullptr);
    movePointer(kElsewhere);
    expectLatest();
}

TEST_F(PanelHoverTest, AListThatIsScrolledUnderAPointerAtRestIsHeldOnceThatMoves) {
    scroller.resize(kPanelWidth, 200);
    const QPoint place = scroller.mapToGlobal(QPoint(160, 100));
    movePointer(place);
    scroller.verticalScrollBar()->setValue(list()->geometry().center().y() - 100);
    settle();
    // A wheel says where the pointer is, too.
    movePointer(place);
    turnProcesses();
    EXPECT_THAT(names(), ElementsAre("b", "a"));
    movePointer(place + QPoint(1, 0));
    turnProcesses();
    EXPECT_THAT(names(), ElementsAre("b", "a"));
    // And let go once it is scrolled away.
    scroller.verticalScrollBar()->setValue(0);
    settle();
    EXPECT_THAT(names(), ElementsAre("a", "b"));
    turnProcesses();
    EXPECT_THAT(names(), ElementsAre("b", "a"));
}

TEST_F(PanelHoverTest, AListThatMovesUnderAPointerAtRestIsHeldOnceThatMoves) {
    // Below the last line, where the list will be once there is one more row.
    const QPoint below(160, list()->geometry().bottom() + 4);
    movePointer(view->mapToGlobal(below));
    inputs.systemInfo.uptime = 604800;
    show();
    ASSERT_TRUE(list()->geometry().contains(below));
    movePointer(view->mapToGlobal(below));
    turnProcesses();
    EXPECT_THAT(names(), ElementsAre("b", "a"));
    movePointer(view->mapToGlobal(below) + QPoint(1, 0));
    turnProcesses();
    EXPECT_THAT(names(), ElementsAre("b", "a"));
}

TEST_F(PanelHoverTest, APointerThatIsOnNoWindowAnyMoreHoldsNothing) {
    movePointer(middleOfList());
    // As if the pointer had left and its place were unknown.
    QEvent leave(QEvent::Leave);
    QApplication::sendEvent(&scroller, &leave);
    QApplication::sendEvent(list(), &leave);
    turnProcesses();
    EXPECT_THAT(names(), ElementsAre("b", "a"));
}

TEST_F(PanelHoverTest, WidgetsThatComeTakeNoPointerBeforeTheyAreInTheirPlace) {
    // Where a widget is before it is placed, and where no page has one.
    movePointer(scroller.mapToGlobal(QPoint(8, 8)));
    const Page detail = memoryDetailPage(testing::memoryDetailStates()[1].inputs, formatter);
    for (const Page& next : {detail, page(), detail}) {
        view->turnTo(next, std::nullopt, Qt::OtherFocusReason);
        settle();
        for (const QWidget* widget : view->findChildren<QWidget*>()) {
            EXPECT_FALSE(widget->underMouse()) << widget->objectName().toStdString();
        }
    }
}

TEST_F(PanelHoverTest, OtherFontsAreShownAtOnce) {
    movePointer(middleOfList());
    const QFont old = QApplication::font();
    QFont larger = old;
    larger.setPointSizeF(old.pointSizeF() * 1.2);
    QApplication::setFont(larger);
    settle();
    expectLatest();
    QApplication::setFont(old);
    settle();
}

TEST_F(PanelHoverTest, AListThatGoesWhilePointedAtLetsGo) {
    movePointer(middleOfList());
    inputs.cpuInfo.usagePercentage = 5;
    inputs.systemInfo.uptime = 604800;
    show();
    EXPECT_EQ(list(), nullptr);
    expectLatest();
}

}  // namespace
}  // namespace tarnwick::qt
