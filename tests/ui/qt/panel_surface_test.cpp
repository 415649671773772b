// SPDX-License-Identifier: MIT
#include "ui/qt/panel_surface.h"

#include <QMouseEvent>
#include <QScrollArea>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "tests/ui/panel/home_fixtures.h"
#include "tests/ui/qt/settle.h"
#include "ui/panel/home_page.h"
#include "ui/qt/panel_placement.h"
#include "ui/qt/panel_popup.h"

namespace tarnwick::qt {
namespace {

constexpr bool kWithLibrary = true;

TEST(PanelSurface, IsAPopUpWithoutACompositor) {
    EXPECT_EQ(panelSurface("xcb", {}, kWithLibrary), PanelSurface::popUp);
    EXPECT_EQ(panelSurface("offscreen", {}, kWithLibrary), PanelSurface::popUp);
    EXPECT_EQ(panelSurface("xcb", {"zwlr_layer_shell_v1"}, kWithLibrary), PanelSurface::popUp);
}

TEST(PanelSurface, IsALayerWhereTheCompositorAndTheBuildHaveThem) {
    const std::vector<std::string> layers = {"wl_seat", "zwlr_layer_shell_v1", "xdg_wm_base"};
    EXPECT_EQ(panelSurface("wayland", layers, kWithLibrary), PanelSurface::layer);
    EXPECT_EQ(panelSurface("wayland-egl", layers, kWithLibrary), PanelSurface::layer);
    EXPECT_EQ(panelSurface("wayland", layers, !kWithLibrary), PanelSurface::window);
}

TEST(PanelSurface, IsAMaximizedWindowUnderMutterAlone) {
    EXPECT_EQ(panelSurface("wayland", {"xdg_wm_base", "gtk_shell1"}, kWithLibrary),
              PanelSurface::maximized);
    EXPECT_EQ(panelSurface("wayland", {"xdg_wm_base", "gtk_shell1"}, !kWithLibrary),
              PanelSurface::maximized);
    // Another compositor with that protocol may tile.
    EXPECT_EQ(panelSurface("wayland", {"gtk_shell1", "zwlr_layer_shell_v1"}, !kWithLibrary),
              PanelSurface::window);
}

TEST(PanelSurface, IsAWindowUnderAnyOtherCompositor) {
    EXPECT_EQ(panelSurface("wayland", {"xdg_wm_base"}, kWithLibrary), PanelSurface::window);
    EXPECT_EQ(panelSurface("wayland", {}, kWithLibrary), PanelSurface::window);
}

/// The panel in a transparent window over the work area.
class PanelOverWorkArea : public ::testing::Test {
 protected:
    PanelOverWorkArea()
        : popup(
              theme, homePage(testing::calmMachine(), formatter), [](PanelAction) {},
              PanelSurface::maximized, false) {
        popup.popUp(anchor);
        settle();
    }
    QRect panel() const { return popup.findChild<QScrollArea*>()->geometry(); }
    void pressAt(const QPoint& place) {
        for (const auto type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease}) {
            QMouseEvent event(type, place, popup.mapToGlobal(place), Qt::LeftButton,
                              type == QEvent::MouseButtonPress ? Qt::LeftButton : Qt::NoButton,
                              Qt::NoModifier);
            QApplication::sendEvent(&popup, &event);
        }
        settle();
    }

    Theme theme;
    testing::PlainByteCountFormatter formatter;
    const QRect anchor{300, 2, 1, 1};
    PanelPopup popup;
};

TEST_F(PanelOverWorkArea, IsATransparentWindowAsLargeAsTheCompositorMakesIt) {
    EXPECT_EQ(popup.windowType(), Qt::Window);
    EXPECT_TRUE(popup.testAttribute(Qt::WA_TranslucentBackground));
    EXPECT_TRUE(popup.isMaximized());
    EXPECT_EQ(popup.size(), popup.screen()->availableSize());
    EXPECT_TRUE(popup.mask().isEmpty());
}

TEST_F(PanelOverWorkArea, HangsUnderTheItem) {
    EXPECT_EQ(panel().center().x(), anchor.x() - 1);
    EXPECT_EQ(panel().top(), kScreenMargin);
}

TEST_F(PanelOverWorkArea, FollowsTheSizeOfTheWorkArea) {
    popup.resize(780, 300);
    settle();
    EXPECT_EQ(panel(), QRect(anchor.x() - 160, kScreenMargin, 320, 300 - 2 * kScreenMargin));
}

TEST_F(PanelOverWorkArea, IsClosedByAPressOutsideThePanelOnly) {
    pressAt(panel().topLeft() + QPoint(4, 4));
    EXPECT_TRUE(popup.isVisible());
    pressAt(panel().bottomRight() + QPoint(10, -10));
    EXPECT_FALSE(popup.isVisible());
    EXPECT_TRUE(popup.wasDismissedByPress());
}

TEST_F(PanelOverWorkArea, IsHiddenWhenTheCompositorClosesIt) {
    int hidden = 0;
    QObject::connect(&popup, &PanelPopup::hidden, [&] { ++hidden; });
    popup.windowHandle()->close();
    settle();
    EXPECT_FALSE(popup.isVisible());
    EXPECT_EQ(hidden, 1);
}

}  // namespace
}  // namespace tarnwick::qt
