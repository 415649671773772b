// SPDX-License-Identifier: MIT
#include "platform/linux/applications/system_monitors.h"

#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <map>
#include <string>

#include "tests/platform/linux/machine_tree.h"

namespace tarnwick::platform {
namespace {

using ::testing::ElementsAre;

class SystemMonitors : public ::testing::Test {
 protected:
    void installProgram(const std::string& name) const {
        const std::string path = "usr/bin/" + name;
        tree.write(path, "");
        std::filesystem::permissions(tree.root() + '/' + path, std::filesystem::perms::owner_all);
    }
    void describe(const std::string& entry, const std::string& exec, const std::string& more = "",
                  const std::string& folder = "usr/share") const {
        tree.write(
            folder + "/applications/" + entry + ".desktop",
            "[Desktop Entry]\nType=Application\nName=" + entry + "\nExec=" + exec + '\n' + more);
    }
    void install(const std::string& entry, const std::string& program,
                 const std::string& more = "") const {
        installProgram(program);
        describe(entry, program, more);
    }
    std::optional<InstalledProgram> find() const {
        return findSystemMonitor(
            [this](const char* name) -> const char* {
                const auto found = variables.find(name);
                return found == variables.end() ? nullptr : found->second.c_str();
            },
            tree.root());
    }
    /// Name of the entry that is found in a session of these desktops.
    std::string foundIn(const std::string& desktops) {
        variables["XDG_CURRENT_DESKTOP"] = desktops;
        const auto found = find();
        return found ? found->entry : "(none)";
    }

