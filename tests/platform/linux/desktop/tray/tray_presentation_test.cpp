// SPDX-License-Identifier: MIT
#include "platform/linux/desktop/tray/tray_presentation.h"

#include <gtest/gtest.h>
#include <string>

namespace tarnwick::platform {
namespace {

TEST(TrayPresentation, IsAWidePictureWhereOneIsDrawnWhole) {
    EXPECT_EQ(trayPresentation("waybar").text, TextPlace::picture);
    EXPECT_GT(trayPresentation("waybar").pictureHeight, 0);
    EXPECT_EQ(trayPresentation("notification-area-applet").text, TextPlace::picture);
    EXPECT_EQ(trayPresentation("notification-area-applet").pictureHeight, 22);
}

TEST(TrayPresentation, IsALabelWhereLabelsShowBesideTheIcon) {
    EXPECT_EQ(trayPresentation("gnome-shell").text, TextPlace::label);
    EXPECT_FALSE(trayPresentation("gnome-shell").iconFromFile);
    const TrayPresentation ayatana = trayPresentation("ayatana-indicator-application-service");
    EXPECT_EQ(ayatana.text, TextPlace::label);
    EXPECT_TRUE(ayatana.iconFromFile);
}

class SquareHost : public ::testing::TestWithParam<std::string> {};

TEST_P(SquareHost, GetsASquareIconAndTheTextInTheToolTip) {
    EXPECT_EQ(trayPresentation(GetParam()).text, TextPlace::toolTip);
    EXPECT_EQ(trayPresentation(GetParam()).pictureHeight, 0);
    EXPECT_FALSE(trayPresentation(GetParam()).iconFromFile);
}

INSTANTIATE_TEST_SUITE_P(Programs, SquareHost,
                         ::testing::Values("xfce4-panel", "wrapper-2.0", "lxqt-panel",
                                           "plasmashell", "kded5", "swaybar", "python3", "Waybar",
                                           ""));

TEST(TrayPresentation, AsksForAttentionOnlyWhereThatMarksTheItem) {
    for (const char* host : {"kded5", "kded6"}) {
        EXPECT_TRUE(trayPresentation(host).marksAttention) << host;
    }
    for (const char* host : {"gnome-shell", "xfce4-panel", "wrapper-2.0", "lxqt-panel",
                             "budgie-panel", "waybar", "notification-area-applet", ""}) {
        EXPECT_FALSE(trayPresentation(host).marksAttention) << host;
    }
}

TEST(TrayPresentation, SavesSignalsOnlyOnHostsKnownToFetchTheRest) {
    EXPECT_EQ(trayPresentation("wrapper-2.0").fetches, HostFetches::everything);
    EXPECT_EQ(trayPresentation("xfce4-panel").fetches, HostFetches::everything);
    EXPECT_EQ(trayPresentation("waybar").fetches, HostFetches::namedButTitle);
    EXPECT_EQ(trayPresentation("lxqt-panel").fetches, HostFetches::namedButTitle);
    EXPECT_EQ(trayPresentation("notification-area-applet").fetches, HostFetches::namedButTitle);
    EXPECT_EQ(trayPresentation("plasmashell").fetches, HostFetches::named);
    EXPECT_EQ(trayPresentation("anything else").fetches, HostFetches::named);
}

}  // namespace
}  // namespace tarnwick::platform
