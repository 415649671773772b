#include "platform/linux/settings/sqlite_user_defaults_file.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <string>
#include <sys/stat.h>

#include "tests/platform/linux/settings/sqlite_user_defaults_fixture.h"

namespace tarnwick::platform {
namespace {

using tarnwick::testing::contentsOf;
using tarnwick::testing::putContents;
using SqliteUserDefaultsFile = tarnwick::testing::SqliteUserDefaultsFixture;

TEST_F(SqliteUserDefaultsFile, TheFileThatWasJudgedIsSetAside) {
    putContents(file, "bad");
    const SetAside done = setAside(file, identityOf(file));
    EXPECT_EQ(done.movedTo, damaged1);
    EXPECT_FALSE(done.error);
    EXPECT_EQ(contentsOf(damaged1), "bad");
    EXPECT_FALSE(std::filesystem::exists(file));
}

TEST_F(SqliteUserDefaultsFile, AFileThatHasTakenItsPlaceIsLeftThere) {
    putContents(file, "bad");
    const auto judged = identityOf(file);
    std::filesystem::rename(file, damaged1);
    putContents(file, "good");
    const SetAside done = setAside(file, judged);
    EXPECT_EQ(done.movedTo, std::nullopt);
    EXPECT_FALSE(done.error);
    EXPECT_EQ(contentsOf(file), "good");
    EXPECT_FALSE(std::filesystem::exists(damaged2));
}

TEST_F(SqliteUserDefaultsFile, AFileThatHasBeenWrittenMeanwhileIsLeftThere) {
    putContents(file, "");
    const auto judged = identityOf(file);
    putContents(file, "begun by another process");
    EXPECT_EQ(setAside(file, judged).movedTo, std::nullopt);
    EXPECT_EQ(contentsOf(file), "begun by another process");
}

TEST_F(SqliteUserDefaultsFile, AWriteIsNoticedByEveryPartOfItsTime) {
    putContents(file, "bad");
    const auto write = [this](timespec modified) {
        const timespec times[2] = {modified, modified};
        ASSERT_EQ(::utimensat(AT_FDCWD, file.c_str(), times, 0), 0);
    };
    write({1'700'000'000, 4'000'000});
    const auto judged = identityOf(file).value();
    write({1'700'000'000, 8'000'000});
    EXPECT_FALSE(identityOf(file)->isUnchanged(judged));
    write({1'700'000'001, 4'000'000});
    EXPECT_FALSE(identityOf(file)->isUnchanged(judged));
    write({1'700'000'000, 4'000'000});
    EXPECT_TRUE(identityOf(file)->isUnchanged(judged));
}

TEST_F(SqliteUserDefaultsFile, AFileThatAppearedMeanwhileIsLeftThere) {
    putContents(file, "good");
    EXPECT_EQ(setAside(file, std::nullopt).movedTo, std::nullopt);
    EXPECT_EQ(contentsOf(file), "good");
}

TEST_F(SqliteUserDefaultsFile, AFileThatHasGoneMeanwhileLeavesItsCompanionsToOthers) {
    putContents(file, "bad");
    const auto judged = identityOf(file);
    std::filesystem::remove(file);
    putContents(companionOf(file, "-wal"), "somebody else's");
    EXPECT_EQ(setAside(file, judged).movedTo, std::nullopt);
    EXPECT_EQ(contentsOf(companionOf(file, "-wal")), "somebody else's");
}

}  // namespace
}  // namespace tarnwick::platform
