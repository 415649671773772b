// A file that cannot be reached, read or written: values stay in memory until it can.
#include <cerrno>
#include <chrono>
#include <csignal>
#include <ctime>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <memory>
#include <sqlite3.h>
#include <string>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "platform/linux/sqlite_user_defaults.h"
#include "platform/linux/sqlite_user_defaults_file.h"
#include "tests/platform/linux/child_process.h"
#include "tests/platform/linux/raw_database.h"
#include "tests/platform/linux/sqlite_user_defaults_fixture.h"

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
using tarnwick::testing::contentsOf;
using tarnwick::testing::Pipe;
using tarnwick::testing::putContents;
using tarnwick::testing::RawDatabase;
using tarnwick::testing::SqliteUserDefaultsFixture;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

constexpr uid_t kNobody = 65534;

class SqliteUserDefaultsTrouble : public SqliteUserDefaultsFixture {
 protected:
    std::string notWritten(const std::string& why) const {
        return "settings: " + file.native() + " cannot be written (" + why +
               "); changes are kept in memory and written as soon as they can be";
    }
    std::string notRead(const std::string& why) const {
        return "settings: " + file.native() + " cannot be read (" + why +
               "); the values last known or the defaults are used";
    }
    void makeStore() {
        const auto store = open();
        store->set("old", std::int64_t{1});
        store->set("other", std::string("x"));
    }
    /// Runs `body` as somebody whom permissions bind, and who owns the folder.
    template <class Body>
    void asUser(const Body& body) {
        if (::geteuid() == 0) {
            ASSERT_EQ(::chown(folder.path().c_str(), kNobody, kNobody), 0);
            for (const std::string& name : names()) {
                ASSERT_EQ(::chown((folder.path() / name).c_str(), kNobody, kNobody), 0);
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
    void allow(const std::filesystem::path& path, mode_t mode) {
        ASSERT_EQ(::chmod(path.c_str(), mode), 0);
    }
};

// Permissions.

TEST_F(SqliteUserDefaultsTrouble, AReadOnlyFileIsReadAndWritesStayInMemory) {
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

TEST_F(SqliteUserDefaultsTrouble, AFileThatBecomesWritableGetsTheValuesWithTheNextRead) {
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

TEST_F(SqliteUserDefaultsTrouble, AFileThatBecomesWritableGetsTheValuesWithTheNextWrite) {
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

TEST_F(SqliteUserDefaultsTrouble, AFileThatBecomesWritableGetsTheValuesAtTheEnd) {
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

TEST_F(SqliteUserDefaultsTrouble, AFileInAReadOnlyFolderIsReadAndWritesStayInMemory) {
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

TEST_F(SqliteUserDefaultsTrouble, AReadOnlyFileUnderAnOddNameIsRead) {
    file = folder / "a?b#c%20d";
    makeStore();
    asUser([&] {
        allow(folder.path(), 0500);
        EXPECT_EQ(open()->integer("old"), 1);
        EXPECT_THAT(lines, IsEmpty());
        allow(folder.path(), 0700);
    });
}

TEST_F(SqliteUserDefaultsTrouble, AFileThatBecomesReadOnlyWhileInUseKeepsWhatItHas) {
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

TEST_F(SqliteUserDefaultsTrouble, AReadOnlyFolderWithoutAFileLeavesEverythingInMemory) {
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

TEST_F(SqliteUserDefaultsTrouble, AFileThatMayNotBeReadIsNotTakenForAnAbsentOne) {
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

TEST_F(SqliteUserDefaultsTrouble, ADamagedFileThatCannotBeMovedIsLeftAlone) {
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

TEST_F(SqliteUserDefaultsTrouble, WithoutAHomeDirectoryEverythingStaysInMemory) {
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

TEST_F(SqliteUserDefaultsTrouble, AHomeDirectoryThatCannotBeMadeLeavesEverythingInMemory) {
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

TEST_F(SqliteUserDefaultsTrouble, AFileWhereAFolderBelongsLeavesEverythingInMemory) {
    putContents(folder / "tarnwick", "not a folder");
    file = folder / "tarnwick" / "settings.sqlite";
    const auto store = open();
    store->set("key", true);
    EXPECT_EQ(store->boolean("key"), true);
    EXPECT_THAT(lines, ElementsAre(notWritten("Not a directory")));
    EXPECT_EQ(contentsOf(folder / "tarnwick"), "not a folder");
}

TEST_F(SqliteUserDefaultsTrouble, AFolderInPlaceOfTheFileIsLeftAlone) {
    std::filesystem::create_directory(file);
    const auto store = open();
    store->set("key", true);
    EXPECT_EQ(store->boolean("key"), true);
    EXPECT_TRUE(std::filesystem::is_directory(file));
    EXPECT_THAT(lines, ElementsAre(notWritten("not a file")));
}

TEST_F(SqliteUserDefaultsTrouble, APipeInPlaceOfTheFileIsLeftAlone) {
    ASSERT_EQ(::mkfifo(file.c_str(), 0600), 0);
    const auto store = open();
    store->set("key", true);
    EXPECT_EQ(store->boolean("key"), true);
    EXPECT_THAT(lines, ElementsAre(notWritten("not a file")));
}

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

TEST_F(SqliteUserDefaultsTrouble, AFolderThatAnotherKeepsLockedIsUsedAllTheSame) {
    const FolderLock other(folder.path());
    countWaits = true;
    open()->set("key", true);
    EXPECT_EQ(open()->boolean("key"), true);
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
