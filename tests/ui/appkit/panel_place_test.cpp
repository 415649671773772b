// SPDX-License-Identifier: MIT
#include "ui/appkit/panel_place.h"

#include <gtest/gtest.h>

namespace tarnwick::appkit {
namespace {

/// A notebook's screen: a menu bar of 24 points above, a Dock of 70 below.
constexpr ScreenFrame kVisible{.x = 0, .y = 70, .width = 1440, .height = 806};

ScreenFrame itemAt(double x, double width = 24) {
    return {.x = x, .y = 876, .width = width, .height = 24};
}

TEST(PanelPlace, IsCentredUnderTheItem) {
    const PanelPlace place = panelPlace(itemAt(700, 80), kVisible);
    EXPECT_EQ(place.x, 700 + 40 - 160);
    EXPECT_EQ(place.top, 876 - 4);
    EXPECT_EQ(place.room, 872 - 74);
}

TEST(PanelPlace, StaysOnTheScreen) {
    EXPECT_EQ(panelPlace(itemAt(1410), kVisible).x, 1440 - 4 - 320);
    EXPECT_EQ(panelPlace(itemAt(0), kVisible).x, 4);
    // Left of and below the main screen.
    const ScreenFrame second{.x = -1920, .y = -200, .width = 1920, .height = 1055};
    const PanelPlace place =
        panelPlace(ScreenFrame{.x = -30, .y = 855, .width = 24, .height = 24}, second);
    EXPECT_EQ(place.x, -4 - 320);
    EXPECT_EQ(place.top, 851);
    EXPECT_EQ(place.room, 851 + 196);
}

TEST(PanelPlace, IsTheUpperRightCornerWithoutAnItem) {
    const PanelPlace place = panelPlace(std::nullopt, kVisible);
    EXPECT_EQ(place.x, 1440 - 4 - 320);
    EXPECT_EQ(place.top, 876 - 4);
}

TEST(PanelPlace, KeepsToTheLeftOfAScreenThatIsTooNarrow) {
    EXPECT_EQ(panelPlace(itemAt(100), {.x = 0, .y = 0, .width = 300, .height = 900}).x, 4);
}

TEST(PanelPlace, IsAsHighAsThePageOrAsTheScreenAllows) {
    const PanelPlace place = panelPlace(itemAt(700), kVisible);
    EXPECT_EQ(place.heightOf(540), 540);
    EXPECT_EQ(place.heightOf(1200), 798);
    // An item below what is visible leaves no room, and no negative one.
    EXPECT_EQ(panelPlace(ScreenFrame{.x = 0, .y = 60, .width = 24, .height = 24}, kVisible).room,
              0);
}

}  // namespace
}  // namespace tarnwick::appkit
