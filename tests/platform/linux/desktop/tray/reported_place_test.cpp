// SPDX-License-Identifier: MIT
#include "platform/linux/desktop/tray/reported_place.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace tarnwick::platform {
namespace {

using Point = std::optional<QPoint>;

const std::vector<ReportedScreen> kOne = {{QRect(0, 0, 1280, 800), 1}};
const std::vector<ReportedScreen> kTwo = {{QRect(0, 0, 1280, 800), 1},
                                          {QRect(1280, 0, 1920, 1080), 1}};

TEST(ReportedPlace, IsTheScreensPointForMostHosts) {
    for (const char* host : {"gnome-shell", "budgie-panel", "", "one that nobody knows"}) {
        EXPECT_EQ(reportedPoint(QPoint(1200, 15), host, kOne), Point(QPoint(1200, 15))) << host;
        EXPECT_EQ(reportedPoint(QPoint(3000, 1070), host, kTwo), Point(QPoint(3000, 1070))) << host;
    }
}

TEST(ReportedPlace, IsAbsentWhereAHostReportsNone) {
    for (const char* host : {"gnome-shell", "kded6", "waybar", ""}) {
        EXPECT_EQ(reportedPoint(QPoint(), host, kOne), Point()) << host;
        EXPECT_EQ(reportedPoint(QPoint(1200, 15), host, {}), Point()) << host;
    }
}

TEST(ReportedPlace, IsAbsentOutsideAllScreens) {
    for (const char* host : {"gnome-shell", "kded6", "waybar", ""}) {
        for (const QPoint& place : {QPoint(-1, 15), QPoint(1280, 15), QPoint(1200, 800),
                                    QPoint(2147483647, -2147483647)}) {
            EXPECT_EQ(reportedPoint(place, host, kOne), Point()) << host;
        }
    }
}

TEST(ReportedPlace, OfWaybarCountsFromTheFirstOutput) {
    EXPECT_EQ(reportedPoint(QPoint(1200, 15), "waybar", kTwo), Point(QPoint(1200, 15)));
    EXPECT_EQ(reportedPoint(QPoint(1800, 15), "waybar", kTwo), Point(QPoint(1800, 15)));
}

TEST(ReportedPlace, OfPlasmaIsInPixels) {
    for (const double scale : {1.0, 1.25, 1.5, 2.0}) {
        const std::vector<ReportedScreen> screens = {{QRect(0, 0, 1280, 800), scale}};
        const QPoint reported = (QPointF(1100, 780) * scale).toPoint();
        for (const char* host : {"kded6", "kded5", "plasmashell"}) {
            EXPECT_EQ(reportedPoint(reported, host, screens), Point(QPoint(1100, 780))) << scale;
        }
    }
}

TEST(ReportedPlace, OfPlasmaIsInPointsWhereOnlyThatIsInABar) {
    const std::vector<ReportedScreen> screens = {{QRect(0, 0, 1280, 800), 1.5}};
    EXPECT_EQ(reportedPoint(QPoint(1100, 780), "kded6", screens), Point(QPoint(1100, 780)));
    // In pixels it would be in the middle of the screen, too: the list of hidden items.
    EXPECT_EQ(reportedPoint(QPoint(900, 600), "kded6", screens), Point(QPoint(600, 400)));
}

TEST(ReportedPlace, OfPlasmaIsOnTheScreenWhoseBarItIsIn) {
    const std::vector<ReportedScreen> screens = {{QRect(0, 0, 1280, 800), 2},
                                                 {QRect(1280, 0, 1920, 1080), 1}};
    EXPECT_EQ(reportedPoint(QPoint(2200, 1580), "kded6", screens), Point(QPoint(1100, 790)));
    EXPECT_EQ(reportedPoint(QPoint(3000, 1070), "kded6", screens), Point(QPoint(3000, 1070)));
}

TEST(ReportedPlace, ThatIsNotKnownIsAtTheBottomOnPlasmaAlone) {
    EXPECT_TRUE(isUsuallyAtTheBottom("kded6"));
    EXPECT_FALSE(isUsuallyAtTheBottom("gnome-shell"));
    EXPECT_FALSE(isUsuallyAtTheBottom("waybar"));
    EXPECT_FALSE(isUsuallyAtTheBottom(""));
}

}  // namespace
}  // namespace tarnwick::platform
