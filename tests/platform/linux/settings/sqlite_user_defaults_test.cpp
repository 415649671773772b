#include "platform/linux/settings/sqlite_user_defaults.h"

#include <cmath>
#include <cstdint>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>
#include <map>
#include <optional>
#include <string>
#include <sys/stat.h>
#include <thread>
#include <vector>

#include "tests/platform/linux/child_process.h"
#include "tests/platform/linux/settings/counted_syncs.h"
#include "tests/platform/linux/settings/raw_database.h"
#include "tests/platform/linux/settings/sqlite_user_defaults_fixture.h"

namespace tarnwick::platform {
namespace {

using tarnwick::testing::ChildProcess;
using tarnwick::testing::Pipe;
using tarnwick::testing::RawDatabase;
using tarnwick::testing::SqliteUserDefaultsFixture;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using testing::syncs;

using SqliteUserDefaultsTest = SqliteUserDefaultsFixture;

// Values.

struct ValueRow {
    const char* name;
    DefaultsValue value;
};

bool isNaN(const DefaultsValue& value) {
    if (const double* number = std::get_if<double>(&value)) {
        return std::isnan(*number);
    }
    const Date* date = std::get_if<Date>(&value);
    return date != nullptr && std::isnan(date->secondsSince1970);
}

class SqliteUserDefaultsValue : public SqliteUserDefaultsFixture,
                                public ::testing::WithParamInterface<ValueRow> {
 protected:
    static void expectTheValue(const std::optional<DefaultsValue>& read) {
        const DefaultsValue& expected = GetParam().value;
        ASSERT_TRUE(read.has_value());
        if (isNaN(expected)) {
            EXPECT_TRUE(isNaN(*read));
            EXPECT_EQ(read->index(), expected.index());
        } else {
            EXPECT_EQ(*read, expected);
        }
        if (const double* number = std::get_if<double>(&*read)) {
            EXPECT_EQ(std::signbit(*number), std::signbit(std::get<double>(expected)));
        }
    }
};

TEST_P(SqliteUserDefaultsValue, ComesBackWithItsType) {
    const auto store = open();
    store->set("key", GetParam().value);
    expectTheValue(store->object("key"));
    EXPECT_TRUE(store->contains("key"));
}

TEST_P(SqliteUserDefaultsValue, ComesBackAfterReopening) {
    open()->set("key", GetParam().value);
    expectTheValue(open()->object("key"));
    EXPECT_THAT(lines, IsEmpty());
}

TEST_P(SqliteUserDefaultsValue, IsSeenByAnotherConnectionAtOnce) {
    const auto writer = open();
    const auto reader = open();
    EXPECT_FALSE(reader->contains("key"));
    writer->set("key", GetParam().value);
    expectTheValue(reader->object("key"));
}

TEST_P(SqliteUserDefaultsValue, ReplacesAValueOfAnotherType) {
    const auto store = open();
    store->set("key", std::string("before"));
    store->set("key", GetParam().value);
    expectTheValue(store->object("key"));
    store->set("key", std::int64_t{7});
    EXPECT_EQ(store->object("key"), DefaultsValue(std::int64_t{7}));
}

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

INSTANTIATE_TEST_SUITE_P(
    Values, SqliteUserDefaultsValue,
    ::testing::Values(
        ValueRow{"True", true}, ValueRow{"False", false}, ValueRow{"Zero", std::int64_t{0}},
        ValueRow{"One", std::int64_t{1}}, ValueRow{"MinusOne", std::int64_t{-1}},
        ValueRow{"LargestInteger", std::numeric_limits<std::int64_t>::max()},
        ValueRow{"SmallestInteger", std::numeric_limits<std::int64_t>::min()},
        ValueRow{"OddAboveTwoToThe53rd", std::int64_t{9'007'199'254'740'993}},
        ValueRow{"Fraction", 0.1}, ValueRow{"WholeDouble", 80.0}, ValueRow{"ZeroDouble", 0.0},
        ValueRow{"MinusZero", -0.0}, ValueRow{"LargestDouble", std::numeric_limits<double>::max()},
        ValueRow{"SmallestDouble", std::numeric_limits<double>::denorm_min()},
        ValueRow{"NotANumber", kNaN}, ValueRow{"Infinity", kInfinity},
        ValueRow{"MinusInfinity", -kInfinity}, ValueRow{"EmptyText", std::string()},
        ValueRow{"Text", std::string("iconOnly")}, ValueRow{"TextOfDigits", std::string("0042")},
        ValueRow{"TextWithQuotes", std::string("a'b\"c;--")},
        ValueRow{"TextWithZeroBytes", std::string("\0a\0\0b\0", 6)},
        ValueRow{"TextOfOneZeroByte", std::string("\0", 1)},
        ValueRow{"NonASCIIText", std::string("größe ⌘L 温度 🌡")},
        ValueRow{"TextThatIsNotUTF8", std::string("\xFF\xFE\xC3(")},
        ValueRow{"LongText", std::string(300'000, 'x')}, ValueRow{"ADate", Date{1'763'696'195.25}},
        ValueRow{"ADateBefore1970", Date{-1.5}}, ValueRow{"ADateThatIsNotANumber", Date{kNaN}},
        ValueRow{"DistantFuture", Date{kInfinity}}),
    [](const auto& test) { return std::string(test.param.name); });

TEST_F(SqliteUserDefaultsTest, AnAbsentKeyIsAbsent) {
    const auto store = open();
    EXPECT_EQ(store->object("key"), std::nullopt);
    EXPECT_FALSE(store->contains("key"));
}

TEST_F(SqliteUserDefaultsTest, KeysAreKeptApartByteByByte) {
    const std::vector<std::string> keys = {"",      "a",  "A",        std::string("a\0b", 3),
                                           "größe", "a ", "a%_'\"--", std::string("a\0c", 3)};
    {
        const auto store = open();
        for (std::size_t i = 0; i < keys.size(); ++i) {
            store->set(keys[i], static_cast<std::int64_t>(i));
        }
    }
    const auto store = open();
    for (std::size_t i = 0; i < keys.size(); ++i) {
        EXPECT_EQ(store->integer(keys[i]), static_cast<std::int64_t>(i)) << keys[i];
    }
}

TEST_F(SqliteUserDefaultsTest, ManyKeysAreKept) {
    {
        const auto store = open();
        for (int i = 0; i < 500; ++i) {
            store->set("key" + std::to_string(i), std::string(100, 'a'));
        }
    }
    const auto store = open();
    for (int i = 0; i < 500; ++i) {
        EXPECT_EQ(store->text("key" + std::to_string(i)), std::string(100, 'a'));
    }
}

// The file.

TEST_F(SqliteUserDefaultsTest, TheDiskIsTouchedWithTheFirstAccessOnly) {
    const auto store = open();
    EXPECT_THAT(names(), IsEmpty());
    store->contains("key");
    EXPECT_TRUE(std::filesystem::exists(file));
}

TEST_F(SqliteUserDefaultsTest, ReadsStoreNoValue) {
    open()->object("key");
    EXPECT_EQ(RawDatabase(file).value("SELECT count(*) FROM defaults"), "0");
}

TEST_F(SqliteUserDefaultsTest, OneFileIsLeftAfterTheStoreIsClosed) {
    open()->set("key", true);
    EXPECT_THAT(names(), ElementsAre("settings.sqlite"));
}

TEST_F(SqliteUserDefaultsTest, AFileThatWasClosedHoldsEverythingByItself) {
    const auto store = open();
    store->set("key", std::string("first"));
    store->close();
    EXPECT_THAT(names(), ElementsAre("settings.sqlite"));
    const auto copy = folder / "copy.sqlite";
    std::filesystem::copy_file(file, copy);
    EXPECT_EQ(openAt(copy)->text("key"), "first");
    // The store goes on.
    EXPECT_EQ(store->text("key"), "first");
    store->set("key", std::string("second"));
    EXPECT_EQ(store->text("key"), "second");
}

TEST_F(SqliteUserDefaultsTest, ACopyOfTheFileCanBeRestored) {
    open()->set("key", std::string("first"));
    const auto copy = folder / "copy.sqlite";
    std::filesystem::copy_file(file, copy);
    const auto store = open();
    store->set("key", std::string("second"));
    // As at the end of the program, where nothing is destroyed.
    store->close();
    std::filesystem::copy_file(copy, file, std::filesystem::copy_options::overwrite_existing);
    EXPECT_EQ(open()->text("key"), "first");
}

TEST_F(SqliteUserDefaultsTest, AFileThatOthersHaveOpenHoldsEverythingToo) {
    const auto other = open();
    const auto store = open();
    store->set("key", std::string("value"));
    EXPECT_EQ(other->text("key"), "value");
    store->close();
    const auto copy = folder / "copy.sqlite";
    std::filesystem::copy_file(file, copy);
    EXPECT_EQ(openAt(copy)->text("key"), "value");
}

TEST_F(SqliteUserDefaultsTest, TheFileHoldsOneTableOfTypedValues) {
    open()->set("settings.cpuHighThreshold", 91.5);
    RawDatabase raw(file);
    EXPECT_EQ(raw.value("SELECT group_concat(name) FROM sqlite_master WHERE type = 'table'"),
              "defaults");
    EXPECT_EQ(raw.value("SELECT type || ' ' || value FROM defaults "
                        "WHERE key = 'settings.cpuHighThreshold'"),
              "double 91.5");
    EXPECT_EQ(raw.value("PRAGMA journal_mode"), "wal");
    EXPECT_EQ(raw.value("PRAGMA user_version"), "1");
}

TEST_F(SqliteUserDefaultsTest, AWriteIsForcedOntoTheDiskBeforeItReturns) {
    const auto store = open();
    store->set("key", true);
    for (const bool value : {false, true}) {
        const int before = syncs;
        store->set("key", value);
        EXPECT_GT(syncs, before);
    }
}

TEST_F(SqliteUserDefaultsTest, AWriteOfAnEqualValueLeavesTheDiskAlone) {
    const auto store = open();
    store->set("key", std::string("value"));
    const int before = syncs;
    store->set("key", std::string("value"));
    EXPECT_EQ(syncs, before);
}

TEST_F(SqliteUserDefaultsTest, MissingFoldersAreMadeForThisUserOnly) {
    const auto deep = folder / "a" / "b" / "tarnwick" / "settings.sqlite";
    openAt(deep)->set("key", true);
    EXPECT_EQ(openAt(deep)->boolean("key"), true);
    for (auto made = deep.parent_path(); made != folder.path(); made = made.parent_path()) {
        struct stat status {};
        ASSERT_EQ(::stat(made.c_str(), &status), 0);
        EXPECT_EQ(status.st_mode & 07777, 0700U) << made;
    }
    EXPECT_THAT(lines, IsEmpty());
}

TEST_F(SqliteUserDefaultsTest, AFolderThatIsThereKeepsItsPermissions) {
    ASSERT_EQ(::chmod(folder.path().c_str(), 0750), 0);
    open()->set("key", true);
    struct stat status {};
    ASSERT_EQ(::stat(folder.path().c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0750U);
}

TEST_F(SqliteUserDefaultsTest, APathWithOddCharactersWorks) {
    const auto odd = folder / "a ?b#c%20d'é" / "settings.sqlite";
    openAt(odd)->set("key", true);
    EXPECT_EQ(openAt(odd)->boolean("key"), true);
    EXPECT_TRUE(std::filesystem::exists(odd));
}

TEST_F(SqliteUserDefaultsTest, ALinkToTheFileIsFollowed) {
    std::filesystem::create_directory(folder / "elsewhere");
    std::filesystem::create_symlink(folder / "elsewhere" / "real.sqlite", file);
    open()->set("key", true);
    EXPECT_EQ(open()->boolean("key"), true);
    EXPECT_TRUE(std::filesystem::is_symlink(file));
    EXPECT_TRUE(std::filesystem::is_regular_file(folder / "elsewhere" / "real.sqlite"));
}

// Where the file lies.

std::filesystem::path fileIn(const std::map<std::string, const char*>& variables) {
    return userDefaultsFile([&variables](const char* name) {
        const auto found = variables.find(name);
        return found == variables.end() ? nullptr : found->second;
    });
}

TEST(UserDefaultsFile, LiesUnderTheDataHome) {
    EXPECT_EQ(fileIn({{"XDG_DATA_HOME", "/data"}, {"HOME", "/home/a"}}),
              "/data/tarnwick/settings.sqlite");
}

TEST(UserDefaultsFile, LiesUnderTheHomeDirectoryWithoutADataHome) {
    EXPECT_EQ(fileIn({{"HOME", "/home/a"}}), "/home/a/.local/share/tarnwick/settings.sqlite");
}

TEST(UserDefaultsFile, AnEmptyOrRelativeDataHomeIsIgnored) {
    for (const char* ignored : {"", "data", "./data", "~/data"}) {
        EXPECT_EQ(fileIn({{"XDG_DATA_HOME", ignored}, {"HOME", "/home/a"}}),
                  "/home/a/.local/share/tarnwick/settings.sqlite");
    }
}

TEST(UserDefaultsFile, ThereIsNoneWithoutAHomeDirectory) {
    EXPECT_EQ(fileIn({}), "");
    EXPECT_EQ(fileIn({{"HOME", ""}}), "");
    EXPECT_EQ(fileIn({{"HOME", "relative"}}), "");
}

// Several users of one store.

TEST_F(SqliteUserDefaultsTest, TwoProcessesSeeEachOthersWrites) {
    const auto store = open();
    store->set("mine", std::int64_t{1});
    Pipe ready;
    ChildProcess child([&] {
        const auto other = open();
        EXPECT_EQ(other->integer("mine"), 1);
        other->set("mine", std::int64_t{2});
        other->set("theirs", std::string("x"));
        ready.send();
    });
    ASSERT_TRUE(ready.receive());
    EXPECT_EQ(store->integer("mine"), 2);
    EXPECT_EQ(store->text("theirs"), "x");
    EXPECT_EQ(child.wait(), 0);
    EXPECT_EQ(store->integer("mine"), 2);
}

TEST_F(SqliteUserDefaultsTest, ProcessesThatWriteDifferentKeysLoseNothing) {
    patience = SqliteUserDefaults::kPatience;
    constexpr int kWrites = 40;
    const auto writer = [this](const std::string& name) {
        const auto store = open();
        for (int i = 0; i < kWrites; ++i) {
            store->set(name + std::to_string(i), std::int64_t{i});
        }
    };
    {
        ChildProcess a([&] { writer("a"); });
        ChildProcess b([&] { writer("b"); });
        ChildProcess c([&] { writer("c"); });
        EXPECT_EQ(a.wait(), 0);
        EXPECT_EQ(b.wait(), 0);
        EXPECT_EQ(c.wait(), 0);
    }
    const auto store = open();
    for (const char* name : {"a", "b", "c"}) {
        for (int i = 0; i < kWrites; ++i) {
            EXPECT_EQ(store->integer(name + std::to_string(i)), i) << name;
        }
    }
    EXPECT_THAT(names(), ::testing::Not(::testing::Contains("settings.sqlite.damaged-1")));
}

TEST_F(SqliteUserDefaultsTest, AProcessKilledBetweenWritesHasLostNoneThatReturned) {
    for (int round = 1; round <= 5; ++round) {
        Pipe written;
        ChildProcess child([&] {
            const auto store = open();
            for (std::int64_t i = 1;; ++i) {
                store->set("last", i * 10 + round);
                store->set("key" + std::to_string(i), i * round);
                written.send();
            }
        });
        written.closeWriting();
        std::int64_t returned = 0;
        while (returned < 25 * round && written.receive()) {
            ++returned;
        }
        child.kill();
        while (written.receive()) {
            ++returned;
        }
        ASSERT_GE(returned, 25 * round);
        const auto store = open();
        for (std::int64_t i = 1; i <= returned; ++i) {
            EXPECT_EQ(store->integer("key" + std::to_string(i)), i * round);
        }
        EXPECT_GE(store->integer("last"), returned * 10 + round);
        EXPECT_LE(store->integer("last"), (returned + 1) * 10 + round);
    }
    EXPECT_THAT(lines, IsEmpty());
}

TEST_F(SqliteUserDefaultsTest, ThreadsMayUseOneStoreAtOnce) {
    const auto store = open();
    std::vector<std::thread> threads;
    for (int thread = 0; thread < 4; ++thread) {
        threads.emplace_back([&store, thread] {
            const std::string key = "key" + std::to_string(thread);
            for (std::int64_t i = 0; i < 20; ++i) {
                store->set(key, i);
                EXPECT_EQ(store->integer(key), i);
                store->object("key0");
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    for (int thread = 0; thread < 4; ++thread) {
        EXPECT_EQ(store->integer("key" + std::to_string(thread)), 19);
    }
}

}  // namespace
}  // namespace tarnwick::platform
