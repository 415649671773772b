// A file or folder that permissions, or what lies in its place, keep from being used.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <sys/stat.h>

#include "platform/linux/settings/sqlite_user_defaults.h"
#include "tests/platform/linux/settings/sqlite_user_defaults_trouble_fixture.h"

namespace tarnwick::platform {
namespace {

using tarnwick::testing::contentsOf;
using tarnwick::testing::putContents;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using SqliteUserDefaultsPermission = tarnwick::testing::SqliteUserDefaultsTroubleFixture;

// Permissions.

TEST_F(SqliteUserDefaultsPermission, AReadOnlyFileIsReadAndWritesStayInMemory) {
    makeStore();
    allow(file, 0400);
    const std::string before = contentsOf(file);
    asUser([&] {
        const auto store = open();
        EXPECT_EQ(store->integer("old"), 1);
        EXPECT_THAT(lines, IsEmpty());
        store->set("old", std::int64_t{2});
        store->set("new", true);
        EXPECT_EQ(store->integer("old"), 2);
        EXPECT_EQ(store->boolean("new"), true);
        EXPECT_TRUE(store->contains("new"));
        EXPECT_EQ(store->text("other"), "x");
        EXPECT_THAT(lines, ElementsAre(notWritten("Permission denied")));
    });
    EXPECT_EQ(contentsOf(file), before);
    EXPECT_THAT(names(), ElementsAre("settings.sqlite"));
}

TEST_F(SqliteUserDefaultsPermission, AFileThatBecomesWritableGetsTheValuesWithTheNextRead) {
    makeStore();
    allow(file, 0400);
    asUser([&] {
        const auto store = open();
        store->set("old", std::int64_t{2});
        allow(file, 0600);
        store->object("other");
        EXPECT_EQ(open()->integer("old"), 2);
    });
}

TEST_F(SqliteUserDefaultsPermission, AFileThatBecomesWritableGetsTheValuesWithTheNextWrite) {
    makeStore();
    allow(file, 0400);
    asUser([&] {
        const auto store = open();
        store->set("old", std::int64_t{2});
        allow(file, 0600);
        store->set("new", true);
        EXPECT_EQ(open()->integer("old"), 2);
        EXPECT_EQ(open()->boolean("new"), true);
    });
}

TEST_F(SqliteUserDefaultsPermission, AFileThatBecomesWritableGetsTheValuesAtTheEnd) {
    makeStore();
    allow(file, 0400);
    asUser([&] {
        {
            const auto store = open();
            store->set("old", std::int64_t{2});
            allow(file, 0600);
        }
        EXPECT_EQ(open()->integer("old"), 2);
    });
}

TEST_F(SqliteUserDefaultsPermission, AFileInAReadOnlyFolderIsReadAndWritesStayInMemory) {
    makeStore();
    asUser([&] {
        allow(folder.path(), 0500);
        const auto store = open();
        EXPECT_EQ(store->integer("old"), 1);
        store->set("old", std::int64_t{2});
        EXPECT_EQ(store->integer("old"), 2);
        EXPECT_THAT(lines, ElementsAre(notWritten("Permission denied")));
        allow(folder.path(), 0700);
        EXPECT_EQ(store->text("other"), "x");
        EXPECT_EQ(open()->integer("old"), 2);
    });
}

TEST_F(SqliteUserDefaultsPermission, AReadOnlyFileUnderAnOddNameIsRead) {
    file = folder / "a?b#c%20d";
    makeStore();
    asUser([&] {
        allow(folder.path(), 0500);
        EXPECT_EQ(open()->integer("old"), 1);
        EXPECT_THAT(lines, IsEmpty());
        allow(folder.path(), 0700);
    });
}

TEST_F(SqliteUserDefaultsPermission, AFileThatBecomesReadOnlyWhileInUseKeepsWhatItHas) {
    makeStore();
    asUser([&] {
        const auto store = open();
        EXPECT_EQ(store->integer("old"), 1);
        store->set("old", std::int64_t{2});
        allow(file, 0400);
        EXPECT_EQ(store->integer("old"), 2);
    });
    allow(file, 0600);
    EXPECT_EQ(open()->integer("old"), 2);
}

TEST_F(SqliteUserDefaultsPermission, AReadOnlyFolderWithoutAFileLeavesEverythingInMemory) {
    asUser([&] {
        allow(folder.path(), 0500);
        const auto store = open();
        EXPECT_EQ(store->object("key"), std::nullopt);
        EXPECT_FALSE(store->contains("key"));
        store->set("key", true);
        EXPECT_EQ(store->boolean("key"), true);
        EXPECT_TRUE(store->contains("key"));
        EXPECT_THAT(lines,
                    ElementsAre(notRead("Permission denied"), notWritten("Permission denied")));
        allow(folder.path(), 0700);
        store->object("other");
        EXPECT_EQ(open()->boolean("key"), true);
    });
}

TEST_F(SqliteUserDefaultsPermission, AFileThatMayNotBeReadIsNotTakenForAnAbsentOne) {
    makeStore();
    allow(file, 0000);
    asUser([&] {
        const auto store = open();
        EXPECT_EQ(store->object("old"), std::nullopt);
        EXPECT_TRUE(store->contains("old"));
        store->set("new", true);
        EXPECT_EQ(store->boolean("new"), true);
        allow(file, 0600);
        EXPECT_EQ(store->integer("old"), 1);
    });
    EXPECT_EQ(open()->boolean("new"), true);
    EXPECT_THAT(names(), ElementsAre("settings.sqlite"));
}

TEST_F(SqliteUserDefaultsPermission, ADamagedFileThatCannotBeMovedIsLeftAlone) {
    putContents(file, std::string(3'000, 'z'));
    asUser([&] {
        allow(folder.path(), 0500);
        const auto store = open();
        EXPECT_EQ(store->object("key"), std::nullopt);
        store->set("key", true);
        store->set("key", false);
        EXPECT_EQ(store->boolean("key"), false);
        EXPECT_THAT(lines, ElementsAre("settings: " + file.native() +
                                       " is damaged and cannot be moved away (Permission denied); "
                                       "changes are lost when the program ends"));
    });
    EXPECT_EQ(contentsOf(file), std::string(3'000, 'z'));
    EXPECT_THAT(names(), ElementsAre("settings.sqlite"));
}

// No place for a file.

TEST_F(SqliteUserDefaultsPermission, WithoutAHomeDirectoryEverythingStaysInMemory) {
    file.clear();
    const auto store = open();
    EXPECT_EQ(store->object("key"), std::nullopt);
    EXPECT_FALSE(store->contains("key"));
    store->set("key", std::int64_t{5});
    store->set("other", true);
    EXPECT_EQ(store->integer("key"), 5);
    EXPECT_EQ(store->boolean("other"), true);
    EXPECT_THAT(lines, ElementsAre("settings: there is no home directory to keep them in; changes "
                                   "are lost when the program ends"));
    EXPECT_THAT(names(), IsEmpty());
}

TEST_F(SqliteUserDefaultsPermission, AHomeDirectoryThatCannotBeMadeLeavesEverythingInMemory) {
    const auto home = folder / "home";
    file = home / ".local" / "share" / "tarnwick" / "settings.sqlite";
    asUser([&] {
        allow(folder.path(), 0500);
        const auto store = open();
        store->set("key", std::int64_t{5});
        store->set("key", std::int64_t{6});
        EXPECT_EQ(store->integer("key"), 6);
        EXPECT_EQ(store->object("other"), std::nullopt);
        EXPECT_FALSE(std::filesystem::exists(home));
        EXPECT_EQ(lines.front(), notWritten("Permission denied"));
        EXPECT_EQ(lines.size(), 2U);
        allow(folder.path(), 0700);
        EXPECT_EQ(store->integer("key"), 6);
        EXPECT_EQ(open()->integer("key"), 6);
    });
}

TEST_F(SqliteUserDefaultsPermission, AFileWhereAFolderBelongsLeavesEverythingInMemory) {
    putContents(folder / "tarnwick", "not a folder");
    file = folder / "tarnwick" / "settings.sqlite";
    const auto store = open();
    store->set("key", true);
    EXPECT_EQ(store->boolean("key"), true);
    EXPECT_THAT(lines, ElementsAre(notWritten("Not a directory")));
    EXPECT_FALSE(store->contains("other"));
    EXPECT_EQ(contentsOf(folder / "tarnwick"), "not a folder");
}

TEST_F(SqliteUserDefaultsPermission, AFolderInPlaceOfTheFileIsLeftAlone) {
    std::filesystem::create_directory(file);
    const auto store = open();
    store->set("key", true);
    EXPECT_EQ(store->boolean("key"), true);
    EXPECT_TRUE(std::filesystem::is_directory(file));
    EXPECT_THAT(lines, ElementsAre(notWritten("not a file")));
}

TEST_F(SqliteUserDefaultsPermission, APipeInPlaceOfTheFileIsLeftAlone) {
    ASSERT_EQ(::mkfifo(file.c_str(), 0600), 0);
    const auto store = open();
    store->set("key", true);
    EXPECT_EQ(store->boolean("key"), true);
    EXPECT_THAT(lines, ElementsAre(notWritten("not a file")));
}

}  // namespace
}  // namespace tarnwick::platform
