// SPDX-License-Identifier: MIT
#include "ui/qt/panel_window.h"

#include <QContextMenuEvent>
#include <QMenu>
#include <QPainter>
#include <QScreen>
#include <QScrollBar>
#include <QTest>
#include <QWheelEvent>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/ui/qt/paint_counter.h"
#include "tests/ui/qt/panel_window_fixture.h"
#include "ui/qt/panel_placement.h"
#include "ui/qt/panel_popup.h"
#include "ui/qt/shadow.h"

namespace tarnwick::qt {
namespace {

TEST_F(PanelWindowTest, HasNoWidgetsUntilItOpens) {
    EXPECT_FALSE(window->isOpen());
    EXPECT_EQ(popup(), nullptr);
    EXPECT_FALSE(view.isVisible());
}

TEST_F(PanelWindowTest, OpensUnderTheItemInsideTheScreen) {
    open();
    ASSERT_NE(popup(), nullptr);
    EXPECT_TRUE(popup()->isVisible());
    const auto* panel = popup()->findChild<QScrollArea*>();
    const QRect place(panel->mapToGlobal(QPoint()), panel->size());
    const QRect screen = QGuiApplication::primaryScreen()->geometry();
    const QRect available = QGuiApplication::primaryScreen()->availableGeometry();
    EXPECT_EQ(place.width(), 320);
    EXPECT_EQ(place, panelPlacement(place.size(), anchor, screen, available));
    EXPECT_TRUE(available.contains(place));
}

TEST_F(PanelWindowTest, TellsTheManagerWhenItIsVisible) {
    open();
    EXPECT_TRUE(manager->isPopoverVisible());
    window->close();
    EXPECT_FALSE(manager->isPopoverVisible());
}

TEST_F(PanelWindowTest, BuildsOnePageToOpenWith) {
    const Page page = view.page();
    const int callsOfOnePage = std::exchange(formatter.calls, 0);
    EXPECT_GT(callsOfOnePage, 0);
    window->open(anchor);
    EXPECT_EQ(formatter.calls, callsOfOnePage);
}

TEST_F(PanelWindowTest, FreesItsWidgetsWhenItCloses) {
    open();
    const QPointer<QWidget> widget = popup();
    const QPointer<QWidget> bar = popup()->findChild<QWidget*>("bar.cpu");
    ASSERT_NE(bar, nullptr);
    window->close();
    qt::settle();
    EXPECT_FALSE(window->isOpen());
    EXPECT_EQ(widget, nullptr);
    EXPECT_EQ(bar, nullptr);
}

TEST_F(PanelWindowTest, ClosingTwiceOrOpeningTwiceIsHarmless) {
    window->close();
    open();
    const QWidget* first = popup();
    open();
    EXPECT_EQ(popup(), first);
    window->close();
    window->close();
    EXPECT_FALSE(window->isOpen());
}

TEST_F(PanelWindowTest, OpensAnewAfterItClosed) {
    for (int round = 0; round < 3; ++round) {
        open();
        EXPECT_TRUE(window->isOpen());
        window->close();
        qt::settle();
        EXPECT_EQ(popup(), nullptr);
    }
}

TEST_F(PanelWindowTest, EscapeCloses) {
    open();
    QKeyEvent escape(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
    QApplication::sendEvent(popup(), &escape);
    qt::settle();
    EXPECT_FALSE(window->isOpen());
    EXPECT_FALSE(manager->isPopoverVisible());
}

TEST_F(PanelWindowTest, EscapeClosesWhileAButtonHasTheFocus) {
    open();
    QKeyEvent escape(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
    QApplication::sendEvent(popup()->findChild<QWidget*>("button.quit"), &escape);
    qt::settle();
    EXPECT_FALSE(window->isOpen());
}

TEST_F(PanelWindowTest, APressOutsideCloses) {
    open();
    pressAt(QPoint(-10, -10));
    EXPECT_FALSE(window->isOpen());
}

TEST_F(PanelWindowTest, APressOutsideClosesWhenTheButtonIsLetGo) {
    open();
    sendMouse(QEvent::MouseButtonPress, QPoint(-40, -40));
    EXPECT_TRUE(window->isOpen());
    sendMouse(QEvent::MouseButtonRelease, QPoint(-40, -40));
    EXPECT_FALSE(window->isOpen());
}

TEST_F(PanelWindowTest, ALoneReleaseOutsideDoesNotClose) {
    open();
    sendMouse(QEvent::MouseButtonRelease, QPoint(-40, -40));
    EXPECT_TRUE(window->isOpen());
}

TEST_F(PanelWindowTest, APressOnTheShadowIsOutside) {
    open();
    pressAt(QPoint(3, 3));
    EXPECT_FALSE(window->isOpen());
}

TEST_F(PanelWindowTest, APressInsideDoesNotClose) {
    open();
    pressAt(popup()->rect().center());
    EXPECT_TRUE(window->isOpen());
}

TEST_F(PanelWindowTest, ToggleOpensAndCloses) {
    window->toggle(anchor);
    EXPECT_TRUE(window->isOpen());
    window->toggle(anchor);
    EXPECT_FALSE(window->isOpen());
    window->toggle(anchor);
    EXPECT_TRUE(window->isOpen());
}

TEST_F(PanelWindowTest, TheClickThatDismissedThePanelDoesNotOpenItAgain) {
    open();
    pressAt(QPoint(-10, -10));
    window->click(anchor);
    EXPECT_FALSE(window->isOpen());
    window->click(anchor);
    EXPECT_TRUE(window->isOpen());
}

TEST_F(PanelWindowTest, ALaterClickOpensItAgain) {
    open();
    pressAt(QPoint(-10, -10));
    manual.advance(2 * PanelWindow::kSameClickInterval);
    window->click(anchor);
    EXPECT_TRUE(window->isOpen());
}

TEST_F(PanelWindowTest, AfterEscapeAClickOpensItAtOnce) {
    open();
    QKeyEvent escape(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
    QApplication::sendEvent(popup(), &escape);
    window->click(anchor);
    EXPECT_TRUE(window->isOpen());
}

TEST_F(PanelWindowTest, AToggleRightAfterAPressOutsideOpensIt) {
    open();
    pressAt(QPoint(-10, -10));
    window->toggle(anchor);
    EXPECT_TRUE(window->isOpen());
    window->click(anchor);
    EXPECT_FALSE(window->isOpen());
}

TEST_F(PanelWindowTest, AClickOpensAndCloses) {
    window->click(anchor);
    EXPECT_TRUE(window->isOpen());
    window->click(anchor);
    EXPECT_FALSE(window->isOpen());
    window->click(anchor);
    EXPECT_TRUE(window->isOpen());
}

TEST_F(PanelWindowTest, AClickOnTheItemClosesAPanelOpenedRightAfterAPressOutside) {
    open();
    pressAt(QPoint(-10, -10));
    window->open(anchor);
    window->click(anchor);
    EXPECT_FALSE(window->isOpen());
}

TEST_F(PanelWindowTest, ShowsNewFiguresWhileOpen) {
    open();
    settle();
    manager->cpuInfo.set(testing::makeCPU(63, 4));
    manual.runMain();
    EXPECT_EQ(popup()->findChild<QWidget*>("bar.cpu")->accessibleName(), "CPU, 63.0%, normal");
}

TEST_F(PanelWindowTest, KeepsItsPlaceWhenThePageGrows) {
    open();
    settle();
    const QWidget* panel = popup()->findChild<PanelView*>();
    const QPoint place = panel->mapToGlobal(QPoint());
    const int height = panel->height();
    manager->cpuInfo.set(testing::makeCPU(99, 4));
    manual.runMain();
    qt::settle();
    EXPECT_GT(panel->height(), height);
    EXPECT_EQ(panel->mapToGlobal(QPoint()), place);
}

TEST_F(PanelWindowTest, AnotherPageKeepsThePlaceUnderTheItem) {
    open();
    const QRect home = panelPlace();
    for (const char* way : {"button.showMemoryDetail", "button.showPerformanceDetail"}) {
        click(way);
        EXPECT_NE(panelPlace().height(), home.height());
        EXPECT_EQ(panelPlace().topLeft(), home.topLeft());
        EXPECT_EQ(panelPlace().width(), home.width());
        click("button.goBack");
        EXPECT_EQ(panelPlace(), home);
    }
}

TEST_F(PanelWindowTest, AnotherPageKeepsThePlaceAboveTheItem) {
    const QFont old = QApplication::font();
    QFont small = old;
    small.setPointSizeF(4);
    QApplication::setFont(small);
    const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
    window->open(QRect(screen.center().x(), screen.bottom() - 22, 22, 22));
    qt::settle();
    const QRect home = panelPlace();
    click("button.showMemoryDetail");
    EXPECT_NE(panelPlace().height(), home.height());
    EXPECT_EQ(panelPlace().bottomLeft(), home.bottomLeft());
    click("button.goBack");
    EXPECT_EQ(panelPlace(), home);
    QApplication::setFont(old);
}

TEST_F(PanelWindowTest, TheMenuKeyAndShiftF10ShowTheMenuWithAndWithoutAFocusedButton) {
    open();
    const auto expectMenuOver = [this](const QRect& place) {
        auto* menu = popup()->findChild<QMenu*>("menu");
        ASSERT_NE(menu, nullptr);
        EXPECT_TRUE(menu->isVisible());
        EXPECT_TRUE(menu->geometry().intersects(place));
        menu->close();
        qt::settle();
        EXPECT_TRUE(window->isOpen());
    };
    const auto menuKey = [](QWidget* focused) {
        const QPoint middle = focused->rect().center();
        QContextMenuEvent event(QContextMenuEvent::Keyboard, middle, focused->mapToGlobal(middle));
        QApplication::sendEvent(focused, &event);
        qt::settle();
    };
    key(Qt::Key_F10, Qt::ShiftModifier);
    expectMenuOver(panelPlace());
    menuKey(popup());
    expectMenuOver(panelPlace());
    QWidget* button = find("button.showMemoryDetail");
    button->setFocus(Qt::TabFocusReason);
    const QRect place(button->mapToGlobal(QPoint()), button->size());
    key(Qt::Key_F10, Qt::ShiftModifier);
    expectMenuOver(place);
    menuKey(button);
    expectMenuOver(place);
    // Other keys do not, nor does a right click on the shadow.
    key(Qt::Key_F10);
    const QPoint shadow(2, 2);
    QContextMenuEvent click(QContextMenuEvent::Mouse, shadow, popup()->mapToGlobal(shadow));
    QApplication::sendEvent(popup(), &click);
    EXPECT_EQ(popup()->findChild<QMenu*>("menu"), nullptr);
}

TEST_F(PanelWindowTest, EscapeGoesBackFromADetailPageAndClosesFromTheHomePage) {
    for (const char* way : {"button.showMemoryDetail", "button.showPerformanceDetail"}) {
        open();
        click(way);
        key(Qt::Key_Escape);
        ASSERT_TRUE(window->isOpen());
        EXPECT_EQ(view.activeTab(), MenuTab::home);
        EXPECT_NE(find("bar.cpu"), nullptr);
        key(Qt::Key_Escape);
        EXPECT_FALSE(window->isOpen());
    }
}

TEST_F(PanelWindowTest, AHeldEscapeDoesNotCloseWhatItLedBackTo) {
    open();
    click("button.showMemoryDetail");
    key(Qt::Key_Escape);
    ASSERT_EQ(view.activeTab(), MenuTab::home);
    QKeyEvent held(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier, QString(), true);
    QApplication::sendEvent(popup(), &held);
    EXPECT_TRUE(window->isOpen());
}

TEST_F(PanelWindowTest, NoButtonHasTheFocusAtFirst) {
    open();
    EXPECT_EQ(focused(), "panel");
    key(Qt::Key_Tab);
    EXPECT_EQ(focused(), "button.refresh");
}

TEST_F(PanelWindowTest, ByKeyTheFocusGoesToTheWayBackAndReturnsToWhereItCameFrom) {
    open();
    for (const char* way : {"button.showMemoryDetail", "button.showPerformanceDetail"}) {
        for (const Qt::Key back : {Qt::Key_Return, Qt::Key_Space, Qt::Key_Escape}) {
            find(way)->setFocus(Qt::TabFocusReason);
            key(Qt::Key_Return);
            EXPECT_EQ(focused(), "button.goBack");
            EXPECT_TRUE(find("focusRing")->isVisible());
            key(back);
            EXPECT_EQ(focused(), way);
            EXPECT_TRUE(find("focusRing")->isVisible());
        }
    }
}

TEST_F(PanelWindowTest, ByPointerTheFocusReturnsUnseen) {
    open();
    click("button.showPerformanceDetail");
    EXPECT_EQ(focused(), "button.goBack");
    EXPECT_FALSE(find("focusRing")->isVisible());
    click("button.goBack");
    EXPECT_EQ(focused(), "button.showPerformanceDetail");
    EXPECT_FALSE(find("focusRing")->isVisible());
    click("button.showPerformanceDetail");
    key(Qt::Key_Escape);
    EXPECT_EQ(focused(), "button.showPerformanceDetail");
    EXPECT_TRUE(find("focusRing")->isVisible());
}

TEST_F(PanelWindowTest, APressByThePointerAfterKeysShowsNoFocus) {
    for (const char* way : {"button.showMemoryDetail", "button.showPerformanceDetail"}) {
        // The focus stands on another button, then on the one that is pressed.
        for (const char* at : {"button.refresh", way}) {
            SCOPED_TRACE(std::string(way) + " from " + at);
            open();
            while (focused() != at) {
                key(Qt::Key_Tab);
            }
            EXPECT_TRUE(find("focusRing")->isVisible());
            QTest::mouseClick(find(way), Qt::LeftButton);
            qt::settle();
            EXPECT_EQ(focused(), "button.goBack");
            EXPECT_FALSE(find("focusRing")->isVisible());
            window->close();
            qt::settle();
        }
    }
}

TEST_F(PanelWindowTest, NewFiguresLeaveTheFocusWhereItIs) {
    open();
    settle();
    find("button.quit")->setFocus(Qt::TabFocusReason);
    // Another block comes before it.
    manager->cpuInfo.set(testing::makeCPU(99, 4));
    manual.runMain();
    qt::settle();
    EXPECT_NE(find("topCPU"), nullptr);
    EXPECT_EQ(focused(), "button.quit");
    const QWidget* quit = find("button.quit");
    EXPECT_EQ(
        find("focusRing")->geometry().center(),
        QRect(quit->mapTo(find("focusRing")->parentWidget(), QPoint()), quit->size()).center());
}

TEST_F(PanelWindowTest, TabWalksThroughADetailPageBothWays) {
    open();
    click("button.showMemoryDetail");
    EXPECT_EQ(focused(), "button.goBack");
    key(Qt::Key_Tab);
    EXPECT_EQ(focused(), "button.refresh");
    key(Qt::Key_Tab);
    EXPECT_EQ(focused(), "button.goBack");
    key(Qt::Key_Backtab, Qt::ShiftModifier);
    EXPECT_EQ(focused(), "button.refresh");
    key(Qt::Key_Backtab, Qt::ShiftModifier);
    EXPECT_EQ(focused(), "button.goBack");
}

TEST_F(PanelWindowTest, ArrowsWalkThroughTheButtonsOfAPageThatFits) {
    QFont small = QApplication::font();
    const QFont old = small;
    small.setPointSizeF(4);
    QApplication::setFont(small);
    open();
    key(Qt::Key_Tab);
    key(Qt::Key_Down);
    EXPECT_EQ(focused(), "button.showMemoryDetail");
    key(Qt::Key_Up);
    EXPECT_EQ(focused(), "button.refresh");
    QApplication::setFont(old);
}

TEST_F(PanelWindowTest, ArrowsBeginTheWalkWhereNoButtonHasTheFocus) {
    QFont small = QApplication::font();
    const QFont old = small;
    small.setPointSizeF(4);
    QApplication::setFont(small);
    open();
    EXPECT_EQ(focused(), "panel");
    key(Qt::Key_Down);
    EXPECT_EQ(focused(), "button.refresh");
    EXPECT_TRUE(find("focusRing")->isVisible());
    QApplication::setFont(old);
}

TEST_F(PanelWindowTest, ARefreshWithTheSameFiguresPaintsNothing) {
    for (const char* way : {"", "button.showMemoryDetail", "button.showPerformanceDetail"}) {
        open();
        settle();
        if (*way != '\0') {
            click(way);
        }
        // The histories are full of the same figure.
        for (int tick = 0; tick < 40; ++tick) {
            manager->refreshNow();
            settle();
        }
        qt::settle();
        PaintCounter counter;
        takeCalls();
        manager->refreshNow();
        settle();
        qt::settle();
        EXPECT_GT(count("cpu"), 0U);
        EXPECT_THAT(counter.paints, ::testing::IsEmpty()) << way;
        window->close();
        qt::settle();
    }
}

TEST_F(PanelWindowTest, ANewFigureIsPaintedInItsBlockAlone) {
    open();
    settle();
    qt::settle();
    PaintCounter counter;
    manager->cpuInfo.set(testing::makeCPU(12, 4));
    manual.runMain();
    qt::settle();
    const QRect block = find("bar.cpu")->geometry();
    EXPECT_EQ(counter.paints["bar.cpu"], 1);
    // Below it lie the page, what it scrolls in and the panel.
    EXPECT_EQ(counter.paints.size(), 5U);
    for (const auto& [name, region] : counter.regions) {
        EXPECT_EQ(region.boundingRect().size(), block.size()) << name;
    }
}

TEST_F(PanelWindowTest, ANewFigureLeavesTheFocusRingAlone) {
    open();
    key(Qt::Key_Tab);
    settle();
    qt::settle();
    ASSERT_TRUE(find("focusRing")->isVisible());
    PaintCounter counter;
    manager->cpuInfo.set(testing::makeCPU(12, 4));
    manual.runMain();
    qt::settle();
    EXPECT_EQ(counter.paints["bar.cpu"], 1);
    EXPECT_EQ(counter.paints["focusRing"], 0);
}

TEST_F(PanelWindowTest, BarsMoveUnlessLessMotionIsAskedFor) {
    open();
    settle();
    manager->cpuInfo.set(testing::makeCPU(70, 4));
    manual.runMain();
    qt::settle();
    PaintCounter counter;
    manual.advance(Motion::kFrame);
    qt::settle();
    EXPECT_EQ(counter.paints["bar.cpu"], 1);

    window->setMotionReduced(true);
    manager->cpuInfo.set(testing::makeCPU(20, 4));
    manual.runMain();
    qt::settle();
    counter.clear();
    manual.advance(Motion::kFrame);
    qt::settle();
    EXPECT_EQ(counter.paints.count("bar.cpu"), 0U);
}

TEST_F(PanelWindowTest, NothingMovesOnceItIsClosed) {
    open();
    settle();
    const std::size_t before = manual.wakeUps();
    manager->cpuInfo.set(testing::makeCPU(70, 4));
    manual.runMain();
    window->close();
    qt::settle();
    manual.advance(1);
    EXPECT_EQ(manual.wakeUps(), before);
}

TEST_F(PanelWindowTest, RefreshAndQuitRun) {
    open();
    settle();
    takeCalls();
    popup()->findChild<QAbstractButton*>("button.refresh")->click();
    settle();
    EXPECT_EQ(count("health forced"), 1U);
    popup()->findChild<QAbstractButton*>("button.quit")->click();
    EXPECT_EQ(quits, 1);
}

TEST_F(PanelWindowTest, MayGoWhileOpen) {
    open();
    window.reset();
    EXPECT_EQ(popup(), nullptr);
    EXPECT_FALSE(manager->isPopoverVisible());
    manager->cpuInfo.set(testing::makeCPU(63, 4));
    manual.runMain();
}

TEST_F(PanelWindowTest, StaysInsideAScreenThatIsTooLowAndScrolls) {
    const QFont old = QApplication::font();
    QFont huge = old;
    huge.setPointSizeF(40);
    QApplication::setFont(huge);
    open();
    const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
    auto* scroller = popup()->findChild<QScrollArea*>();
    const QRect place(scroller->mapToGlobal(QPoint()), scroller->size());
    EXPECT_TRUE(screen.contains(place));
    QWidget* quit = popup()->findChild<QWidget*>("button.quit");
    EXPECT_GT(quit->mapToGlobal(QPoint()).y(), screen.bottom());
    scroller->ensureWidgetVisible(quit);
    EXPECT_TRUE(screen.contains(quit->mapToGlobal(quit->rect().center())));
    QApplication::setFont(old);
}

/// With fonts so large that no page fits on the screen.
class LargePanelWindowTest : public PanelWindowTest {
 protected:
    LargePanelWindowTest() {
        QFont huge = old;
        huge.setPointSizeF(50);
        QApplication::setFont(huge);
        open();
    }
    ~LargePanelWindowTest() override { QApplication::setFont(old); }
    static int offset() { return popup()->findChild<QScrollArea*>()->verticalScrollBar()->value(); }
    static int furthest() {
        return popup()->findChild<QScrollArea*>()->verticalScrollBar()->maximum();
    }

    QFont old = QApplication::font();
};

TEST_F(LargePanelWindowTest, TheFocusedButtonIsScrolledIntoView) {
    EXPECT_FALSE(isOnScreen(find("button.quit")));
    key(Qt::Key_Tab);
    for (const char* name : {"button.refresh", "button.showMemoryDetail",
                             "button.showPerformanceDetail", "button.quit"}) {
        EXPECT_EQ(focused(), name);
        EXPECT_TRUE(isOnScreen(find(name))) << name;
        EXPECT_TRUE(isOnScreen(find("focusRing"))) << name;
        key(Qt::Key_Tab);
    }
    EXPECT_EQ(focused(), "button.refresh");
    EXPECT_TRUE(isOnScreen(find("button.refresh")));
}

TEST_F(LargePanelWindowTest, AnotherPageBeginsAtItsTopAndGoingBackAtTheButtonOneCameFrom) {
    find("button.showPerformanceDetail")->setFocus(Qt::TabFocusReason);
    key(Qt::Key_End);
    ASSERT_GT(offset(), 0);
    key(Qt::Key_Return);
    EXPECT_EQ(offset(), 0);
    EXPECT_TRUE(isOnScreen(find("button.goBack")));
    key(Qt::Key_Escape);
    EXPECT_EQ(focused(), "button.showPerformanceDetail");
    EXPECT_TRUE(isOnScreen(find("button.showPerformanceDetail")));
    EXPECT_TRUE(isOnScreen(find("focusRing")));
}

TEST_F(LargePanelWindowTest, KeysScrollToWhatHasNoButton) {
    click("button.showMemoryDetail");
    ASSERT_GT(furthest(), 0);
    key(Qt::Key_Down);
    const int step = offset();
    EXPECT_GT(step, 0);
    key(Qt::Key_PageDown);
    EXPECT_GT(offset(), step);
    key(Qt::Key_End);
    EXPECT_EQ(offset(), furthest());
    EXPECT_TRUE(isOnScreen(find("topMemory.list")));
    key(Qt::Key_Up);
    EXPECT_LT(offset(), furthest());
    key(Qt::Key_PageUp);
    key(Qt::Key_Home);
    EXPECT_EQ(offset(), 0);
}

TEST_F(LargePanelWindowTest, TheWheelScrolls) {
    QWidget* viewport = popup()->findChild<QScrollArea*>()->viewport();
    const QPointF middle = viewport->rect().center();
    QWheelEvent wheel(middle, viewport->mapToGlobal(middle), QPoint(), QPoint(0, -120),
                      Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(viewport, &wheel);
    EXPECT_GT(offset(), 0);
}

TEST_F(LargePanelWindowTest, NewFiguresLeaveThePageWhereItIs) {
    settle();
    key(Qt::Key_End);
    const int before = offset();
    manager->cpuInfo.set(testing::makeCPU(63, 4));
    manual.runMain();
    qt::settle();
    EXPECT_EQ(offset(), before);
}

TEST(PanelPopup, IsCutToShapeWhereNothingIsTranslucent) {
    const Theme theme;
    const testing::PlainByteCountFormatter formatter;
    PanelPopup popup(
        theme, homePage(testing::calmMachine(), formatter), [](PanelAction) {}, PanelSurface::popUp,
        false);
    popup.popUp(QRect(400, 0, 1, 1));
    settle();
    EXPECT_EQ(popup.width(), 320);
    EXPECT_FALSE(popup.testAttribute(Qt::WA_TranslucentBackground));
    EXPECT_FALSE(popup.mask().contains(QPoint(0, 0)));
    EXPECT_FALSE(popup.mask().contains(QPoint(319, 0)));
    EXPECT_TRUE(popup.mask().contains(QPoint(160, 0)));
    EXPECT_TRUE(popup.mask().contains(QPoint(0, 100)));
}

TEST(Shadow, HasNoSeamsAtAnyScale) {
    for (const qreal ratio : {1.0, 1.25, 1.5, 1.75, 2.0}) {
        for (const int height : {200, 201, 202, 203}) {
            QImage image(qRound(300 * ratio), qRound(300 * ratio), QImage::Format_ARGB32);
            image.setDevicePixelRatio(ratio);
            image.fill(Qt::transparent);
            QPainter painter(&image);
            paintShadow(painter, QRect(50, 45, 201, height), 12, false);
            painter.end();
            const auto alpha = [&](int x, int y) { return qAlpha(image.pixel(x, y)); };
            const int beside = qRound(45 * ratio);
            const int below = qRound((45 + height + 6) * ratio);
            for (int i = qRound(70 * ratio); i < qRound(200 * ratio); ++i) {
                ASSERT_GT(alpha(beside, i), 0) << ratio << ' ' << height << ' ' << i;
                ASSERT_EQ(alpha(beside, i), alpha(beside, i - 1)) << ratio << ' ' << i;
                ASSERT_EQ(alpha(i, below), alpha(i - 1, below)) << ratio << ' ' << i;
            }
            // From the straight part into the corner it only fades.
            for (int i = qRound(200 * ratio); i < image.height(); ++i) {
                ASSERT_LE(alpha(beside, i), alpha(beside, i - 1)) << ratio << ' ' << height;
            }
        }
    }
}

TEST(PanelPopup, HasAShadowThatEndsInsideItsWindow) {
    const Theme theme;
    const testing::PlainByteCountFormatter formatter;
    PanelPopup popup(
        theme, homePage(testing::calmMachine(), formatter), [](PanelAction) {}, PanelSurface::popUp,
        true);
    popup.popUp(QRect(400, 0, 1, 1));
    settle();
    for (const int ratio : {1, 2}) {
        QImage image(popup.size() * ratio, QImage::Format_ARGB32_Premultiplied);
        image.setDevicePixelRatio(ratio);
        image.fill(Qt::transparent);
        popup.render(&image, QPoint(), QRegion(), QWidget::DrawChildren);
        const int middle = image.width() / 2;
        const int bottom = image.height() - 1;
        EXPECT_LE(qAlpha(image.pixel(0, image.height() / 2)), 1);
        EXPECT_LE(qAlpha(image.pixel(middle, 0)), 1);
        EXPECT_LE(qAlpha(image.pixel(middle, bottom)), 1);
        EXPECT_GT(qAlpha(image.pixel(middle, bottom - 24 * ratio)), 10);
        EXPECT_EQ(qAlpha(image.pixel(middle, image.height() / 2)), 255);
        // A smooth corner: neither all there nor all gone.
        const int corner = qAlpha(image.pixel(28 * ratio, 28 * ratio));
        EXPECT_GT(corner, 0);
        EXPECT_LT(corner, 200);
    }
}

}  // namespace
}  // namespace tarnwick::qt
