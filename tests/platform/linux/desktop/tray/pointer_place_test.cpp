// SPDX-License-Identifier: MIT
#include "platform/linux/desktop/tray/pointer_place.h"

#include <gtest/gtest.h>

namespace tarnwick::platform {
namespace {

TEST(PointerPlace, IsAsHighAsABarAlongTheTop) {
    EXPECT_EQ(placeInWindow(QPoint(1100, 12), QRect(0, 0, 1280, 30)), QRect(1100, 0, 1, 30));
}

TEST(PointerPlace, IsAsHighAsABarOnAnotherScreen) {
    EXPECT_EQ(placeInWindow(QPoint(900, 795), QRect(640, 768, 640, 32)), QRect(900, 768, 1, 32));
}

TEST(PointerPlace, IsAsHighAsABarThatIsHardlyLongerThanItsIcons) {
    EXPECT_EQ(placeInWindow(QPoint(1240, 12), QRect(1216, 0, 64, 32)), QRect(1240, 0, 1, 32));
    EXPECT_EQ(placeInWindow(QPoint(1240, 780), QRect(1180, 736, 100, 64)), QRect(1240, 736, 1, 64));
}

TEST(PointerPlace, IsThePointersOwnInWindowsOfOtherShapes) {
    const QRect pixel(100, 12, 1, 1);
    // A bar along the side, a menu, the desktop, an icon in a window of its own.
    EXPECT_EQ(placeInWindow(pixel.topLeft(), QRect(80, 0, 40, 800)), pixel);
    EXPECT_EQ(placeInWindow(pixel.topLeft(), QRect(90, 10, 200, 120)), pixel);
    EXPECT_EQ(placeInWindow(pixel.topLeft(), QRect(90, 10, 100, 65)), pixel);
    EXPECT_EQ(placeInWindow(pixel.topLeft(), QRect(0, 0, 1280, 800)), pixel);
    EXPECT_EQ(placeInWindow(pixel.topLeft(), QRect(90, 2, 22, 22)), pixel);
}

TEST(PointerPlace, IsThePointersOwnWhenTheWindowHasGoneFromUnderIt) {
    EXPECT_EQ(placeInWindow(QPoint(100, 50), QRect(0, 0, 1280, 30)), QRect(100, 50, 1, 1));
}

TEST(PointerPlace, IsNotKnownWithoutAnXServer) {
    EXPECT_EQ(placeUnderPointer(), std::nullopt);
}

}  // namespace
}  // namespace tarnwick::platform
