// A file that others hold, and disks that are full or broken: values stay in memory until it works.
#include <cerrno>
#include <chrono>
#include <csignal>
#include <ctime>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sqlite3.h>
#include <string>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "platform/linux/settings/sqlite_user_defaults.h"
#include "platform/linux/settings/sqlite_user_defaults_file.h"
#include "tests/platform/linux/child_process.h"
#include "tests/platform/linux/settings/raw_database.h"
#include "tests/platform/linux/settings/sqlite_user_defaults_trouble_fixture.h"

namespace {
/// While set, waiting takes no time and is counted.
bool countWaits = false;
int waits = 0;

int wait(const timespec& time) {
    ++waits;
    return countWaits ? 0 : static_cast<int>(::syscall(SYS_nanosleep, &time, nullptr));
}
}  // namespace

/// Both stand before the C library's.
extern "C" int usleep(useconds_t microseconds) {
    return wait({microseconds / 1'000'000, microseconds % 1'000'000 * 1'000});
}
extern "C" int nanosleep(const timespec* time, timespec*) {
    return wait(*time);
}

namespace tarnwick::platform {
namespace {

using tarnwick::testing::ChildProcess;
using tarnwick::testing::Pipe;
using tarnwick::testing::putContents;
using tarnwick::testing::RawDatabase;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

using SqliteUserDefaultsTrouble = tarnwick::testing::SqliteUserDefaultsTroubleFixture;

// Locks.

TEST_F(SqliteUserDefaultsTrouble, WhileAnotherWritesReadsGoOnAndWritesWaitInMemory) {
    makeStore();
    const auto store = open();
    RawDatabase other(file);
    other.run("BEGIN IMMEDIATE");
    store->set("old", std::int64_t{2});
    EXPECT_EQ(store->integer("old"), 2);
    EXPECT_EQ(store->text("other"), "x");
    EXPECT_EQ(other.value("SELECT value FROM defaults WHERE key = 'old'"), "1");
    EXPECT_THAT(lines, ElementsAre(notWritten("another program holds it")));
    other.run("COMMIT");
    store->object("other");
    EXPECT_EQ(other.value("SELECT value FROM defaults WHERE key = 'old'"), "2");
    EXPECT_EQ(lines.size(), 1U);
}

TEST_F(SqliteUserDefaultsTrouble, ValuesThatWaitedAreWrittenWithTheNextWriteTogether) {
    makeStore();
    const auto store = open();
    RawDatabase other(file);
    other.run("BEGIN IMMEDIATE");
    store->set("a", std::int64_t{1});
    store->set("b", std::int64_t{2});
    store->set("a", std::int64_t{3});
    other.run("COMMIT");
    store->set("c", std::int64_t{4});
    const auto reader = open();
    EXPECT_EQ(reader->integer("a"), 3);
    EXPECT_EQ(reader->integer("b"), 2);
    EXPECT_EQ(reader->integer("c"), 4);
}

TEST_F(SqliteUserDefaultsTrouble, ValuesThatWaitedAreWrittenAtTheEnd) {
    makeStore();
    auto store = open();
    RawDatabase other(file);
    other.run("BEGIN IMMEDIATE");
    store->set("a", std::int64_t{1});
    other.run("COMMIT");
    store.reset();
    EXPECT_EQ(open()->integer("a"), 1);
}

TEST_F(SqliteUserDefaultsTrouble, AProcessThatHoldsTheFileAndDiesHoldsNothingUp) {
    makeStore();
    Pipe held;
    ChildProcess child([&] {
        RawDatabase other(file);
        other.run("BEGIN EXCLUSIVE");
        held.send();
        Pipe never;
        never.receive();
    });
    ASSERT_TRUE(held.receive());
    const auto store = open();
    store->set("key", true);
    EXPECT_EQ(store->boolean("key"), true);
    EXPECT_FALSE(open()->contains("key"));
    child.kill();
    store->object("other");
    EXPECT_EQ(open()->boolean("key"), true);
}

TEST_F(SqliteUserDefaultsTrouble, AFileThatIsLockedForReadingFromTheStartIsNotTakenForAnEmptyOne) {
    makeStore();
    Pipe held;
    ChildProcess child([&] {
        RawDatabase other(file);
        other.run("PRAGMA locking_mode = EXCLUSIVE; BEGIN EXCLUSIVE");
        held.send();
        Pipe never;
        never.receive();
    });
    ASSERT_TRUE(held.receive());
    const auto store = open();
    EXPECT_EQ(store->object("old"), std::nullopt);
    EXPECT_TRUE(store->contains("old"));
    store->set("key", true);
    EXPECT_EQ(store->boolean("key"), true);
    EXPECT_THAT(lines, ElementsAre(notRead("another program holds it"),
                                   notWritten("another program holds it")));
    child.kill();
    EXPECT_EQ(store->integer("old"), 1);
    EXPECT_EQ(open()->boolean("key"), true);
    EXPECT_THAT(names(), ::testing::Not(::testing::Contains("settings.sqlite.damaged-1")));
}

TEST_F(SqliteUserDefaultsTrouble, AnAccessWaitsForAnotherOnce) {
    patience = std::chrono::milliseconds(200);
    makeStore();
    const auto store = open();
    EXPECT_EQ(store->integer("old"), 1);
    RawDatabase other(file);
    other.run("BEGIN IMMEDIATE");
    countWaits = true;
    waits = 0;
    store->set("key", true);
    EXPECT_GT(waits, 0);
    waits = 0;
    for (int i = 0; i < 5; ++i) {
        store->set("key", false);
        EXPECT_EQ(store->integer("old"), 1);
    }
    EXPECT_EQ(waits, 0);
    other.run("COMMIT");
    store->set("key", true);
    other.run("BEGIN IMMEDIATE");
    store->set("key", false);
    EXPECT_GT(waits, 0);
    countWaits = false;
}

TEST_F(SqliteUserDefaultsTrouble, TheLastAttemptIsAPatientOne) {
    patience = std::chrono::milliseconds(200);
    makeStore();
    auto store = open();
    RawDatabase other(file);
    other.run("BEGIN IMMEDIATE");
    countWaits = true;
    store->set("key", true);
    waits = 0;
    store.reset();
    EXPECT_GT(waits, 0);
    countWaits = false;
}

TEST_F(SqliteUserDefaultsTrouble, AFileIsOpenedByOneProcessAtATimeButNobodyWaitsForEver) {
    const FolderLock other(folder.path());
    countWaits = true;
    waits = 0;
    open()->set("key", true);
    EXPECT_GT(waits, 0);
    waits = 0;
    const auto store = open();
    EXPECT_EQ(store->boolean("key"), true);
    EXPECT_GT(waits, 0);
    waits = 0;
    store->set("key", false);
    EXPECT_EQ(store->boolean("key"), false);
    EXPECT_EQ(waits, 0);
    countWaits = false;
}

// No space.

TEST_F(SqliteUserDefaultsTrouble, WithoutSpaceValuesStayInMemoryUntilThereIsSome) {
    makeStore();
    ChildProcess child([&] {
        std::signal(SIGXFSZ, SIG_IGN);
        const auto store = open();
        EXPECT_EQ(store->integer("old"), 1);
        rlimit limit{};
        ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &limit), 0);
        const rlimit none{0, limit.rlim_max};
        ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &none), 0);
        store->set("old", std::int64_t{2});
        store->set("new", std::string(10'000, 'n'));
        EXPECT_EQ(store->integer("old"), 2);
        EXPECT_EQ(store->text("new"), std::string(10'000, 'n'));
        EXPECT_EQ(store->text("other"), "x");
        EXPECT_THAT(lines, ElementsAre(HasSubstr(" cannot be written (")));
        ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &limit), 0);
        EXPECT_EQ(store->text("other"), "x");
        EXPECT_EQ(open()->integer("old"), 2);
        EXPECT_EQ(open()->text("new"), std::string(10'000, 'n'));
    });
    EXPECT_EQ(child.wait(), 0);
    EXPECT_EQ(open()->integer("old"), 2);
    EXPECT_THAT(names(), ElementsAre("settings.sqlite"));
}

/// Lets one of SQLite's system calls fail as long as it lives.
class FailingCall {
 public:
    FailingCall(const char* name, sqlite3_syscall_ptr failing) : name_(name) { put(failing); }
    FailingCall(const FailingCall&) = delete;
    FailingCall& operator=(const FailingCall&) = delete;
    ~FailingCall() { put(nullptr); }

 private:
    void put(sqlite3_syscall_ptr call) {
        sqlite3_vfs* system = sqlite3_vfs_find(nullptr);
        EXPECT_EQ(system->xSetSystemCall(system, name_, call), SQLITE_OK);
    }

    const char* name_;
};

ssize_t writeOnFullDisk(int, const void*, std::size_t, off64_t) {
    errno = ENOSPC;
    return -1;
}

ssize_t readFromBrokenDisk(int, void*, std::size_t, off64_t) {
    errno = EIO;
    return -1;
}

struct FullDisk : FailingCall {
    FullDisk() : FailingCall("pwrite64", reinterpret_cast<sqlite3_syscall_ptr>(&writeOnFullDisk)) {}
};

struct BrokenDisk : FailingCall {
    BrokenDisk()
        : FailingCall("pread64", reinterpret_cast<sqlite3_syscall_ptr>(&readFromBrokenDisk)) {}
};

TEST_F(SqliteUserDefaultsTrouble, WhileTheFileCannotBeReadTheValuesLastSeenAreAnswered) {
    makeStore();
    const auto store = open();
    EXPECT_EQ(store->integer("old"), 1);
    EXPECT_EQ(store->object("absent"), std::nullopt);
    store->set("written", std::int64_t{3});
    const auto other = open();
    other->set("old", std::int64_t{2});
    {
        const BrokenDisk broken;
        EXPECT_EQ(store->integer("old"), 1);
        EXPECT_EQ(store->integer("written"), 3);
        EXPECT_EQ(store->object("other"), std::nullopt);
        EXPECT_TRUE(store->contains("other"));
        EXPECT_THAT(lines, ElementsAre(HasSubstr(" cannot be read (")));
    }
    EXPECT_EQ(store->integer("old"), 2);
    EXPECT_EQ(store->text("other"), "x");
    EXPECT_THAT(names(), ::testing::Not(::testing::Contains("settings.sqlite.damaged-1")));
}

TEST_F(SqliteUserDefaultsTrouble, OnAFullDiskValuesStayInMemoryUntilThereIsSpace) {
    makeStore();
    const auto store = open();
    EXPECT_EQ(store->integer("old"), 1);
    {
        const FullDisk full;
        store->set("old", std::int64_t{2});
        EXPECT_EQ(store->integer("old"), 2);
        EXPECT_EQ(store->text("other"), "x");
        EXPECT_THAT(lines, ElementsAre(notWritten("the disk is full")));
    }
    EXPECT_EQ(store->text("other"), "x");
    EXPECT_EQ(open()->integer("old"), 2);
}

TEST_F(SqliteUserDefaultsTrouble, AFileIsStillReadByAProgramStartedOnAFullDisk) {
    makeStore();
    auto store = open();
    {
        const FullDisk full;
        EXPECT_EQ(store->integer("old"), 1);
        EXPECT_EQ(store->text("other"), "x");
        EXPECT_FALSE(store->contains("new"));
        EXPECT_THAT(lines, IsEmpty());
        store->set("old", std::int64_t{2});
        EXPECT_EQ(store->integer("old"), 2);
        EXPECT_THAT(lines, ElementsAre(notWritten("the disk is full")));
    }
    EXPECT_EQ(store->text("other"), "x");
    EXPECT_EQ(open()->integer("old"), 2);
    store.reset();
    EXPECT_THAT(names(), ElementsAre("settings.sqlite"));
}

TEST_F(SqliteUserDefaultsTrouble, WithoutSpaceForAFreshFileNothingIsLostEither) {
    ChildProcess child([&] {
        std::signal(SIGXFSZ, SIG_IGN);
        rlimit limit{};
        ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &limit), 0);
        const rlimit none{0, limit.rlim_max};
        ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &none), 0);
        const auto store = open();
        EXPECT_EQ(store->object("key"), std::nullopt);
        store->set("key", true);
        EXPECT_EQ(store->boolean("key"), true);
        ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &limit), 0);
        EXPECT_EQ(store->boolean("key"), true);
        EXPECT_EQ(open()->boolean("key"), true);
    });
    EXPECT_EQ(child.wait(), 0);
    EXPECT_EQ(open()->boolean("key"), true);
    EXPECT_THAT(names(), ElementsAre("settings.sqlite"));
}

