// SPDX-License-Identifier: MIT
#include "platform/linux/applications/installed_applications.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <map>
#include <string>

#include "tests/platform/linux/machine_tree.h"

namespace tarnwick::platform {
namespace {

using ::testing::ElementsAre;

ApplicationSources sourcesFor(const std::map<std::string, std::string>& variables) {
    return applicationSources([&variables](const char* name) -> const char* {
        const auto found = variables.find(name);
        return found == variables.end() ? nullptr : found->second.c_str();
    });
}

TEST(ApplicationSources, AreTheUsualFoldersWhereTheSessionNamesNone) {
    EXPECT_THAT(sourcesFor({{"HOME", "/home/ada"}}).dataFolders,
                ElementsAre("/home/ada/.local/share", "/usr/local/share", "/usr/share",
                            "/home/ada/.local/share/flatpak/exports/share",
                            "/var/lib/flatpak/exports/share", "/var/lib/snapd/desktop"));
}

TEST(ApplicationSources, AreTheSessionsFoldersInItsOrder) {
    EXPECT_THAT(
        sourcesFor({{"HOME", "/home/ada"},
                    {"XDG_DATA_HOME", "/data/ada/"},
                    {"XDG_DATA_DIRS", "/opt/share/:/var/lib/snapd/desktop::/opt/share:usr"}})
            .dataFolders,
        ElementsAre("/data/ada", "/opt/share", "/var/lib/snapd/desktop",
                    "/home/ada/.local/share/flatpak/exports/share",
                    "/var/lib/flatpak/exports/share"));
}

TEST(ApplicationSources, ARelativeChoiceDoesNotCount) {
    EXPECT_EQ(sourcesFor({{"HOME", "/home/ada"}, {"XDG_DATA_HOME", "data"}}).dataFolders.front(),
              "/home/ada/.local/share");
}

TEST(ApplicationSources, KnowTheUsersLanguage) {
    EXPECT_THAT(sourcesFor({{"LANG", "de_DE.UTF-8"}}).localeSuffixes, ElementsAre("de_DE", "de"));
}

class DesktopEntryFile : public ::testing::Test {
 protected:
    std::string find(const std::string& name) const {
        return desktopEntryFile(tree.root(), {"/home/ada/share", "/usr/share"}, name)
            .value_or("(none)");
    }

    testing::MachineTree tree;
};

TEST_F(DesktopEntryFile, IsFoundInTheFirstFolderThatHasIt) {
    tree.write("usr/share/applications/a.desktop", "System's A");
    tree.write("usr/share/applications/b.desktop", "B");
    tree.write("home/ada/share/applications/a.desktop", "Ada's A");
    EXPECT_EQ(find("a"), "Ada's A");
    EXPECT_EQ(find("b"), "B");
    EXPECT_EQ(find("c"), "(none)");
}

TEST_F(DesktopEntryFile, InAFolderOfItsOwnHasTheFoldersNameBeforeItsOwn) {
    tree.write("usr/share/applications/kde/ledger.desktop", "Ledger");
    tree.write("usr/share/applications/wine/Programs/7-Zip/7-Zip.desktop", "7-Zip");
    EXPECT_EQ(find("kde-ledger"), "Ledger");
    EXPECT_EQ(find("wine-Programs-7-Zip-7-Zip"), "7-Zip");
    EXPECT_EQ(find("ledger"), "(none)");
    EXPECT_EQ(find("kde-"), "(none)");
    EXPECT_EQ(find("-kde-ledger"), "(none)");
}

TEST_F(DesktopEntryFile, OfThePlainNameComesFirst) {
    tree.write("usr/share/applications/kde/ledger.desktop", "Inner");
    tree.write("usr/share/applications/kde-ledger.desktop", "Outer");
    EXPECT_EQ(find("kde-ledger"), "Outer");
    tree.write("home/ada/share/applications/kde/ledger.desktop", "Ada's");
    EXPECT_EQ(find("kde-ledger"), "Ada's");
}

TEST_F(DesktopEntryFile, LiesNowhereElse) {
    tree.write("usr/share/secret.desktop", "Secret");
    tree.makeFolder("usr/share/applications/a");
    EXPECT_EQ(find("..-secret"), "(none)");
    EXPECT_EQ(find("a-..-..-secret"), "(none)");
}

TEST_F(DesktopEntryFile, ThatIsFarTooLongIsNotRead) {
    tree.write("usr/share/applications/long.desktop", std::string(std::size_t{1} << 20, 'a'));
    tree.write("usr/share/applications/short.desktop",
               std::string((std::size_t{1} << 20) - 1, 'a'));
    EXPECT_EQ(find("long"), "(none)");
    EXPECT_EQ(find("short").size(), (std::size_t{1} << 20) - 1);
}

}  // namespace
}  // namespace tarnwick::platform
