// SPDX-License-Identifier: MIT
#include "platform/linux/settings/autostart_login_service.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <iterator>
#include <map>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

#include "platform/linux/applications/desktop_entry.h"
#include "tests/platform/linux/child_process.h"
#include "tests/platform/linux/temporary_folder.h"

namespace tarnwick::platform {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using Status = LoginServiceStatus;
using tarnwick::testing::ChildProcess;

constexpr uid_t kNobody = 65534;

std::string contentsOf(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

mode_t modeOf(const std::filesystem::path& path) {
    struct stat found {};
    EXPECT_EQ(::lstat(path.c_str(), &found), 0) << path;
    return found.st_mode;
}

class Autostart : public ::testing::Test {
 protected:
    Autostart() {
        variables_ = {
            {"HOME", (folder_ / "home").native()},
            {"XDG_CONFIG_DIRS", (folder_ / "first").native() + ":" + (folder_ / "second").native()},
            {"PATH", "/nowhere:" + (folder_ / "bin").native()},
            {"XDG_CURRENT_DESKTOP", "XFCE"}};
        std::filesystem::create_directory(folder_ / "home");
        std::filesystem::create_directory(folder_ / "bin");
        makeProgram(program_);
    }

    static void makeProgram(const std::filesystem::path& file) {
        std::filesystem::create_directories(file.parent_path());
        std::ofstream(file) << "#!/bin/sh\n";
        ASSERT_EQ(::chmod(file.c_str(), 0755), 0);
    }
    void write(const std::filesystem::path& file, const std::string& text) {
        std::filesystem::create_directories(file.parent_path());
        std::ofstream(file, std::ios::trunc) << text;
    }
    /// An entry that starts the program, with more lines.
    std::string entry(const std::string& lines = "") const {
        return "[Desktop Entry]\nType=Application\nName=x\nExec=" + program_.native() + "\n" +
               lines;
    }
    AutostartLoginService service() { return AutostartLoginService(program_, environment()); }
    AutostartLoginService::Environment environment() {
        return [this](const char* name) -> const char* {
            const auto found = variables_.find(name);
            return found == variables_.end() ? nullptr : found->second.c_str();
        };
    }
    Status status() { return service().status(); }
    /// What the operation tells, or nothing when it succeeds.
    std::string registering() { return told(service().registerService()); }
    std::string unregistering() { return told(service().unregisterService()); }
    static std::string told(const std::optional<LoginServiceError>& error) {
        return error ? error->localizedDescription : "";
    }
    std::vector<std::string> namesIn(const std::filesystem::path& folder) const {
        std::vector<std::string> names;
        for (const auto& each : std::filesystem::directory_iterator(folder)) {
            names.push_back(each.path().filename().native());
        }
        std::ranges::sort(names);
        return names;
    }
    /// Runs `body` as a user who owns everything and must obey permissions (unlike root).
    template <class Body>
    void asUser(const Body& body) {
        if (::geteuid() == 0) {
            ASSERT_EQ(::chown(folder_.path().c_str(), kNobody, kNobody), 0);
            for (const auto& each : std::filesystem::recursive_directory_iterator(folder_.path())) {
                ASSERT_EQ(::lchown(each.path().c_str(), kNobody, kNobody), 0);
            }
        }
        ChildProcess child([&] {
            if (::geteuid() == 0) {
                ASSERT_EQ(::setresgid(kNobody, kNobody, kNobody), 0);
                ASSERT_EQ(::setresuid(kNobody, kNobody, kNobody), 0);
            }
            body();
        });
        EXPECT_EQ(child.wait(), 0);
    }

    tarnwick::testing::TemporaryFolder folder_;
    std::map<std::string, std::string> variables_;
    std::filesystem::path program_ = folder_ / "opt" / "tarnwick";
    std::filesystem::path autostart_ = folder_ / "home" / ".config" / "autostart";
    std::filesystem::path own_ = autostart_ / "org.tarnwick.Tarnwick.desktop";
    std::filesystem::path first_ =
        folder_ / "first" / "autostart" / "org.tarnwick.Tarnwick.desktop";
    std::filesystem::path second_ =
        folder_ / "second" / "autostart" / "org.tarnwick.Tarnwick.desktop";
};

// What counts as enabled.

TEST_F(Autostart, IsOffWithoutAnEntry) {
    EXPECT_EQ(status(), Status::notRegistered);
    EXPECT_THAT(namesIn(folder_ / "home"), IsEmpty());
}

TEST_F(Autostart, IsOffWhenTheEntryIsSwitchedOff) {
    for (const char* const line : {"Hidden=true\n", "X-GNOME-Autostart-enabled=false\n"}) {
        write(own_, entry(line));
        EXPECT_EQ(status(), Status::notRegistered) << line;
        EXPECT_EQ(registering(), "") << line;
        EXPECT_EQ(status(), Status::enabled) << line;
    }
    write(own_, entry("Hidden=false\nX-GNOME-Autostart-enabled=true\n"));
    EXPECT_EQ(status(), Status::enabled);
}

TEST_F(Autostart, IsOnByAnEntryOfTheSystem) {
    write(second_, entry());
    EXPECT_EQ(status(), Status::enabled);
    write(first_, entry("Hidden=true\n"));
    EXPECT_EQ(status(), Status::notRegistered);
    write(first_, entry());
    write(second_, entry("Hidden=true\n"));
    EXPECT_EQ(status(), Status::enabled);
    variables_["XDG_CONFIG_DIRS"] = ":relative::" + (folder_ / "first").native() + ":";
    EXPECT_EQ(status(), Status::enabled);
}

TEST_F(Autostart, TheUsersEntryDecidesWhateverTheSystemSays) {
    write(first_, entry());
    write(own_, entry("Hidden=true\n"));
    EXPECT_EQ(status(), Status::notRegistered);
    write(first_, entry("Hidden=true\n"));
    EXPECT_EQ(registering(), "");
    EXPECT_EQ(status(), Status::enabled);
}

TEST_F(Autostart, ADamagedEntryOfTheUserHidesTheSystems) {
    write(first_, entry());
    for (const std::string& text :
         {std::string(), std::string("garbage"), std::string("[Desktop Entry]\n")}) {
        write(own_, text);
        EXPECT_EQ(status(), Status::notRegistered) << text;
    }
}

TEST_F(Autostart, IsOffOnADesktopThatTheEntryIsNotFor) {
    write(own_, entry("OnlyShowIn=MATE;KDE\n"));
    EXPECT_EQ(status(), Status::notRegistered);
    variables_["XDG_CURRENT_DESKTOP"] = "special:KDE";
    EXPECT_EQ(status(), Status::enabled);
    write(own_, entry("NotShowIn=KDE;\n"));
    EXPECT_EQ(status(), Status::notRegistered);
    variables_.erase("XDG_CURRENT_DESKTOP");
    EXPECT_EQ(status(), Status::enabled);
}

TEST_F(Autostart, IsOffWhenTheProgramIsMissing) {
    write(own_, entry());
    std::filesystem::remove(program_);
    EXPECT_EQ(status(), Status::notFound);
    makeProgram(program_);
    EXPECT_EQ(status(), Status::enabled);
    ASSERT_EQ(::chmod(program_.c_str(), 0644), 0);
    EXPECT_EQ(status(), Status::notFound);
    write(own_, "[Desktop Entry]\nType=Application\nName=x\n");
    EXPECT_EQ(status(), Status::notFound);
}

TEST_F(Autostart, LooksForAProgramWithoutAPath) {
    write(own_, "[Desktop Entry]\nType=Application\nName=x\nExec=named --flag\n");
    EXPECT_EQ(status(), Status::notFound);
    makeProgram(folder_ / "bin" / "named");
    EXPECT_EQ(status(), Status::enabled);
    variables_.erase("PATH");
    EXPECT_EQ(status(), Status::notFound);
}

TEST_F(Autostart, WhatIsNoFileIsNoEntry) {
    write(first_, entry());
    std::filesystem::create_directories(own_);
    EXPECT_EQ(status(), Status::enabled);
    std::filesystem::remove(own_);
    std::filesystem::create_symlink("/nowhere", own_);
    EXPECT_EQ(status(), Status::enabled);
    std::filesystem::remove(own_);
    // Opening a pipe to read it would wait for its writer.
    ASSERT_EQ(::mkfifo(own_.c_str(), 0600), 0);
    EXPECT_EQ(status(), Status::enabled);
    std::filesystem::remove(first_);
    EXPECT_EQ(status(), Status::notRegistered);
}

TEST_F(Autostart, ALinkToNothingAtAllHidesTheSystemsEntry) {
    write(first_, entry());
    std::filesystem::create_directories(own_.parent_path());
    std::filesystem::create_symlink("/dev/null", own_);
    EXPECT_EQ(status(), Status::notRegistered);
}

TEST_F(Autostart, AnEntryThatCannotBeReadIsOff) {
    write(first_, entry());
    write(own_, entry());
    ASSERT_EQ(::chmod(own_.c_str(), 0), 0);
    asUser([&] { EXPECT_EQ(status(), Status::notRegistered); });
}

TEST_F(Autostart, LooksWhereTheSessionKeepsItsConfiguration) {
    write(folder_ / "config" / "autostart" / "org.tarnwick.Tarnwick.desktop", entry());
    EXPECT_EQ(status(), Status::notRegistered);
    variables_["XDG_CONFIG_HOME"] = (folder_ / "config").native();
    EXPECT_EQ(status(), Status::enabled);
    variables_["XDG_CONFIG_HOME"] = "config";
    EXPECT_EQ(status(), Status::notRegistered);
    write(own_, entry());
    EXPECT_EQ(status(), Status::enabled);
    variables_["HOME"] = "home";
    EXPECT_EQ(status(), Status::notRegistered);
}

// Switching on.

TEST_F(Autostart, RegisteringSwitchesItOn) {
    EXPECT_EQ(registering(), "");
    EXPECT_EQ(status(), Status::enabled);
    EXPECT_EQ(desktopEntryValue(contentsOf(own_), "Exec"), program_.native());
    EXPECT_THAT(namesIn(autostart_), ElementsAre("org.tarnwick.Tarnwick.desktop"));
}

TEST_F(Autostart, RegisteringReplacesWhateverTheUsersEntryWas) {
    for (const std::string& text : {entry("Hidden=true\n"), std::string("garbage"), std::string(),
                                    entry("OnlyShowIn=KDE;\n") + std::string(100'000, '#')}) {
        write(own_, text);
        EXPECT_EQ(registering(), "");
        EXPECT_EQ(status(), Status::enabled);
    }
}

TEST_F(Autostart, RegisteringReplacesALinkAndNotWhatItLeadsTo) {
    const std::filesystem::path target = folder_ / "applications" / "org.tarnwick.Tarnwick.desktop";
    write(target, entry("Hidden=true\n"));
    std::filesystem::create_directories(autostart_);
    std::filesystem::create_symlink(target, own_);
    EXPECT_EQ(registering(), "");
    EXPECT_EQ(contentsOf(target), entry("Hidden=true\n"));
    EXPECT_TRUE(S_ISREG(modeOf(own_)));
    EXPECT_EQ(status(), Status::enabled);
}

TEST_F(Autostart, EveryPathOfTheProgramIsStarted) {
    for (const char* name : {"a b", "$HOME", "100%", "it's", "say \"x\"", "`x`", "a\\b", "%f;&|"}) {
        program_ = folder_ / "odd" / name / "tarnwick";
        makeProgram(program_);
        EXPECT_EQ(registering(), "") << name;
        EXPECT_EQ(status(), Status::enabled) << name;
    }
}

TEST_F(Autostart, APathThatNoEntryCanHoldIsRefused) {
    for (const std::string path : {"/opt/a=b/tarnwick", "/opt/a\x80/tarnwick", ""}) {
        program_ = path;
        EXPECT_EQ(registering(),
                  "Cannot start at login " + path + ": no autostart entry can hold this path");
        EXPECT_EQ(status(), Status::notRegistered);
    }
    program_ = "/opt/a\nb/tarnwick";
    EXPECT_EQ(registering(),
              "Cannot start at login /opt/a?b/tarnwick: no autostart entry can hold this path");
    EXPECT_FALSE(std::filesystem::exists(autostart_));
}

TEST_F(Autostart, AFolderThatCannotBeWrittenIsTold) {
    std::filesystem::create_directories(autostart_);
    ASSERT_EQ(::chmod(autostart_.c_str(), 0500), 0);
    asUser([&] {
        EXPECT_EQ(registering(), "Cannot write " + own_.native() + ": Permission denied");
        EXPECT_EQ(status(), Status::notRegistered);
        EXPECT_THAT(namesIn(autostart_), IsEmpty());
    });
}

TEST_F(Autostart, AFileInPlaceOfTheFolderIsTold) {
    write(autostart_, "x");
    EXPECT_EQ(registering(), "Cannot write " + own_.native() + ": Not a directory");
    EXPECT_EQ(status(), Status::notRegistered);
    EXPECT_EQ(unregistering(), "");
    EXPECT_EQ(contentsOf(autostart_), "x");
}

TEST_F(Autostart, WithoutAHomeNothingCanBeChanged) {
    variables_.erase("HOME");
    EXPECT_EQ(registering(), "Cannot change what starts at login: there is no home folder");
    EXPECT_EQ(unregistering(), "");
    write(first_, entry());
    EXPECT_EQ(status(), Status::enabled);
    EXPECT_EQ(unregistering(), "Cannot change what starts at login: there is no home folder");
}

// Switching off.

TEST_F(Autostart, UnregisteringRemovesTheUsersEntry) {
    EXPECT_EQ(registering(), "");
    EXPECT_EQ(unregistering(), "");
    EXPECT_EQ(status(), Status::notRegistered);
    EXPECT_THAT(namesIn(autostart_), IsEmpty());
}

TEST_F(Autostart, UnregisteringWhatIsNotThereSucceedsAndMakesNothing) {
    EXPECT_EQ(unregistering(), "");
    EXPECT_THAT(namesIn(folder_ / "home"), IsEmpty());
}

TEST_F(Autostart, UnregisteringRemovesALinkAndNotWhatItLeadsTo) {
    const std::filesystem::path target = folder_ / "applications" / "org.tarnwick.Tarnwick.desktop";
    write(target, entry());
    std::filesystem::create_directories(autostart_);
    std::filesystem::create_symlink(target, own_);
    EXPECT_EQ(unregistering(), "");
    EXPECT_EQ(contentsOf(target), entry());
    EXPECT_THAT(namesIn(autostart_), IsEmpty());
    std::filesystem::create_symlink("/nowhere", own_);
    EXPECT_EQ(unregistering(), "");
    EXPECT_THAT(namesIn(autostart_), IsEmpty());
}

TEST_F(Autostart, UnregisteringSwitchesOffWhatTheSystemWouldStart) {
    write(second_, entry());
    EXPECT_EQ(unregistering(), "");
    EXPECT_EQ(status(), Status::notRegistered);
    EXPECT_EQ(desktopEntryValue(contentsOf(own_), "Hidden"), "true");
    EXPECT_EQ(contentsOf(second_), entry());
    EXPECT_THAT(namesIn(autostart_), ElementsAre("org.tarnwick.Tarnwick.desktop"));
    EXPECT_EQ(unregistering(), "");
    EXPECT_EQ(status(), Status::notRegistered);
    EXPECT_EQ(registering(), "");
    EXPECT_EQ(status(), Status::enabled);
}

TEST_F(Autostart, UnregisteringLeavesNothingWhereTheSystemStartsNothing) {
    write(first_, entry("Hidden=true\n"));
    EXPECT_EQ(registering(), "");
    EXPECT_EQ(unregistering(), "");
    EXPECT_THAT(namesIn(autostart_), IsEmpty());
    EXPECT_EQ(status(), Status::notRegistered);
}

TEST_F(Autostart, UnregisteringCountsForTheOtherDesktopsOfTheSystemsEntry) {
    write(first_, entry("OnlyShowIn=KDE;\n"));
    EXPECT_EQ(unregistering(), "");
    variables_["XDG_CURRENT_DESKTOP"] = "KDE";
    EXPECT_EQ(status(), Status::notRegistered);
}

TEST_F(Autostart, AnEntryThatCannotBeRemovedIsTold) {
    write(own_, entry());
    ASSERT_EQ(::chmod(autostart_.c_str(), 0500), 0);
    asUser([&] {
        EXPECT_EQ(unregistering(), "Cannot remove " + own_.native() + ": Permission denied");
        EXPECT_EQ(status(), Status::enabled);
    });
}

// What desktops think of the entries.

TEST_F(Autostart, EntriesAreValid) {
    const auto isValid = [&] {
        const std::string output = (folder_ / "output").native();
        const int result =
            std::system(("desktop-file-validate '" + own_.native() + "' >" + output).c_str());
        EXPECT_EQ(contentsOf(output), "");
        return result == 0;
    };
    for (const char* name : {"plain", "a b", "$HOME", "100%", "it's", "say \"x\"", "`x`", "a\\b"}) {
        program_ = folder_ / "odd" / name;
        EXPECT_EQ(registering(), "");
        EXPECT_TRUE(isValid()) << name;
    }
    write(first_, entry());
    EXPECT_EQ(unregistering(), "");
    EXPECT_TRUE(isValid());
}

// What is started.

std::filesystem::path startedFor(const std::filesystem::path& program,
                                 const std::map<std::string, std::string>& variables = {}) {
    return startedAtLogin(program, [&variables](const char* name) -> const char* {
        const auto found = variables.find(name);
        return found == variables.end() ? nullptr : found->second.c_str();
    });
}

TEST(StartedAtLogin, IsTheProgramItself) {
    EXPECT_EQ(startedFor("/opt/a b/tarnwick"), "/opt/a b/tarnwick");
    EXPECT_EQ(startedFor("/opt/a b/tarnwick", {{"PATH", "/usr/bin:/bin"}}), "/opt/a b/tarnwick");
}

TEST(StartedAtLogin, IsTheLinkInThePathThatAnUpdateChanges) {
    const tarnwick::testing::TemporaryFolder folder;
    const auto program = folder / "store" / "tarnwick";
    const auto link = folder / "bin" / "tarnwick";
    std::filesystem::create_directories(program.parent_path());
    std::filesystem::create_directories(link.parent_path());
    const auto makeExecutable = [](const std::filesystem::path& file) {
        std::ofstream(file) << "#!/bin/sh\n";
        std::filesystem::permissions(file, std::filesystem::perms::owner_all);
    };
    makeExecutable(program);
    const std::map<std::string, std::string> variables = {{"PATH", link.parent_path().native()}};
    std::filesystem::create_symlink(program, link);
    EXPECT_EQ(startedFor(program, variables), link.native());
    // Another program of that name.
    std::filesystem::remove(link);
    makeExecutable(link);
    EXPECT_EQ(startedFor(program, variables), program.native());
}

TEST(StartedAtLogin, IsTheImageAroundTheProgram) {
    EXPECT_EQ(startedFor("/tmp/.mount_Tx/usr/bin/tarnwick",
                         {{"APPIMAGE", "/home/u/Tarnwick.AppImage"}, {"APPDIR", "/tmp/.mount_Tx"}}),
              "/home/u/Tarnwick.AppImage");
}

TEST(StartedAtLogin, IsNotTheImageOfTheTerminalThatItWasStartedFrom) {
    for (const char* folder : {"/tmp/.mount_Te", "/usr/bi", ""}) {
        EXPECT_EQ(startedFor("/usr/bin/tarnwick",
                             {{"APPIMAGE", "/home/u/Terminal.AppImage"}, {"APPDIR", folder}}),
                  "/usr/bin/tarnwick")
            << folder;
    }
}

}  // namespace
}  // namespace tarnwick::platform
