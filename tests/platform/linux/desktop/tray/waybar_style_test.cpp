// SPDX-License-Identifier: MIT
#include "platform/linux/desktop/tray/waybar_style.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <map>
#include <string>

namespace tarnwick::platform {
namespace {

using Light = std::optional<bool>;

TEST(WaybarStyle, OfTheTraysTextComesBeforeThatOfTheBar) {
    EXPECT_EQ(wantsLightText("window#waybar { color: #ffffff; }"), Light(true));
    EXPECT_EQ(wantsLightText("window#waybar { color: #ffffff; } #tray { color: black; }"),
              Light(false));
    EXPECT_EQ(wantsLightText("* { color: rgb(20, 20, 20); }"), Light(false));
    EXPECT_EQ(wantsLightText("#clock,\n#tray ,\n#mode { margin: 0; color:rgba(250,250,250,0.9) }"),
              Light(true));
}

TEST(WaybarStyle, IsToldByTheGroundWhereNoTextHasAColour) {
    EXPECT_EQ(wantsLightText("window#waybar { background: #e8e8ec; }"), Light(false));
    EXPECT_EQ(wantsLightText("window#waybar { background-color: rgba(43, 48, 59, 0.5); }"),
              Light(true));
    // The ground of the bar shows through.
    EXPECT_EQ(wantsLightText("#tray { background: rgba(0,0,0,0); } window#waybar { background: "
                             "white }"),
              Light(false));
}

TEST(WaybarStyle, PassesOverCommentsAndWhatIsNotTheBar) {
    EXPECT_EQ(
        wantsLightText("/* window#waybar { color: black; } */ window#waybar { color: white }"),
        Light(true));
    EXPECT_EQ(wantsLightText("window#waybar.solo { background-color: #FFFFFF; } #clock { color: "
                             "#000 }"),
              Light());
    EXPECT_EQ(wantsLightText("window#waybar { border-color: #fff; background-color: #000; }"),
              Light(true));
}

TEST(WaybarStyle, IsUnknownWhereNothingCanBeRead) {
    for (const char* sheet : {"", "window#waybar { color: @text; }", "window#waybar { color: ; }",
                              "window#waybar { color: #12; background: url(\"a\") }", "}{", "{{{{",
                              "window#waybar { color: rgba(300,2"}) {
        EXPECT_EQ(wantsLightText(sheet), Light()) << sheet;
    }
}

TEST(WaybarStyle, IsReadWhereWaybarReadsIt) {
    const QTemporaryDir folder;
    const auto write = [&](const QString& name, const char* text) {
        ASSERT_TRUE(QDir(folder.path()).mkpath(QFileInfo(name).path()));
        QFile file(folder.filePath(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(text);
    };
    write("home/.config/waybar/style.css", "of the home");
    write("config/waybar/style.css", "of the configuration");
    std::map<std::string, std::string> variables = {
        {"HOME", folder.filePath("home").toStdString()}};
    const auto environment = [&](const char* name) -> const char* {
        const auto found = variables.find(name);
        return found == variables.end() ? nullptr : found->second.c_str();
    };
    EXPECT_EQ(styleSheet(waybarStyleFiles(environment)), "of the home");
    variables["XDG_CONFIG_HOME"] = folder.filePath("config").toStdString();
    EXPECT_EQ(styleSheet(waybarStyleFiles(environment)), "of the configuration");
}

}  // namespace
}  // namespace tarnwick::platform
