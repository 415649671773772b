#include "platform/linux/settings/start_command.h"

#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <map>
#include <string>
#include <vector>

#include "tests/platform/linux/temporary_folder.h"

namespace tarnwick::platform {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class StartCommand : public ::testing::Test {
 protected:
    std::vector<std::string> of(const std::filesystem::path& program,
                                const std::map<std::string, std::string>& variables = {}) {
        return startCommand(
            program,
            [&variables](const char* name) -> const char* {
                const auto found = variables.find(name);
                return found == variables.end() ? nullptr : found->second.c_str();
            },
            root_.path());
    }

    tarnwick::testing::TemporaryFolder root_;
};

TEST_F(StartCommand, IsTheProgramItself) {
    EXPECT_THAT(of("/usr/bin/tarnwick"), ElementsAre("/usr/bin/tarnwick"));
    EXPECT_THAT(of("/opt/a b/tarnwick"), ElementsAre("/opt/a b/tarnwick"));
    EXPECT_THAT(of(""), IsEmpty());
}

TEST_F(StartCommand, IsTheLinkInThePathThatAnUpdateChanges) {
    // Resolved, as the kernel tells it.
    const std::filesystem::path root = std::filesystem::canonical(root_.path());
    const auto program = root / "store" / "tarnwick-1" / "tarnwick";
    const auto bin = root / "bin";
    std::filesystem::create_directories(program.parent_path());
    std::filesystem::create_directories(bin);
    std::ofstream(program) << "program";
    const auto path = [](const std::vector<std::filesystem::path>& folders) {
        std::string list = ":relative";
        for (const auto& folder : folders) {
            list += ":" + folder.native();
        }
        return std::map<std::string, std::string>{{"PATH", list}};
    };
    EXPECT_THAT(of(program, path({bin})), ElementsAre(program.native()));
    std::filesystem::create_symlink(program, bin / "tarnwick");
    EXPECT_THAT(of(program, path({root / "missing", bin})),
                ElementsAre((bin / "tarnwick").native()));
    EXPECT_THAT(of(program), ElementsAre(program.native()));
    // The program itself, wherever a link to it comes first.
    EXPECT_THAT(of(program, path({bin, program.parent_path()})), ElementsAre(program.native()));
    // A folder that is a link, as in a profile of packages.
    std::filesystem::create_directory_symlink(program.parent_path(), root / "profile");
    EXPECT_THAT(of(program, path({root / "profile", bin})),
                ElementsAre((root / "profile" / "tarnwick").native()));
}

TEST_F(StartCommand, IsNotAnotherProgramOfThatName) {
    const std::filesystem::path root = std::filesystem::canonical(root_.path());
    std::filesystem::create_directories(root / "bin");
    std::filesystem::create_directories(root / "opt");
    std::ofstream(root / "opt" / "tarnwick") << "program";
    std::ofstream(root / "bin" / "tarnwick") << "another";
    EXPECT_THAT(of(root / "opt" / "tarnwick", {{"PATH", (root / "bin").native()}}),
                ElementsAre((root / "opt" / "tarnwick").native()));
    std::filesystem::remove(root / "bin" / "tarnwick");
    std::filesystem::create_symlink("/nowhere", root / "bin" / "tarnwick");
    EXPECT_THAT(of(root / "opt" / "tarnwick", {{"PATH", (root / "bin").native()}}),
                ElementsAre((root / "opt" / "tarnwick").native()));
}

TEST_F(StartCommand, IsTheImageThatTheProgramCameIn) {
    EXPECT_THAT(of("/tmp/.mount_Tx/usr/bin/tarnwick",
                   {{"APPIMAGE", "/home/u/Tarnwick.AppImage"}, {"APPDIR", "/tmp/.mount_Tx"}}),
                ElementsAre("/home/u/Tarnwick.AppImage"));
    EXPECT_THAT(of("/tmp/.mount_Tx/usr/bin/tarnwick",
                   {{"APPIMAGE", "/home/u/Tarnwick.AppImage"}, {"APPDIR", "/tmp/.mount_Tx/"}}),
                ElementsAre("/home/u/Tarnwick.AppImage"));
}

TEST_F(StartCommand, IsNotTheImageOfTheTerminalThatItWasStartedFrom) {
    const std::string image = "/home/u/Terminal.AppImage";
    for (const char* folder : {"/tmp/.mount_Te", "/usr/bi", "", "bin", "/usr/bin/tarnwick/x"}) {
        EXPECT_THAT(of("/usr/bin/tarnwick", {{"APPIMAGE", image}, {"APPDIR", folder}}),
                    ElementsAre("/usr/bin/tarnwick"))
            << folder;
    }
    EXPECT_THAT(of("/usr/bin/tarnwick", {{"APPIMAGE", image}}), ElementsAre("/usr/bin/tarnwick"));
    EXPECT_THAT(of("/usr/bin/tarnwick", {{"APPDIR", "/usr"}}), ElementsAre("/usr/bin/tarnwick"));
    EXPECT_THAT(of("/usr/bin/tarnwick", {{"APPIMAGE", "x"}, {"APPDIR", "/usr"}}),
                ElementsAre("/usr/bin/tarnwick"));
}

TEST_F(StartCommand, IsTheCommandOfTheSnap) {
    EXPECT_THAT(of("/snap/tarnwick/7/usr/bin/tarnwick",
                   {{"SNAP", "/snap/tarnwick/7"}, {"SNAP_INSTANCE_NAME", "tarnwick"}}),
                ElementsAre("/snap/bin/tarnwick"));
    EXPECT_THAT(
        of("/usr/bin/tarnwick", {{"SNAP", "/snap/terminal/7"}, {"SNAP_INSTANCE_NAME", "terminal"}}),
        ElementsAre("/usr/bin/tarnwick"));
}

TEST_F(StartCommand, RunsTheFlatpak) {
    EXPECT_THAT(of("/app/bin/tarnwick", {{"FLATPAK_ID", "org.tarnwick.Tarnwick"}}),
                ElementsAre("/app/bin/tarnwick"));
    std::ofstream(root_ / ".flatpak-info") << "[Application]\n";
    EXPECT_THAT(of("/app/bin/tarnwick", {{"FLATPAK_ID", "org.tarnwick.Tarnwick"}}),
                ElementsAre("flatpak", "run", "org.tarnwick.Tarnwick"));
    EXPECT_THAT(of("/app/bin/tarnwick"), ElementsAre("/app/bin/tarnwick"));
}

TEST(RunningProgram, IsTheFileOfThisProcess) {
    EXPECT_EQ(runningProgram(), std::filesystem::read_symlink("/proc/self/exe"));
}

TEST(RunningProgram, IsTheNewFileAfterAnUpdate) {
    const tarnwick::testing::TemporaryFolder folder;
    std::filesystem::create_symlink((folder / "tarnwick").native() + " (deleted)", folder / "exe");
    EXPECT_EQ(runningProgram(folder / "exe"), "");
    std::ofstream(folder / "tarnwick") << "new";
    EXPECT_EQ(runningProgram(folder / "exe"), folder / "tarnwick");
    std::ofstream(folder / "tarnwick (deleted)") << "a name like any other";
    EXPECT_EQ(runningProgram(folder / "exe"), folder / "tarnwick (deleted)");
}

TEST(RunningProgram, IsUnknownWhereTheSystemDoesNotTell) {
    EXPECT_EQ(runningProgram("/nowhere/exe"), "");
}

}  // namespace
}  // namespace tarnwick::platform
