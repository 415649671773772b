// SPDX-License-Identifier: MIT
#include "platform/linux/desktop/keyboard/key_names.h"

#include <gtest/gtest.h>

namespace tarnwick::platform {
namespace {

TEST(KeyNames, MeanTheSameInTheWordsOfEachDesktop) {
    const QStringList keys{"l", "logo", "shift"};
    for (const char* text : {"SHIFT+LOGO+l", "Meta+Shift+L", "Press <Shift><Super>l",
                             "<Super><Shift>l", " Shift+Super+L "}) {
        EXPECT_EQ(keyParts(text), keys) << text;
    }
    EXPECT_EQ(keyParts("CTRL+ALT+F5"), keyParts("Press <Control><Alt>F5"));
    EXPECT_EQ(keyParts("<Primary>x"), keyParts("Ctrl+X"));
    EXPECT_NE(keyParts("SHIFT+LOGO+k"), keys);
    EXPECT_NE(keyParts("LOGO+l"), keys);
    EXPECT_EQ(keyParts(""), QStringList());
}

TEST(KeyNames, ArePlainWithoutTheMarksOfGnome) {
    EXPECT_EQ(plainKeys("Press <Shift><Super>l"), "Shift+Super+L");
    EXPECT_EQ(plainKeys("<Super>comma"), "Super+comma");
    EXPECT_EQ(plainKeys(" Umschalt+Meta+L"), "Umschalt+Meta+L");
    EXPECT_EQ(plainKeys("<>"), "<>");
    EXPECT_EQ(plainKeys(""), "");
}

TEST(KeyNames, AreFoundAmongThoseThatGnomeHasForItself) {
    const QByteArray settings =
        "org.gnome.Terminal.Legacy.Keybindings new-tab '<Super>t'\n"
        "org.cinnamon.desktop.keybindings looking-glass-keybinding ['<Super>g']\n"
        "org.gnome.desktop.wm.keybindings close ['<Alt>F4']\n"
        "org.gnome.settings-daemon.plugins.media-keys screensaver ['<Super>l']\n"
        "org.gnome.shell.keybindings open-application-menu @as []\n"
        "org.gnome.mutter.keybindings switch-monitor ['<Super>p', 'XF86Display']\n"
        "org.gnome.mutter.wayland.keybindings restore-shortcuts ['<Super>Escape']";
    for (const char* held : {"LOGO+l", "ALT+F4", "LOGO+p", "LOGO+Escape"}) {
        EXPECT_TRUE(isOfGnome(settings, keyParts(held))) << held;
    }
    for (const char* free : {"SHIFT+LOGO+l", "LOGO+t", "LOGO+g", "LOGO+k", ""}) {
        EXPECT_FALSE(isOfGnome(settings, keyParts(free))) << free;
    }
    EXPECT_FALSE(isOfGnome("", keyParts("LOGO+l")));
}

}  // namespace
}  // namespace tarnwick::platform