    testing::MachineTree tree;
    std::map<std::string, std::string> variables{{"HOME", "/home/ada"}, {"PATH", "/bin:/usr/bin"}};
};

TEST_F(SystemMonitors, AreNoneWhereNoneIsInstalled) {
    EXPECT_EQ(find(), std::nullopt);
    install("vim", "vim");
    EXPECT_EQ(find(), std::nullopt);
    variables.clear();
    EXPECT_EQ(find(), std::nullopt);
}

TEST_F(SystemMonitors, AreTheDesktopsOwn) {
    const std::map<std::string, std::string> own = {{"GNOME", "org.gnome.SystemMonitor"},
                                                    {"KDE", "org.kde.plasma-systemmonitor"},
                                                    {"XFCE", "xfce4-taskmanager"},
                                                    {"MATE", "mate-system-monitor"},
                                                    {"LXQt", "qps"},
                                                    {"LXDE", "lxtask"},
                                                    {"Deepin", "deepin-system-monitor"},
                                                    {"UKUI", "ukui-system-monitor"},
                                                    {"Pantheon", "io.elementary.monitor"}};
    for (const auto& [desktop, entry] : own) {
        install(entry, entry);
    }
    for (const auto& [desktop, entry] : own) {
        EXPECT_EQ(foundIn(desktop), entry);
    }
    EXPECT_EQ(foundIn("X-Cinnamon"), "org.gnome.SystemMonitor");
    EXPECT_EQ(foundIn("ubuntu:GNOME"), "org.gnome.SystemMonitor");
    EXPECT_EQ(foundIn("Budgie:GNOME"), "org.gnome.SystemMonitor");
    EXPECT_EQ(foundIn("special:LXQt"), "qps");
}

TEST_F(SystemMonitors, AreTheMoreSpecialDesktopsFirst) {
    install("gnome-system-monitor", "gnome-system-monitor");
    install("io.elementary.monitor", "io.elementary.monitor");
    install("xfce4-taskmanager", "xfce4-taskmanager");
    EXPECT_EQ(foundIn("XFCE:GNOME"), "xfce4-taskmanager");
    EXPECT_EQ(foundIn("GNOME:XFCE"), "gnome-system-monitor");
    EXPECT_EQ(foundIn("Pantheon"), "io.elementary.monitor");
}

TEST_F(SystemMonitors, AreTheNewerOneOfTheSameDesktop) {
    install("gnome-system-monitor", "old");
    EXPECT_EQ(foundIn("GNOME"), "gnome-system-monitor");
    install("org.gnome.SystemMonitor", "new");
    EXPECT_EQ(foundIn("GNOME"), "org.gnome.SystemMonitor");
    install("org.kde.ksysguard", "ksysguard");
    EXPECT_EQ(foundIn("KDE"), "org.kde.ksysguard");
    install("org.kde.plasma-systemmonitor", "plasma-systemmonitor");
    EXPECT_EQ(foundIn("KDE"), "org.kde.plasma-systemmonitor");
}

TEST_F(SystemMonitors, AreAnothersWhereTheDesktopHasNone) {
    install("net.nokyan.Resources", "resources");
    EXPECT_EQ(foundIn("sway"), "net.nokyan.Resources");
    install("io.missioncenter.MissionCenter", "missioncenter");
    EXPECT_EQ(foundIn("sway"), "io.missioncenter.MissionCenter");
    install("mate-system-monitor", "mate-system-monitor");
    EXPECT_EQ(foundIn("GNOME"), "mate-system-monitor");
    EXPECT_EQ(foundIn(""), "mate-system-monitor");
}

TEST_F(SystemMonitors, NeedATerminalAsTheLastResortAndOnlyWhereThereIsOne) {
    install("htop", "htop", "Terminal=true\n");
    EXPECT_EQ(foundIn("XFCE"), "(none)");
    installProgram("xterm");
    EXPECT_EQ(foundIn("XFCE"), "htop");
    EXPECT_THAT(find()->command, ElementsAre("xterm", "-e", "htop"));
    installProgram("xfce4-terminal");
    EXPECT_THAT(find()->command, ElementsAre("xfce4-terminal", "-x", "htop"));
    installProgram("x-terminal-emulator");
    EXPECT_THAT(find()->command, ElementsAre("x-terminal-emulator", "-e", "htop"));
    installProgram("xdg-terminal-exec");
    EXPECT_THAT(find()->command, ElementsAre("xdg-terminal-exec", "htop"));
    install("btop", "btop", "Terminal=true\n");
    EXPECT_EQ(foundIn("XFCE"), "btop");
    install("qps", "qps");
    EXPECT_EQ(foundIn("XFCE"), "qps");
}

TEST_F(SystemMonitors, OfTheDesktopInATerminalGivesWayToAWindow) {
    install("qps", "qps", "Terminal=true\n");
    install("stacer", "stacer");
    installProgram("xterm");
    EXPECT_EQ(foundIn("LXQt"), "stacer");
}

TEST_F(SystemMonitors, ThatWereRemovedDoNotCount) {
    install("qps", "qps");
    install("lxtask", "lxtask");
    describe("qps", "qps", "Hidden=true\n", "home/ada/.local/share");
    EXPECT_EQ(foundIn("LXQt"), "lxtask");
}

TEST_F(SystemMonitors, WhoseProgramIsMissingDoNotCount) {
    describe("qps", "qps");
    EXPECT_EQ(foundIn("LXQt"), "(none)");
    installProgram("qps");
    EXPECT_EQ(foundIn("LXQt"), "qps");
}

TEST_F(SystemMonitors, WhoseEntryIsDamagedDoNotCount) {
    installProgram("qps");
    describe("qps", "qps \"");
    EXPECT_EQ(foundIn("LXQt"), "(none)");
    describe("qps", "");
    EXPECT_EQ(foundIn("LXQt"), "(none)");
    tree.write("usr/share/applications/qps.desktop", "[Desktop Entry]\nType=Link\nName=q\n");
    EXPECT_EQ(foundIn("LXQt"), "(none)");
}

TEST_F(SystemMonitors, AreFoundWhereTheSessionAndTheUserKeepThem) {
    installProgram("qps");
    describe("qps", "qps --system", "", "opt/share");
    EXPECT_EQ(foundIn("LXQt"), "(none)");
    variables["XDG_DATA_DIRS"] = "/usr/share:/opt/share";
    EXPECT_THAT(find()->command, ElementsAre("qps", "--system"));
    describe("qps", "qps --own", "", "data/ada");
    variables["XDG_DATA_HOME"] = "/data/ada";
    EXPECT_THAT(find()->command, ElementsAre("qps", "--own"));
}

TEST_F(SystemMonitors, AreStartedAsTheirEntrySays) {
    installProgram("qps");
    describe("qps", "/usr/bin/qps --all %U", "Path=/var/lib/a\\sb\n");
    const auto found = find();
    ASSERT_TRUE(found);
    EXPECT_THAT(found->command, ElementsAre("/usr/bin/qps", "--all"));
    EXPECT_EQ(found->folder, "/var/lib/a b");
}

TEST_F(SystemMonitors, ThatMenusDoNotShowAreMonitorsAllTheSame) {
    install("gnome-system-monitor", "gnome-system-monitor", "NoDisplay=true\nNotShowIn=KDE;\n");
    EXPECT_EQ(foundIn("KDE"), "gnome-system-monitor");
}

}  // namespace
}  // namespace tarnwick::platform
