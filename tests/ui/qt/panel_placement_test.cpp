// SPDX-License-Identifier: MIT
#include "ui/qt/panel_placement.h"

#include <gtest/gtest.h>

namespace tarnwick::qt {
namespace {

constexpr QSize kPanel(320, 500);
constexpr QRect kScreen(0, 0, 1920, 1080);
/// A bar of 30 at the top.
constexpr QRect kBelowTheBar(0, 30, 1920, 1050);

TEST(PanelPlacement, OpensCentredUnderTheItem) {
    EXPECT_EQ(panelPlacement(kPanel, QRect(1000, 4, 22, 22), kScreen, kBelowTheBar),
              QRect(851, 36, 320, 500));
}

TEST(PanelPlacement, StaysBelowATallBar) {
    EXPECT_EQ(panelPlacement(kPanel, QRect(1000, 4, 1, 1), kScreen, kBelowTheBar).top(), 36);
}

TEST(PanelPlacement, OpensAboveABarAtTheBottom) {
    const QRect aboveTheBar(0, 0, 1920, 1050);
    const QRect panel = panelPlacement(kPanel, QRect(1000, 1052, 22, 22), kScreen, aboveTheBar);
    EXPECT_EQ(panel.top() + panel.height(), 1044);
    EXPECT_EQ(panel.left(), 851);
}

TEST(PanelPlacement, StaysInsideAtTheEdges) {
    EXPECT_EQ(panelPlacement(kPanel, QRect(1900, 4, 20, 22), kScreen, kBelowTheBar).left(), 1594);
    EXPECT_EQ(panelPlacement(kPanel, QRect(0, 4, 20, 22), kScreen, kBelowTheBar).left(), 6);
}

TEST(PanelPlacement, StaysInsideBesideAVerticalBar) {
    const QRect rightOfTheBar(48, 0, 1872, 1080);
    const QRect panel = panelPlacement(kPanel, QRect(10, 1000, 22, 22), kScreen, rightOfTheBar);
    EXPECT_EQ(panel.left(), 54);
    EXPECT_TRUE(rightOfTheBar.contains(panel));
}

TEST(PanelReplacement, KeepsTheEdgeBesideTheItem) {
    const QRect top(1000, 4, 22, 22);
    const QRect below = panelPlacement(kPanel, top, kScreen, kBelowTheBar);
    EXPECT_EQ(panelReplacement(below, QSize(320, 700), top, kScreen, kBelowTheBar),
              QRect(851, 36, 320, 700));
    const QRect bottom(1000, 1052, 22, 22);
    const QRect aboveTheBar(0, 0, 1920, 1050);
    const QRect above = panelPlacement(kPanel, bottom, kScreen, aboveTheBar);
    EXPECT_EQ(panelReplacement(above, QSize(320, 300), bottom, kScreen, aboveTheBar),
              QRect(851, 744, 320, 300));
}

TEST(PanelReplacement, MovesAPanelThatNoLongerFitsAndThenLeavesItThere) {
    const QRect item(1000, 500, 22, 22);
    const QRect first = panelPlacement(kPanel, item, kScreen, kBelowTheBar);
    EXPECT_EQ(first.top(), 528);
    const QRect grown = panelReplacement(first, QSize(320, 800), item, kScreen, kBelowTheBar);
    EXPECT_EQ(grown, QRect(851, 274, 320, 800));
    EXPECT_EQ(panelReplacement(grown, kPanel, item, kScreen, kBelowTheBar),
              QRect(851, 274, 320, 500));

    const QRect lower(1000, 600, 22, 22);
    const QRect above = panelPlacement(kPanel, lower, kScreen, kBelowTheBar);
    const QRect higher = panelReplacement(above, QSize(320, 800), lower, kScreen, kBelowTheBar);
    EXPECT_EQ(higher, QRect(851, 36, 320, 800));
    EXPECT_EQ(panelReplacement(higher, kPanel, lower, kScreen, kBelowTheBar),
              QRect(851, 336, 320, 500));
}

TEST(PanelPlacement, StaysOnTheScreenOfTheItem) {
    const QRect right(1920, 0, 1280, 1024);
    const QRect panel = panelPlacement(kPanel, QRect(1925, 2, 22, 22), right, right);
    EXPECT_TRUE(right.contains(panel));
}

TEST(PanelPlacement, APanelTooLargeKeepsItsUpperLeftCorner) {
    EXPECT_EQ(
        panelPlacement(QSize(320, 2000), QRect(1000, 1060, 22, 22), kScreen, kBelowTheBar).top(),
        36);
    EXPECT_EQ(panelPlacement(kPanel, QRect(5, 5, 1, 1), kScreen, QRect(10, 30, 200, 400)).topLeft(),
              QPoint(16, 36));
}

// A screen from its corner, and how much of it bars leave.
constexpr QSize kWhole(1920, 1080);
constexpr QSize kWithoutRow(1920, 1050);
constexpr QSize kWithoutColumn(1872, 1080);

TEST(PanelInWorkArea, HangsFromTheEdgeOfTheItemsBar) {
    EXPECT_EQ(panelInWorkArea(kPanel, QPoint(1000, 15), kWhole, kWithoutRow),
              QRect(840, 6, 320, 500));
    EXPECT_EQ(panelInWorkArea(kPanel, QPoint(1000, 1065), kWhole, kWithoutRow),
              QRect(840, 544, 320, 500));
    // No bar keeps room: one that hides itself.
    EXPECT_EQ(panelInWorkArea(kPanel, QPoint(1000, 15), kWhole, kWhole), QRect(840, 6, 320, 500));
    EXPECT_EQ(panelInWorkArea(kPanel, QPoint(1000, 1079), kWhole, kWhole),
              QRect(840, 574, 320, 500));
}

TEST(PanelInWorkArea, StaysInsideAtTheEdges) {
    EXPECT_EQ(panelInWorkArea(kPanel, QPoint(1910, 15), kWhole, kWithoutRow).left(), 1594);
    EXPECT_EQ(panelInWorkArea(kPanel, QPoint(1, 15), kWhole, kWithoutRow).left(), 6);
}

TEST(PanelInWorkArea, IsBesideABarAtTheSideAtTheItemsHeight) {
    EXPECT_EQ(panelInWorkArea(kPanel, QPoint(20, 200), kWhole, kWithoutColumn),
              QRect(6, 200, 320, 500));
    EXPECT_EQ(panelInWorkArea(kPanel, QPoint(20, 900), kWhole, kWithoutColumn),
              QRect(6, 400, 320, 500));
    EXPECT_EQ(panelInWorkArea(kPanel, QPoint(1900, 1070), kWhole, kWithoutColumn),
              QRect(1546, 570, 320, 500));
    EXPECT_EQ(panelInWorkArea(kPanel, QPoint(1900, 2), kWhole, kWithoutColumn),
              QRect(1546, 6, 320, 500));
}

TEST(PanelInWorkArea, HangsFromTheRowWhereThereIsABarAtTheSideToo) {
    const QSize both(1872, 1050);
    EXPECT_EQ(panelInWorkArea(kPanel, QPoint(1900, 15), kWhole, both), QRect(1546, 6, 320, 500));
    EXPECT_EQ(panelInWorkArea(kPanel, QPoint(20, 15), kWhole, both), QRect(6, 6, 320, 500));
}

TEST(PanelInWorkArea, KeepsItsEdgeWhenItsHeightChanges) {
    for (const int height : {300, 500, 900}) {
        const QSize panel(320, height);
        EXPECT_EQ(panelInWorkArea(panel, QPoint(1000, 15), kWhole, kWithoutRow).top(), 6);
        EXPECT_EQ(panelInWorkArea(panel, QPoint(1000, 1065), kWhole, kWithoutRow).bottom(), 1043);
    }
}

TEST(PanelInWorkArea, TooLargeKeepsItsUpperLeftCorner) {
    EXPECT_EQ(panelInWorkArea(kPanel, QPoint(250, 390), QSize(300, 400), QSize(300, 400)).topLeft(),
              QPoint(6, 6));
}

TEST(PanelInWorkArea, ComesWithAnyWorkArea) {
    // Such as one that is larger than the screen that the program knows of.
    EXPECT_EQ(panelInWorkArea(kPanel, QPoint(1000, 15), QSize(1280, 800), kWhole),
              QRect(840, 6, 320, 500));
    EXPECT_EQ(panelInWorkArea(kPanel, QPoint(-5, -5), kWhole, QSize(0, 0)).topLeft(), QPoint(6, 6));
}

TEST(CornerAnchor, IsAtTheUpperRightUnderTheBar) {
    EXPECT_EQ(cornerAnchor(kScreen, kBelowTheBar), QRect(1919, 30, 1, 1));
    EXPECT_EQ(cornerAnchor(kScreen, kScreen), QRect(1919, 0, 1, 1));
}

TEST(CornerAnchor, IsAtTheLowerRightWhereTheOnlyBarIsAtTheBottom) {
    EXPECT_EQ(cornerAnchor(kScreen, QRect(0, 0, 1920, 1040)), QRect(1919, 1039, 1, 1));
    EXPECT_EQ(cornerAnchor(kScreen, QRect(0, 30, 1920, 1010)), QRect(1919, 30, 1, 1));
}

TEST(CornerAnchor, IsWhereBarsUsuallyAreWhileNoneIsKnown) {
    EXPECT_EQ(cornerAnchor(kScreen, kScreen, true), QRect(1919, 1079, 1, 1));
    EXPECT_EQ(cornerAnchor(kScreen, kBelowTheBar, true), QRect(1919, 30, 1, 1));
}

TEST(CornerAnchor, OpensThePanelAboveTheBar) {
    const QRect available(0, 0, 1920, 1040);
    const QRect panel =
        panelPlacement(kPanel, cornerAnchor(kScreen, available), kScreen, available);
    EXPECT_EQ(panel.left() + panel.width(), 1914);
    EXPECT_EQ(panel.top() + panel.height(), 1033);
}

}  // namespace
}  // namespace tarnwick::qt
