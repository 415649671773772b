// SPDX-License-Identifier: MIT
#include "ui/qt/accessible_application.h"

#include <QAccessible>
#include <QApplication>
#include <QMenu>
#include <QWidget>
#include <gtest/gtest.h>

namespace tarnwick::qt {
namespace {

class AccessibleApplication : public ::testing::Test {
 protected:
    // Takes effect when the application's interface is first requested, which happens below.
    static void SetUpTestSuite() { listPopUpsForScreenReaders(); }
};

QAccessibleInterface* application() {
    return QAccessible::queryAccessibleInterface(qApp);
}

/// Where screen readers find a window among the program's; -1 where they do not.
int placeOf(QWidget& window) {
    QAccessibleInterface* own = QAccessible::queryAccessibleInterface(&window);
    const int place = application()->indexOfChild(own);
    for (int i = 0; i < application()->childCount(); ++i) {
        EXPECT_EQ(application()->child(i) == own, i == place) << i;
    }
    return place;
}

TEST_F(AccessibleApplication, ListsAnOpenPopUpAmongTheWindows) {
    QWidget window;
    window.show();
    const int before = application()->childCount();
    EXPECT_GE(placeOf(window), 0);

    QWidget popUp(nullptr, Qt::Popup | Qt::FramelessWindowHint);
    EXPECT_EQ(placeOf(popUp), -1);
    popUp.show();
    EXPECT_EQ(placeOf(popUp), before);
    EXPECT_EQ(application()->childCount(), before + 1);
    EXPECT_GE(placeOf(window), 0);
    EXPECT_EQ(application()->child(before)->parent(), application());

    popUp.hide();
    EXPECT_EQ(placeOf(popUp), -1);
    EXPECT_EQ(application()->childCount(), before);
}

TEST_F(AccessibleApplication, LeavesPopUpsOfAWindowToThatWindow) {
    QWidget window;
    window.show();
    QMenu menu(&window);
    menu.addAction("entry");
    const int before = application()->childCount();
    menu.popup({});
    EXPECT_TRUE(menu.isVisible());
    EXPECT_EQ(application()->childCount(), before);
    EXPECT_EQ(placeOf(menu), -1);
}

TEST_F(AccessibleApplication, HasNoChildBeyondTheLast) {
    EXPECT_EQ(application()->child(application()->childCount()), nullptr);
    EXPECT_EQ(application()->child(-1), nullptr);
    EXPECT_EQ(application()->indexOfChild(nullptr), -1);
}

}  // namespace
}  // namespace tarnwick::qt
