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

class InstalledApplicationsTest : public ::testing::Test {
 protected:
    static std::string entry(const std::string& name) {
        return "[Desktop Entry]\nName=" + name + "\nName[de]=" + name + " auf Deutsch\n";
    }
    std::string nameOf(const std::string& id) {
        const auto& found = applications.find(id);
        return found ? found->name : "(none)";
    }

    testing::MachineTree tree;
    InstalledApplications applications{
        tree.root(), {.dataFolders = {"/home/ada/share", "/usr/share"}, .localeSuffixes = {"de"}}};
};

TEST_F(InstalledApplicationsTest, AreFoundInTheFirstFolderThatHasThem) {
    tree.write("usr/share/applications/a.desktop", entry("System's A"));
    tree.write("usr/share/applications/b.desktop", entry("B"));
    tree.write("home/ada/share/applications/a.desktop", entry("Ada's A"));
    EXPECT_EQ(nameOf("a"), "Ada's A auf Deutsch");
    EXPECT_EQ(nameOf("b"), "B auf Deutsch");
    EXPECT_EQ(nameOf("c"), "(none)");
}

TEST_F(InstalledApplicationsTest, AnApplicationThatTheUserRemovedIsNone) {
    tree.write("usr/share/applications/a.desktop", entry("A"));
    tree.write("home/ada/share/applications/a.desktop", "[Desktop Entry]\nHidden=true\n");
    EXPECT_EQ(nameOf("a"), "(none)");
}

TEST_F(InstalledApplicationsTest, AreRememberedUntilForgotten) {
    tree.write("usr/share/applications/a.desktop", entry("Old"));
    EXPECT_EQ(nameOf("a"), "Old auf Deutsch");
    EXPECT_EQ(nameOf("b"), "(none)");
    tree.write("usr/share/applications/a.desktop", entry("New"));
    tree.write("usr/share/applications/b.desktop", entry("B"));
    EXPECT_EQ(nameOf("a"), "Old auf Deutsch");
    EXPECT_EQ(nameOf("b"), "(none)");
    applications.forget();
    EXPECT_EQ(nameOf("a"), "New auf Deutsch");
    EXPECT_EQ(nameOf("b"), "B auf Deutsch");
}

TEST_F(InstalledApplicationsTest, InFoldersOfTheirOwnHaveTheFoldersNameBeforeTheirs) {
    tree.write("usr/share/applications/kde/ledger.desktop", entry("Ledger"));
    tree.write("usr/share/applications/wine/Programs/7-Zip/7-Zip.desktop", entry("7-Zip"));
    EXPECT_EQ(nameOf("kde-ledger"), "Ledger auf Deutsch");
    EXPECT_EQ(nameOf("wine-Programs-7-Zip-7-Zip"), "7-Zip auf Deutsch");
    EXPECT_EQ(nameOf("ledger"), "(none)");
    EXPECT_EQ(nameOf("kde-"), "(none)");
    EXPECT_EQ(nameOf("-kde-ledger"), "(none)");
}

TEST_F(InstalledApplicationsTest, OfThePlainNameComeFirst) {
    tree.write("usr/share/applications/kde/ledger.desktop", entry("Inner"));
    tree.write("usr/share/applications/kde-ledger.desktop", entry("Outer"));
    EXPECT_EQ(nameOf("kde-ledger"), "Outer auf Deutsch");
    tree.write("home/ada/share/applications/kde/ledger.desktop", entry("Ada's"));
    applications.forget();
    EXPECT_EQ(nameOf("kde-ledger"), "Ada's auf Deutsch");
}

TEST_F(InstalledApplicationsTest, NoNameLeadsOutOfTheFolder) {
    tree.write("usr/share/secret.desktop", entry("Secret"));
    tree.makeFolder("usr/share/applications/a");
    EXPECT_EQ(nameOf("..-secret"), "(none)");
    EXPECT_EQ(nameOf("a-..-..-secret"), "(none)");
}

}  // namespace
}  // namespace tarnwick::platform