TEST_F(SqliteUserDefaultsTrouble, AWriteThatFindsSpaceForHalfOfItLeavesTheFileSound) {
    makeStore();
    for (rlim_t bytes = 4'000; bytes <= 60'000; bytes += 3'500) {
        ChildProcess child([&] {
            std::signal(SIGXFSZ, SIG_IGN);
            rlimit limit{};
            ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &limit), 0);
            const auto store = open();
            store->object("old");
            const rlimit little{bytes, limit.rlim_max};
            ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &little), 0);
            for (int i = 0; i < 8; ++i) {
                store->set("big" + std::to_string(i), std::string(6'000, 'n'));
            }
            for (int i = 0; i < 8; ++i) {
                EXPECT_EQ(store->text("big" + std::to_string(i)), std::string(6'000, 'n'));
            }
            ::_exit(::testing::Test::HasFailure() ? 1 : 0);
        });
        EXPECT_EQ(child.wait(), 0) << bytes;
        EXPECT_EQ(open()->integer("old"), 1) << bytes;
        EXPECT_THAT(lines, IsEmpty()) << bytes;
    }
}

// Telling.

TEST_F(SqliteUserDefaultsTrouble, EachThingIsSaidOnce) {
    file = folder / "tarnwick" / "settings.sqlite";
    putContents(folder / "tarnwick", "not a folder");
    const auto store = open();
    for (int i = 0; i < 10; ++i) {
        store->set("key", std::int64_t{i});
        store->object("absent");
        store->contains("key");
    }
    EXPECT_THAT(lines, ElementsAre(notWritten("Not a directory"), notRead("Not a directory")));
}

TEST_F(SqliteUserDefaultsTrouble, NothingIsSaidWhileAllIsWell) {
    patience = SqliteUserDefaults::kPatience;
    makeStore();
    const auto store = open();
    store->set("key", true);
    store->object("absent");
    EXPECT_THAT(lines, IsEmpty());
}

}  // namespace
}  // namespace tarnwick::platform
