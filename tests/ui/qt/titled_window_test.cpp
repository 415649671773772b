// SPDX-License-Identifier: MIT
#include "ui/qt/titled_window.h"

#include <QApplication>
#include <QLabel>
#include <QMainWindow>
#include <QPointer>
#include <QScreen>
#include <gtest/gtest.h>
#include <memory>
#include <typeinfo>

#include "tests/ui/qt/settle.h"

namespace tarnwick::qt {
namespace {

class TitledWindowTest : public ::testing::Test, public platform::WindowDelegate {
 protected:
    TitledWindowTest() { window->setTitle("Tarnwick Settings"); }
    ~TitledWindowTest() override {
        window.reset();
        settle();
    }

    void windowWillClose() override {
        ++closings;
        if (goesWhenItCloses) {
            window->setContentView(nullptr);
            window->setDelegate(nullptr);
            window.reset();
        }
    }

    static QMainWindow* frame() {
        for (QWidget* widget : QApplication::topLevelWidgets()) {
            if (auto* found = qobject_cast<QMainWindow*>(widget)) {
                return found;
            }
        }
        return nullptr;
    }
    static QWidget* show(platform::Window& window) {
        auto label = std::make_unique<QLabel>("content");
        QWidget* widget = label.get();
        window.setContentView(std::make_unique<WidgetView>(std::move(label)));
        window.center();
        window.makeKeyAndOrderFront();
        settle();
        return widget;
    }

    TitledWindows windows;
    std::unique_ptr<platform::Window> window = windows.makeWindow({.width = 520, .height = 500});
    bool goesWhenItCloses = true;
    int closings = 0;
};

TEST_F(TitledWindowTest, IsNotOnScreenUntilItIsShown) {
    ASSERT_NE(frame(), nullptr);
    EXPECT_FALSE(frame()->isVisible());
}

TEST_F(TitledWindowTest, ComesUpInTheMiddleWithItsTitleAndContent) {
    const QWidget* content = show(*window);
    EXPECT_TRUE(frame()->isVisible());
    EXPECT_EQ(frame()->windowTitle(), "Tarnwick Settings");
    EXPECT_TRUE(content->isVisible());
    EXPECT_EQ(content->size(), QSize(520, 500));
    const QPoint away = frame()->frameGeometry().center() -
                        QGuiApplication::primaryScreen()->availableGeometry().center();
    EXPECT_LE(away.manhattanLength(), 40);
    EXPECT_TRUE(frame()->isActiveWindow());
}

TEST_F(TitledWindowTest, CannotBeResizedOrMiniaturizedButClosed) {
    show(*window);
    EXPECT_EQ(frame()->minimumSize(), QSize(520, 500));
    EXPECT_EQ(frame()->maximumSize(), QSize(520, 500));
    EXPECT_TRUE(frame()->windowFlags().testFlag(Qt::WindowCloseButtonHint));
    EXPECT_TRUE(frame()->windowFlags().testFlag(Qt::WindowTitleHint));
    EXPECT_FALSE(frame()->windowFlags().testFlag(Qt::WindowMinimizeButtonHint));
    EXPECT_FALSE(frame()->windowFlags().testFlag(Qt::WindowMaximizeButtonHint));
}

TEST_F(TitledWindowTest, CanBeResizableAndMiniaturizable) {
    window = windows.makeWindow(
        {.width = 200, .height = 100, .isResizable = true, .isMiniaturizable = true});
    EXPECT_EQ(frame()->size(), QSize(200, 100));
    EXPECT_GT(frame()->maximumWidth(), 200);
    EXPECT_LT(frame()->minimumWidth(), 200);
    EXPECT_TRUE(frame()->windowFlags().testFlag(Qt::WindowMinimizeButtonHint));
    EXPECT_TRUE(frame()->windowFlags().testFlag(Qt::WindowMaximizeButtonHint));
}

TEST_F(TitledWindowTest, MayGoWhileItCloses) {
    window->setDelegate(this);
    const QPointer<QWidget> content = show(*window);
    const QPointer<QWidget> shown = frame();
    EXPECT_TRUE(frame()->close());
    EXPECT_EQ(window, nullptr);
    EXPECT_EQ(closings, 1);
    EXPECT_EQ(content, nullptr);
    settle();
    EXPECT_EQ(shown, nullptr);
    EXPECT_EQ(frame(), nullptr);
}

TEST_F(TitledWindowTest, StaysWhereItsOwnerKeepsIt) {
    goesWhenItCloses = false;
    window->setDelegate(this);
    const QPointer<QWidget> content = show(*window);
    frame()->close();
    settle();
    EXPECT_EQ(closings, 1);
    ASSERT_NE(frame(), nullptr);
    EXPECT_FALSE(frame()->isVisible());
    EXPECT_NE(content, nullptr);
    window->makeKeyAndOrderFront();
    settle();
    EXPECT_TRUE(content->isVisible());
    frame()->close();
    EXPECT_EQ(closings, 2);
}

TEST_F(TitledWindowTest, WithoutADelegateItJustCloses) {
    show(*window);
    frame()->close();
    settle();
    EXPECT_FALSE(frame()->isVisible());
}

TEST_F(TitledWindowTest, GoesAtOnceWithItsContent) {
    const QPointer<QWidget> content = show(*window);
    const QPointer<QWidget> shown = frame();
    window.reset();
    EXPECT_EQ(content, nullptr);
    EXPECT_EQ(shown, nullptr);
}

TEST_F(TitledWindowTest, TellsWhenItHasGoneWithItsFrame) {
    int told = 0;
    QPointer<QWidget> shown;
    windows = TitledWindows([&] {
        EXPECT_EQ(shown, nullptr);
        EXPECT_EQ(frame(), nullptr);
        ++told;
    });
    // Closed by the user, then by the program.
    for (const bool isClosed : {true, false}) {
        window = windows.makeWindow({.width = 520, .height = 500});
        window->setDelegate(this);
        show(*window);
        shown = frame();
        settle();
        told = 0;
        if (isClosed) {
            frame()->close();
        } else {
            window.reset();
        }
        EXPECT_EQ(told, 0);
        settle();
        EXPECT_EQ(told, 1);
    }
}

TEST_F(TitledWindowTest, ANewContentTakesTheOldOnesPlace) {
    const QPointer<QWidget> first = show(*window);
    const QWidget* second = show(*window);
    EXPECT_EQ(first, nullptr);
    EXPECT_TRUE(second->isVisible());
    window->setContentView(nullptr);
    EXPECT_EQ(frame()->centralWidget(), nullptr);
}

TEST_F(TitledWindowTest, OnlyWidgetsCanBeShown) {
    class OtherView final : public platform::View {};
    EXPECT_THROW(window->setContentView(std::make_unique<OtherView>()), std::bad_cast);
}

TEST_F(TitledWindowTest, ComesBackToTheFront) {
    show(*window);
    QWidget other;
    other.show();
    other.activateWindow();
    settle();
    EXPECT_FALSE(frame()->isActiveWindow());
    frame()->showMinimized();
    window->makeKeyAndOrderFront();
    windows.activateIgnoringOtherApps();
    settle();
    EXPECT_FALSE(frame()->isMinimized());
    EXPECT_TRUE(frame()->isActiveWindow());
}

}  // namespace
}  // namespace tarnwick::qt
