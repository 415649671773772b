// Presses of the pointer that change what lies under it.
#include <QScrollBar>
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
    /// A press and a release where the pointer is, the windows being told as they are on a screen.
    static void pressPointer() {
        const QPoint place = QCursor::pos();
        QWindow* panel = popup()->windowHandle();
        for (const auto type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease}) {
            const bool isDown = type == QEvent::MouseButtonPress;
            QMouseEvent event(type, place - panel->position(), place, Qt::LeftButton,
                              isDown ? Qt::LeftButton : Qt::NoButton, Qt::NoModifier);
            QApplication::sendEvent(panel, &event);
            qt::settle();
        }
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
        // Once it moves, whoever it points at stays.
        movePointer(QCursor::pos() + QPoint(1, 0));
        showMemory(all);
        EXPECT_EQ(processes(), turnedNames);
        window->close();
        qt::settle();
    }
}

}  // namespace
}  // namespace tarnwick::qt
