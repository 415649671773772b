// SPDX-License-Identifier: MIT
// Presses of the pointer that change what lies under it.
#include <QScrollBar>
#include <QStyleHints>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "tests/ui/qt/panel_window_fixture.h"
#include "tests/ui/qt/pointer.h"
#include "ui/qt/top_apps_widget.h"

namespace tarnwick::qt {
namespace {

class PanelWindowPressTest : public PanelWindowTest {
 protected:
    PanelWindowPressTest() { movePointer(kElsewhere); }
    ~PanelWindowPressTest() override { movePointer(kElsewhere); }

    static QPoint middleOf(const char* name) {
        return find(name)->mapToGlobal(find(name)->rect().center());
    }
    /// A press and a release where the pointer is, as the screen tells of them, at a time in
    /// milliseconds. The second one of a double click may be told as either type.
    static void pressPointer(int time = 1000, QEvent::Type press = QEvent::MouseButtonPress) {
        const QPoint place = QCursor::pos();
        for (const auto type : {press, QEvent::MouseButtonRelease}) {
            if (popup() == nullptr) {
                return;
            }
            QWindow* panel = popup()->windowHandle();
            QMouseEvent event(type, place - panel->position(), place, Qt::LeftButton,
                              type == press ? Qt::LeftButton : Qt::NoButton, Qt::NoModifier);
            event.setTimestamp(static_cast<quint64>(time));
            QApplication::sendEvent(panel, &event);
            qt::settle();
        }
    }
    /// Opens the panel and, by a press, the page of the memory, which ends above the pointer.
    void openShorterPage() {
        open();
        movePointer(middleOf("button.showMemoryDetail"));
        pressPointer();
        ASSERT_EQ(view.activeTab(), MenuTab::memoryDetail);
        ASSERT_FALSE(panelPlace().contains(QCursor::pos()));
    }
    void showMemory(const std::vector<AppProcessInfo>& all) {
        manager->topMemoryProcesses.set(all);
        manual.runMain();
        qt::settle();
    }
    /// Of the processes that use most of the memory, from top to bottom.
    static std::vector<std::string> processes() {
        std::vector<std::string> names;
        for (const ListLine* line : find("topMemory.list")->findChildren<ListLine*>()) {
            names.push_back(line->content().leading.text.toStdString());
        }
        return names;
    }
};

TEST_F(PanelWindowPressTest, ProcessesUnderThePointerThatOpenedTheirPageAreInTheLatestOrder) {
    // So many that the list reaches below the button that leads to it.
    std::vector<AppProcessInfo> all;
    std::vector<std::string> names;
    for (int id = 1; id <= 8; ++id) {
        names.push_back("app " + std::to_string(id));
        all.push_back({.id = id, .name = names.back(), .memoryUsage = 50});
    }
    const std::vector<AppProcessInfo> turned(all.rbegin(), all.rend());
    const std::vector<std::string> turnedNames(names.rbegin(), names.rend());
    for (const bool isByKey : {false, true}) {
        open();
        showMemory(all);
        movePointer(middleOf("button.showMemoryDetail"));
        if (isByKey) {
            find("button.showMemoryDetail")->setFocus(Qt::TabFocusReason);
            key(Qt::Key_Return);
        } else {
            pressPointer();
        }
        ASSERT_EQ(view.activeTab(), MenuTab::memoryDetail);
        ASSERT_TRUE(find("topMemory.list")->underMouse());
        ASSERT_EQ(processes(), names);
        showMemory(turned);
        EXPECT_EQ(processes(), turnedNames);
        // Once the pointer moves, the row below it stays.
        movePointer(QCursor::pos() + QPoint(1, 0));
        showMemory(all);
        EXPECT_EQ(processes(), turnedNames);
        window->close();
        qt::settle();
    }
}

TEST_F(PanelWindowPressTest, TheSecondPressOfADoubleClickDoesNotCloseAPageThatEndsAboveIt) {
    for (const auto type : {QEvent::MouseButtonPress, QEvent::MouseButtonDblClick}) {
        openShorterPage();
        pressPointer(1000 + QApplication::doubleClickInterval() - 1, type);
        ASSERT_TRUE(window->isOpen());
        EXPECT_EQ(view.activeTab(), MenuTab::memoryDetail);
        pressPointer(1000 + QApplication::doubleClickInterval());
        EXPECT_FALSE(window->isOpen());
        qt::settle();
    }
}

TEST_F(PanelWindowPressTest, TheSecondPressOfADoubleClickMayBeAFewPointsAway) {
    const int distance = QGuiApplication::styleHints()->mouseDoubleClickDistance();
    ASSERT_GT(distance, 0);
    openShorterPage();
    movePointer(QCursor::pos() + QPoint(distance, distance));
    pressPointer(1100);
    EXPECT_TRUE(window->isOpen());
    movePointer(QCursor::pos() + QPoint(1, 0));
    pressPointer(1200);
    EXPECT_FALSE(window->isOpen());
}

TEST_F(PanelWindowPressTest, APressElsewhereOutsideClosesAtOnce) {
    openShorterPage();
    movePointer(kElsewhere);
    pressPointer(1001);
    EXPECT_FALSE(window->isOpen());
}

TEST_F(PanelWindowPressTest, TwoPressesOnOneButtonCountTwice) {
    open();
    settle();
    takeCalls();
    movePointer(middleOf("button.refresh"));
    for (const auto type : {QEvent::MouseButtonPress, QEvent::MouseButtonDblClick}) {
        pressPointer(1000, type);
        settle();
    }
    EXPECT_EQ(count("health forced"), 2U);
}

TEST_F(PanelWindowPressTest, TheSecondPressOfADoubleClickHitsNoButtonThatHasComeUnderIt) {
    const QFont old = QApplication::font();
    QFont large = old;
    large.setPointSizeF(25);
    QApplication::setFont(large);
    // The page can be scrolled so far that what leads away is where the way back will be.
    manager->cpuInfo.set(testing::makeCPU(99, 4));
    manager->topCPUProcesses.set(std::vector<AppProcessInfo>(20, {.name = "app"}));
    for (const auto type : {QEvent::MouseButtonPress, QEvent::MouseButtonDblClick}) {
        open();
        click("button.showPerformanceDetail");
        const QPoint back = middleOf("button.goBack");
        click("button.goBack");
        QScrollBar* bar = popup()->findChild<QScrollArea*>()->verticalScrollBar();
        bar->setValue(bar->value() + middleOf("button.showPerformanceDetail").y() - back.y());
        movePointer(back);
        pressPointer();
        ASSERT_EQ(view.activeTab(), MenuTab::performanceDetail);
        ASSERT_EQ(middleOf("button.goBack"), back);
        pressPointer(1100, type);
        EXPECT_EQ(view.activeTab(), MenuTab::performanceDetail);
        pressPointer(1000 + QApplication::doubleClickInterval());
        EXPECT_EQ(view.activeTab(), MenuTab::home);
        window->close();
        qt::settle();
    }
    QApplication::setFont(old);
}

}  // namespace
}  // namespace tarnwick::qt
