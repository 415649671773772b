#include "platform/linux/settings/autostart_entry.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "platform/linux/applications/desktop_entry.h"

namespace tarnwick::platform {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

AutostartEntry parsed(const std::string& lines) {
    const auto entry = parseAutostartEntry("[Desktop Entry]\nType=Application\n" + lines);
    EXPECT_TRUE(entry) << lines;
    return entry.value_or(AutostartEntry());
}

std::string programOf(const std::string& execValue) {
    return parsed("Exec=" + execValue + "\n").program;
}

std::string execOf(const std::vector<std::string>& command) {
    const std::string text = autostartEntryText(command).value_or("");
    return std::string(desktopEntryValue(text, "Exec").value_or("(none)"));
}

bool isMeant(const std::string& lines, const std::string& current) {
    return isMeantFor(parsed(lines), current);
}

TEST(AutostartEntry, IsAnApplicationAndNothingElse) {
    EXPECT_FALSE(parseAutostartEntry(""));
    EXPECT_FALSE(parseAutostartEntry("Type=Application\nExec=a\n"));
    EXPECT_FALSE(parseAutostartEntry("[Desktop Entry]\nExec=a\n"));
    EXPECT_FALSE(parseAutostartEntry("[Desktop Entry]\nType=Link\nURL=a\n"));
    EXPECT_FALSE(parseAutostartEntry("[Other]\nType=Application\nExec=a\n"));
    EXPECT_FALSE(parseAutostartEntry(std::string(64, '\0')));
    EXPECT_TRUE(parseAutostartEntry("[Desktop Entry]\nType=Application\n"));
}

TEST(AutostartEntry, IsOnUnlessItSaysOtherwise) {
    EXPECT_FALSE(parsed("").isOff);
    EXPECT_FALSE(parsed("Hidden=false\n").isOff);
    EXPECT_FALSE(parsed("X-GNOME-Autostart-enabled=true\n").isOffForSome);
    EXPECT_FALSE(parsed("X-GNOME-Autostart-enabled=\n").isOffForSome);
    EXPECT_FALSE(parsed("NoDisplay=true\n").isOff);
    EXPECT_FALSE(parsed("[Desktop Action x]\nHidden=true\n").isOff);
}

TEST(AutostartEntry, IsOffWhenItWasRemovedOrSwitchedOff) {
    EXPECT_TRUE(parsed("Hidden=true\n").isOff);
    EXPECT_TRUE(parsed("Hidden=1\n").isOff);
    EXPECT_TRUE(parsed("Hidden=true\nX-GNOME-Autostart-enabled=true\n").isOff);
    EXPECT_TRUE(isOffFor(parsed("Hidden=true\n"), ""));
    EXPECT_TRUE(isOffFor(parsed("Hidden=true\n"), "XFCE"));
}

TEST(AutostartEntry, IsSwitchedOffOnlyForDesktopsThatKnowHow) {
    for (const char* line :
         {"X-GNOME-Autostart-enabled=false\n", "X-GNOME-Autostart-enabled=0\n"}) {
        const AutostartEntry entry = parsed(line);
        EXPECT_FALSE(entry.isOff);
        EXPECT_TRUE(entry.isOffForSome);
        for (const char* reader : {"GNOME", "GNOME-Flashback:GNOME", "ubuntu:GNOME", "Unity",
                                   "Budgie", "Pantheon", "X-Cinnamon", "MATE"}) {
            EXPECT_TRUE(isOffFor(entry, reader)) << reader;
        }
        for (const char* other : {"", "XFCE", "KDE", "LXQt:XFCE", "gnome", "GNOMEX", ":"}) {
            EXPECT_FALSE(isOffFor(entry, other)) << other;
        }
    }
    EXPECT_FALSE(isOffFor(parsed(""), "GNOME"));
}

TEST(AutostartEntry, TellsOfConditions) {
    EXPECT_FALSE(parsed("").isConditional);
    EXPECT_FALSE(parsed("AutostartCondition=\nX-systemd-skip=false\n").isConditional);
    for (const char* line :
         {"AutostartCondition=if-exists x\n", "X-KDE-autostart-condition=a:b:c:true\n",
          "X-GNOME-Autostart-Phase=Panel\n", "X-systemd-skip=true\n"}) {
        EXPECT_TRUE(parsed(line).isConditional) << line;
    }
}

TEST(AutostartEntry, IsMeantForEveryDesktopUnlessItSaysOtherwise) {
    EXPECT_TRUE(isMeant("", ""));
    EXPECT_TRUE(isMeant("", "XFCE"));
    EXPECT_TRUE(isMeant("NotShowIn=KDE;GNOME;\n", "XFCE"));
    EXPECT_TRUE(isMeant("NotShowIn=KDE;GNOME;\n", ""));
    EXPECT_TRUE(isMeant("NotShowIn=\n", "XFCE"));
}

TEST(AutostartEntry, IsMeantForTheDesktopsThatItNames) {
    EXPECT_TRUE(isMeant("OnlyShowIn=XFCE;KDE\n", "XFCE"));
    EXPECT_TRUE(isMeant("OnlyShowIn=XFCE;KDE\n", "KDE"));
    EXPECT_FALSE(isMeant("OnlyShowIn=XFCE;KDE;\n", "GNOME"));
    EXPECT_FALSE(isMeant("OnlyShowIn=XFCE;\n", "XFCE4"));
    EXPECT_FALSE(isMeant("OnlyShowIn=XFCE;\n", "xfce"));
    EXPECT_FALSE(isMeant("OnlyShowIn=XFCE;\n", ""));
    EXPECT_FALSE(isMeant("OnlyShowIn=\n", "XFCE"));
}

TEST(AutostartEntry, IsNotMeantForTheDesktopsThatItExcludes) {
    EXPECT_FALSE(isMeant("NotShowIn=KDE;GNOME;\n", "GNOME"));
    EXPECT_FALSE(isMeant("NotShowIn=KDE\n", "KDE"));
}

TEST(AutostartEntry, TheFirstOfTheSessionsDesktopsThatIsNamedDecides) {
    EXPECT_TRUE(isMeant("OnlyShowIn=GNOME;\n", "Budgie:GNOME"));
    EXPECT_TRUE(isMeant("OnlyShowIn=GNOME;\nNotShowIn=Budgie;\n", "GNOME:Budgie"));
    EXPECT_FALSE(isMeant("OnlyShowIn=GNOME;\nNotShowIn=Budgie;\n", "Budgie:GNOME"));
    EXPECT_FALSE(isMeant("NotShowIn=GNOME;\n", "ubuntu::GNOME"));
}

TEST(AutostartEntry, NamesItsProgram) {
    EXPECT_EQ(programOf("tarnwick"), "tarnwick");
    EXPECT_EQ(programOf("/usr/bin/tarnwick --flag %u"), "/usr/bin/tarnwick");
    EXPECT_EQ(programOf("\"/opt/a b/tarnwick\" x"), "/opt/a b/tarnwick");
    EXPECT_EQ(programOf("\"/opt/100%%/tarnwick\""), "/opt/100%/tarnwick");
    EXPECT_EQ(programOf("/opt/100%%/tarnwick"), "/opt/100%/tarnwick");
    // What is in the file goes through the rules of values first.
    EXPECT_EQ(programOf(R"("/opt/a\\$b\\"c\\\\d\\`e/tarnwick")"), "/opt/a$b\"c\\d`e/tarnwick");
    EXPECT_EQ(programOf(R"("/opt/a\sb")"), "/opt/a b");
}

TEST(AutostartEntry, NamesNoProgramWhenTheLineIsDamaged) {
    EXPECT_EQ(parsed("").program, "");
    EXPECT_EQ(programOf(""), "");
    EXPECT_EQ(programOf("\"\""), "");
    EXPECT_EQ(programOf("\"/usr/bin/tarnwick"), "");
    EXPECT_EQ(programOf("%f"), "");
    EXPECT_EQ(programOf("/opt/%u/tarnwick"), "");
}

TEST(AutostartEntry, NamesTheProgramWithoutWhichItDoesNotCount) {
    EXPECT_EQ(parsed("TryExec=/opt/a b/x\n").tryExec, "/opt/a b/x");
    EXPECT_EQ(parsed("TryExec=/opt/a\\\\b\n").tryExec, "/opt/a\\b");
    EXPECT_EQ(parsed("").tryExec, "");
}

TEST(WrittenAutostartEntry, QuotesOnlyWhatHasToBeQuoted) {
    EXPECT_EQ(execOf({"/usr/bin/tarnwick"}), "/usr/bin/tarnwick");
    EXPECT_EQ(execOf({"flatpak", "run", "org.tarnwick.Tarnwick"}),
              "flatpak run org.tarnwick.Tarnwick");
    EXPECT_EQ(execOf({"/opt/a b/tarnwick"}), "\"/opt/a b/tarnwick\"");
    EXPECT_EQ(execOf({"/opt/100%/tarnwick"}), "/opt/100%%/tarnwick");
    EXPECT_EQ(execOf({"/opt/$HOME/tarnwick"}), R"("/opt/\\$HOME/tarnwick")");
    EXPECT_EQ(execOf({"/opt/a\"b"}), R"("/opt/a\\"b")");
    EXPECT_EQ(execOf({"/opt/a`b"}), R"("/opt/a\\`b")");
    EXPECT_EQ(execOf({"/opt/a\\b"}), R"("/opt/a\\\\b")");
    EXPECT_EQ(execOf({"/opt/it's"}), "\"/opt/it's\"");
    EXPECT_EQ(execOf({"/opt/x", ""}), "/opt/x \"\"");
}

TEST(WrittenAutostartEntry, NamesThisVeryProgramWhenItIsRead) {
    std::vector<std::string> paths = {"/usr/bin/tarnwick",   "/opt/grün/tarnwick",
                                      "/opt/%f %%/tarnwick", "/ leading",
                                      "/a\\\\b\\",           "/tab\tb"};
    for (const char special : std::string(" \t\n\r\"'\\><~|&;$*?#()`%")) {
        paths.push_back(std::string("/opt/a") + special + "b/tarnwick");
        paths.push_back(std::string("/opt/") + special + special + "/" + special);
    }
    for (const std::string& path : paths) {
        const auto text = autostartEntryText(std::vector{path});
        ASSERT_TRUE(text) << path;
        const auto entry = parseAutostartEntry(*text);
        ASSERT_TRUE(entry) << path;
        EXPECT_EQ(entry->program, path);
        EXPECT_EQ(entry->tryExec, path);
        EXPECT_FALSE(entry->isOff);
        EXPECT_TRUE(isMeantFor(*entry, "XFCE"));
        EXPECT_TRUE(isMeantFor(*entry, ""));
    }
}

TEST(WrittenAutostartEntry, CannotHoldEveryPath) {
    EXPECT_FALSE(autostartEntryText({}));
    EXPECT_FALSE(autostartEntryText(std::vector<std::string>{"/opt/a=b/tarnwick"}));
    EXPECT_FALSE(autostartEntryText(std::vector<std::string>{"/opt/\xff/tarnwick"}));
}

TEST(WrittenAutostartEntry, HasTheNameOfTheProgram) {
    for (const std::string& text :
         {autostartEntryText(std::vector<std::string>{"/a"}).value(), switchedOffEntryText()}) {
        EXPECT_EQ(desktopEntryValue(text, "Name"), "Tarnwick");
        EXPECT_EQ(desktopEntryValue(text, "Type"), "Application");
    }
}

TEST(WrittenAutostartEntry, ThatSwitchesOffIsOff) {
    const auto entry = parseAutostartEntry(switchedOffEntryText());
    ASSERT_TRUE(entry);
    EXPECT_TRUE(entry->isOff);
    EXPECT_EQ(desktopEntryValue(switchedOffEntryText(), "Hidden"), "true");
}

}  // namespace
}  // namespace tarnwick::platform
