// Files that are not what they should be: set aside or left alone, never overwritten.
#include <chrono>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "platform/linux/settings/sqlite_user_defaults.h"
#include "tests/platform/linux/child_process.h"
#include "tests/platform/linux/settings/raw_database.h"
#include "tests/platform/linux/settings/sqlite_user_defaults_fixture.h"

namespace tarnwick::platform {
namespace {

using tarnwick::testing::ChildProcess;
using tarnwick::testing::contentsOf;
using tarnwick::testing::Pipe;
using tarnwick::testing::putContents;
using tarnwick::testing::RawDatabase;
using tarnwick::testing::SqliteUserDefaultsFixture;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

std::string randomBytes(std::size_t count) {
    std::mt19937 generator(20240229);
    std::string bytes(count, '\0');
    for (char& byte : bytes) {
        byte = static_cast<char>(generator() & 0xFF);
    }
    return bytes;
}

class SqliteUserDefaultsDamage : public SqliteUserDefaultsFixture {
 protected:
    /// What the user is told about a file that was moved.
    std::string movedLine(const std::string& why = "is damaged") const {
        return "settings: " + file.native() + " " + why + " and was moved to " + damaged1.native() +
               "; a new file is begun";
    }
    /// A store of the program with `values` keys.
    void makeStore(int values = 3) {
        const auto store = open();
        for (int i = 0; i < values; ++i) {
            store->set("key" + std::to_string(i), std::int64_t{i});
        }
    }
};

// Damaged files.

TEST_F(SqliteUserDefaultsDamage, RandomBytesAreSetAsideAndAFreshStoreIsBegun) {
    const std::string garbage = randomBytes(20'000);
    putContents(file, garbage);
    {
        const auto store = open();
        EXPECT_EQ(store->object("key"), std::nullopt);
        EXPECT_FALSE(store->contains("key"));
        store->set("key", true);
        EXPECT_EQ(store->boolean("key"), true);
    }
    EXPECT_EQ(open()->boolean("key"), true);
    EXPECT_EQ(contentsOf(damaged1), garbage);
    EXPECT_THAT(lines, ElementsAre(movedLine()));
}

TEST_F(SqliteUserDefaultsDamage, AWriteAsFirstAccessSetsADamagedFileAside) {
    putContents(file, randomBytes(5'000));
    open()->set("key", true);
    EXPECT_EQ(open()->boolean("key"), true);
    EXPECT_EQ(contentsOf(damaged1), randomBytes(5'000));
    EXPECT_THAT(lines, ElementsAre(movedLine()));
}

TEST_F(SqliteUserDefaultsDamage, AFewStrayBytesAreSetAside) {
    for (const std::size_t size : {1U, 15U, 16U, 99U, 100U, 511U, 512U}) {
        lines.clear();
        std::filesystem::remove(damaged1);
        putContents(file, randomBytes(size));
        open()->set("key", true);
        EXPECT_EQ(contentsOf(damaged1), randomBytes(size)) << size;
        EXPECT_THAT(lines, ElementsAre(movedLine())) << size;
    }
}

TEST_F(SqliteUserDefaultsDamage, ATextFileIsSetAside) {
    putContents(file, "[settings]\ncpu=80\n");
    open()->contains("key");
    EXPECT_EQ(contentsOf(damaged1), "[settings]\ncpu=80\n");
}

TEST_F(SqliteUserDefaultsDamage, ADatabaseTruncatedAnywhereIsSetAside) {
    makeStore(200);
    const std::string whole = contentsOf(file);
    ASSERT_GT(whole.size(), 8192U);
    for (std::size_t size = 1; size < whole.size(); size += size < 200 ? 33 : 509) {
        lines.clear();
        std::filesystem::remove(damaged1);
        const std::string part = whole.substr(0, size);
        putContents(file, part);
        {
            const auto store = open();
            EXPECT_EQ(store->object("key7"), std::nullopt) << size;
            store->set("key7", std::int64_t{70});
            EXPECT_EQ(store->integer("key7"), 70) << size;
        }
        EXPECT_EQ(contentsOf(damaged1), part) << size;
        EXPECT_THAT(lines, ElementsAre(movedLine())) << size;
    }
}

TEST_F(SqliteUserDefaultsDamage, PagesOverwrittenWithGarbageAreSetAside) {
    makeStore(200);
    const std::string whole = contentsOf(file);
    for (std::size_t page = 0; page < whole.size(); page += 4096) {
        lines.clear();
        std::filesystem::remove(damaged1);
        std::string bytes = whole;
        bytes.replace(page, 4096, randomBytes(4096));
        putContents(file, bytes);
        open()->set("key7", std::int64_t{70});
        EXPECT_EQ(contentsOf(damaged1), bytes) << page;
        EXPECT_THAT(lines, ElementsAre(movedLine())) << page;
    }
}

TEST_F(SqliteUserDefaultsDamage, AnEmptyFileIsAFreshStore) {
    putContents(file, "");
    {
        const auto store = open();
        EXPECT_EQ(store->object("key"), std::nullopt);
        store->set("key", true);
    }
    EXPECT_EQ(open()->boolean("key"), true);
    EXPECT_THAT(lines, IsEmpty());
    EXPECT_THAT(names(), ElementsAre("settings.sqlite"));
}

TEST_F(SqliteUserDefaultsDamage, ADatabaseWithNothingInItIsAFreshStore) {
    RawDatabase(file).run("VACUUM");
    open()->set("key", true);
    EXPECT_EQ(open()->boolean("key"), true);
    EXPECT_THAT(lines, IsEmpty());
}

TEST_F(SqliteUserDefaultsDamage, AnEarlierDamagedFileIsNotOverwritten) {
    putContents(file, "first bad file");
    open()->contains("key");
    putContents(file, "second bad file");
    open()->contains("key");
    EXPECT_EQ(contentsOf(damaged1), "first bad file");
    EXPECT_EQ(contentsOf(damaged2), "second bad file");
    EXPECT_EQ(lines.size(), 2U);
}

TEST_F(SqliteUserDefaultsDamage, ANameOfWhichOnlyACompanionIsTakenIsLeftAlone) {
    putContents(folder / "settings.sqlite.damaged-1-wal", "kept");
    putContents(file, "bad file");
    open()->contains("key");
    EXPECT_EQ(contentsOf(folder / "settings.sqlite.damaged-1-wal"), "kept");
    EXPECT_EQ(contentsOf(damaged2), "bad file");
}

TEST_F(SqliteUserDefaultsDamage, TheCompanionsMoveWithTheirFile) {
    putContents(file, "bad file");
    putContents(folder / "settings.sqlite-wal", "its log");
    putContents(folder / "settings.sqlite-shm", "its index");
    putContents(folder / "settings.sqlite-journal", "its journal");
    open()->set("key", true);
    EXPECT_EQ(contentsOf(damaged1), "bad file");
    EXPECT_EQ(contentsOf(folder / "settings.sqlite.damaged-1-wal"), "its log");
    EXPECT_EQ(contentsOf(folder / "settings.sqlite.damaged-1-shm"), "its index");
    EXPECT_EQ(contentsOf(folder / "settings.sqlite.damaged-1-journal"), "its journal");
    EXPECT_EQ(open()->boolean("key"), true);
}

/// Leaves a file and its log as a process leaves them that is killed after `writes` writes.
void killAfterWrites(const std::filesystem::path& file, int writes) {
    Pipe ready;
    ChildProcess child([&] {
        SqliteUserDefaults store(file);
        for (int i = 0; i < writes; ++i) {
            store.set("key" + std::to_string(i), std::string(50, 'a'));
        }
        ready.send();
        Pipe never;
        never.receive();
    });
    ASSERT_TRUE(ready.receive());
    child.kill();
}

TEST_F(SqliteUserDefaultsDamage, ALogThatHoldsEverythingRepairsItsDatabase) {
    killAfterWrites(file, 10);
    putContents(file, randomBytes(4096));
    EXPECT_EQ(open()->text("key9"), std::string(50, 'a'));
    EXPECT_EQ(open()->text("key0"), std::string(50, 'a'));
    EXPECT_THAT(lines, IsEmpty());
}

TEST_F(SqliteUserDefaultsDamage, ALogThatCannotRepairItsDatabaseIsSetAsideWithIt) {
    killAfterWrites(file, 300);
    const std::string log = contentsOf(folder / "settings.sqlite-wal");
    ASSERT_FALSE(log.empty());
    const std::string garbage = randomBytes(contentsOf(file).size());
    putContents(file, garbage);
    open()->set("other", true);
    EXPECT_EQ(contentsOf(damaged1), garbage);
    EXPECT_EQ(contentsOf(folder / "settings.sqlite.damaged-1-wal"), log);
    EXPECT_EQ(open()->boolean("other"), true);
    EXPECT_THAT(lines, ElementsAre(movedLine()));
}

TEST_F(SqliteUserDefaultsDamage, ALogWithoutItsDatabaseIsSetAside) {
    for (const bool emptyFile : {false, true}) {
        lines.clear();
        std::filesystem::remove_all(file);
        std::filesystem::remove(folder / "settings.sqlite.damaged-1-wal");
        std::filesystem::remove(damaged1);
        if (emptyFile) {
            putContents(file, "");
        }
        putContents(folder / "settings.sqlite-wal", "what was written last");
        open()->set("key", true);
        EXPECT_EQ(contentsOf(folder / "settings.sqlite.damaged-1-wal"), "what was written last");
        EXPECT_THAT(lines, ElementsAre(movedLine()));
        EXPECT_EQ(open()->boolean("key"), true);
    }
}

/// Runs `body(0)`, `body(1)`, … in processes of their own that start together.
template <class Body>
void inSeveralProcesses(int count, const Body& body) {
    Pipe go;
    std::vector<std::unique_ptr<ChildProcess>> children;
    for (int i = 0; i < count; ++i) {
        children.push_back(std::make_unique<ChildProcess>([&] {
            go.closeWriting();
            go.receive();
            body(i);
        }));
    }
    go.closeWriting();
    for (const auto& child : children) {
        EXPECT_EQ(child->wait(), 0);
    }
}

TEST_F(SqliteUserDefaultsDamage, OneProcessOfSeveralSetsTheFileAside) {
    patience = std::chrono::seconds(10);
    for (int round = 0; round < 10; ++round) {
        std::filesystem::remove(damaged1);
        putContents(file, randomBytes(9'000));
        inSeveralProcesses(6, [&](int i) { open()->set("key" + std::to_string(i), true); });
        const auto store = open();
        for (int i = 0; i < 6; ++i) {
            EXPECT_EQ(store->boolean("key" + std::to_string(i)), true) << i;
        }
        EXPECT_EQ(contentsOf(damaged1), randomBytes(9'000));
        EXPECT_FALSE(std::filesystem::exists(damaged2));
    }
}

TEST_F(SqliteUserDefaultsDamage, SeveralProcessesMayBeginOneFile) {
    patience = std::chrono::seconds(10);
    for (int round = 0; round < 10; ++round) {
        std::filesystem::remove(file);
        inSeveralProcesses(6, [&](int i) {
            open()->set("key" + std::to_string(i), true);
            EXPECT_THAT(lines, IsEmpty());
        });
        const auto store = open();
        for (int i = 0; i < 6; ++i) {
            EXPECT_EQ(store->boolean("key" + std::to_string(i)), true) << i;
        }
    }
    EXPECT_THAT(names(), Not(Contains("settings.sqlite.damaged-1")));
}

TEST_F(SqliteUserDefaultsDamage, ALinkKeepsPointingWhereTheFreshFileIsBegun) {
    std::filesystem::create_directory(folder / "elsewhere");
    const auto real = folder / "elsewhere" / "real.sqlite";
    putContents(real, "bad file");
    std::filesystem::create_symlink(real, file);
    open()->set("key", true);
    EXPECT_TRUE(std::filesystem::is_symlink(file));
    EXPECT_EQ(contentsOf(folder / "elsewhere" / "real.sqlite.damaged-1"), "bad file");
    EXPECT_EQ(open()->boolean("key"), true);
}

// Databases of others.

TEST_F(SqliteUserDefaultsDamage, AnotherProgramsDatabaseIsSetAsideWhole) {
    RawDatabase(file).run("CREATE TABLE birds (name TEXT); INSERT INTO birds VALUES ('wren')");
    {
        const auto store = open();
        EXPECT_FALSE(store->contains("key"));
        store->set("key", true);
    }
    EXPECT_EQ(RawDatabase(damaged1).value("SELECT name FROM birds"), "wren");
    EXPECT_EQ(open()->boolean("key"), true);
    EXPECT_THAT(lines, ElementsAre(movedLine("belongs to another program")));
}

TEST_F(SqliteUserDefaultsDamage, ATableOfTheSameNameInAnotherProgramsDatabaseIsNotTouched) {
    RawDatabase(file).run(
        "CREATE TABLE defaults (key TEXT PRIMARY KEY, type TEXT, value);"
        "INSERT INTO defaults VALUES ('key', 'integer', 5)");
    open()->set("key", std::int64_t{6});
    EXPECT_EQ(RawDatabase(damaged1).value("SELECT value FROM defaults"), "5");
    EXPECT_EQ(open()->integer("key"), 6);
}

TEST_F(SqliteUserDefaultsDamage, AStoreWithoutItsTableIsSetAside) {
    makeStore();
    RawDatabase(file).run("ALTER TABLE defaults RENAME TO something");
    open()->set("key", true);
    EXPECT_EQ(RawDatabase(damaged1).value("SELECT count(*) FROM something"), "3");
    EXPECT_THAT(lines, ElementsAre(movedLine()));
}

TEST_F(SqliteUserDefaultsDamage, AStoreWithOtherColumnsIsSetAside) {
    makeStore();
    RawDatabase(file).run("ALTER TABLE defaults RENAME COLUMN type TO kind");
    open()->set("key", true);
    EXPECT_EQ(RawDatabase(damaged1).value("SELECT count(*) FROM defaults"), "3");
    EXPECT_THAT(lines, ElementsAre(movedLine()));
}

// Damage and change while the store is in use.

TEST_F(SqliteUserDefaultsDamage, AStoreSpoiltWhileInUseIsBegunAgainWithWhatIsKnown) {
    const auto store = open();
    store->set("written", std::int64_t{5});
    open()->set("read", std::string("x"));
    EXPECT_EQ(store->text("read"), "x");
    RawDatabase(file).run("ALTER TABLE defaults RENAME TO something");
    EXPECT_EQ(store->integer("written"), 5);
    EXPECT_EQ(store->text("read"), "x");
    EXPECT_THAT(lines, ElementsAre(movedLine()));
    const auto other = open();
    EXPECT_EQ(other->integer("written"), 5);
    EXPECT_EQ(other->text("read"), "x");
    EXPECT_EQ(RawDatabase(damaged1).value("SELECT count(*) FROM something"), "2");
}

TEST_F(SqliteUserDefaultsDamage, AWriteToAStoreSpoiltWhileInUseIsKeptInTheFreshOne) {
    const auto store = open();
    store->set("before", std::int64_t{5});
    RawDatabase(file).run("ALTER TABLE defaults RENAME TO something");
    store->set("after", std::int64_t{6});
    EXPECT_EQ(open()->integer("before"), 5);
    EXPECT_EQ(open()->integer("after"), 6);
}

TEST_F(SqliteUserDefaultsDamage, AValueThatIsGoneDoesNotComeBackInTheFreshStore) {
    const auto store = open();
    store->set("kept", true);
    store->set("gone", true);
    RawDatabase(file).run("DELETE FROM defaults WHERE key = 'gone'");
    EXPECT_FALSE(store->contains("gone"));
    RawDatabase(file).run("ALTER TABLE defaults RENAME TO something");
    EXPECT_EQ(store->boolean("kept"), true);
    EXPECT_EQ(store->object("gone"), std::nullopt);
    EXPECT_FALSE(open()->contains("gone"));
}

TEST_F(SqliteUserDefaultsDamage, AFileRemovedWhileInUseIsAFreshStore) {
    const auto store = open();
    store->set("key", true);
    std::filesystem::remove(file);
    std::filesystem::remove(folder / "settings.sqlite-wal");
    std::filesystem::remove(folder / "settings.sqlite-shm");
    EXPECT_EQ(store->object("key"), std::nullopt);
    store->set("other", true);
    EXPECT_EQ(open()->boolean("other"), true);
    EXPECT_THAT(lines, IsEmpty());
}

TEST_F(SqliteUserDefaultsDamage, WhatARemovedFileHeldDoesNotComeBack) {
    const auto store = open();
    store->set("gone", true);
    std::filesystem::remove(file);
    std::filesystem::remove(folder / "settings.sqlite-wal");
    std::filesystem::remove(folder / "settings.sqlite-shm");
    store->set("key", true);
    RawDatabase(file).run("ALTER TABLE defaults RENAME TO something");
    EXPECT_EQ(store->boolean("key"), true);
    EXPECT_EQ(store->object("gone"), std::nullopt);
    EXPECT_FALSE(open()->contains("gone"));
}

TEST_F(SqliteUserDefaultsDamage, AFileReplacedWhileInUseIsReadAndItsLogIsKept) {
    const auto store = open();
    store->set("key", std::int64_t{1});
    const auto aside = folder / "aside";
    std::filesystem::create_directory(aside);
    for (const char* name : {"settings.sqlite", "settings.sqlite-wal", "settings.sqlite-shm"}) {
        std::filesystem::rename(folder / name, aside / name);
    }
    const auto other = open();
    other->set("key", std::int64_t{2});
    EXPECT_EQ(store->integer("key"), 2);
    store->set("more", std::int64_t{3});
    EXPECT_EQ(other->integer("more"), 3);
    EXPECT_EQ(other->integer("key"), 2);
    EXPECT_EQ(open()->integer("key"), 2);
    EXPECT_EQ(openAt(aside / "settings.sqlite")->integer("key"), 1);
}

// Rows that make no sense.

struct StrangeRow {
    const char* name;
    const char* type;
    const char* value;
};

class SqliteUserDefaultsRow : public SqliteUserDefaultsDamage,
                              public ::testing::WithParamInterface<StrangeRow> {};

TEST_P(SqliteUserDefaultsRow, ReadsAsAbsentAndStays) {
    makeStore(1);
    RawDatabase(file).run(std::string("INSERT INTO defaults VALUES ('odd', ") + GetParam().type +
                          ", " + GetParam().value + ")");
    {
        const auto store = open();
        EXPECT_EQ(store->object("odd"), std::nullopt);
        EXPECT_EQ(store->object("odd"), std::nullopt);
        EXPECT_TRUE(store->contains("odd"));
        EXPECT_EQ(store->integer("key0"), 0);
        store->set("key0", std::int64_t{1});
    }
    EXPECT_EQ(RawDatabase(file).value("SELECT quote(type) || ' ' || quote(value) "
                                      "FROM defaults WHERE key = 'odd'"),
              std::string(GetParam().type) + " " + GetParam().value);
    EXPECT_THAT(lines, ElementsAre("settings: " + file.native() +
                                   " has a value under \"odd\" that cannot be read; it is left "
                                   "there and the default is used"));
}

INSTANTIATE_TEST_SUITE_P(Rows, SqliteUserDefaultsRow,
                         ::testing::Values(StrangeRow{"UnknownType", "'colour'", "'red'"},
                                           StrangeRow{"EmptyType", "''", "1"},
                                           StrangeRow{"TypeInCapitals", "'BOOL'", "1"},
                                           StrangeRow{"TypeThatIsNoText", "X'626F6F6C'", "1"},
                                           StrangeRow{"TwoAsBool", "'bool'", "2"},
                                           StrangeRow{"MinusOneAsBool", "'bool'", "-1"},
                                           StrangeRow{"TextAsBool", "'bool'", "'1'"},
                                           StrangeRow{"NullAsBool", "'bool'", "NULL"},
                                           StrangeRow{"FractionAsInteger", "'integer'", "1.5"},
                                           StrangeRow{"TextAsInteger", "'integer'", "'37'"},
                                           StrangeRow{"NullAsInteger", "'integer'", "NULL"},
                                           StrangeRow{"IntegerAsDouble", "'double'", "80"},
                                           StrangeRow{"TextAsDouble", "'double'", "'80.0'"},
                                           StrangeRow{"BytesAsDouble", "'double'", "X'00'"},
                                           StrangeRow{"NumberAsText", "'text'", "5"},
                                           StrangeRow{"BytesAsText", "'text'", "X'6162'"},
                                           StrangeRow{"NullAsText", "'text'", "NULL"},
                                           StrangeRow{"TextAsDate", "'date'", "'2024-02-29'"},
                                           StrangeRow{"IntegerAsDate", "'date'", "12"}),
                         [](const auto& test) { return std::string(test.param.name); });

TEST_F(SqliteUserDefaultsDamage, ARowThatMakesNoSenseIsReplacedByAWriteOfItsKey) {
    makeStore(1);
    RawDatabase(file).run("INSERT INTO defaults VALUES ('odd', 'colour', 'red')");
    open()->set("odd", true);
    EXPECT_EQ(open()->boolean("odd"), true);
}

// Newer versions.

TEST_F(SqliteUserDefaultsDamage, ANewerVersionsStoreIsReadAndLeftAsItIs) {
    makeStore();
    RawDatabase(file).run(
        "PRAGMA user_version = 2; CREATE TABLE more (a);"
        "INSERT INTO defaults VALUES ('new', 'colour', 'red')");
    const std::string before = contentsOf(file);
    {
        const auto store = open();
        EXPECT_EQ(store->integer("key1"), 1);
        EXPECT_EQ(store->object("new"), std::nullopt);
        EXPECT_TRUE(store->contains("new"));
        store->set("key1", std::int64_t{50});
        store->set("key9", std::int64_t{90});
        EXPECT_EQ(store->integer("key1"), 50);
        EXPECT_EQ(store->integer("key9"), 90);
        EXPECT_EQ(store->integer("key2"), 2);
    }
    EXPECT_EQ(contentsOf(file), before);
    EXPECT_THAT(names(), ElementsAre("settings.sqlite"));
    EXPECT_THAT(lines, Contains("settings: " + file.native() +
                                " cannot be written (a newer version wrote it); changes are kept "
                                "in memory and written as soon as they can be"));
    EXPECT_EQ(lines.size(), 2U);
}

TEST_F(SqliteUserDefaultsDamage, ANewerVersionsStoreInAnotherShapeIsLeftAsItIs) {
    makeStore();
    RawDatabase(file).run("PRAGMA user_version = 7; ALTER TABLE defaults RENAME TO better");
    const std::string before = contentsOf(file);
    {
        const auto store = open();
        EXPECT_EQ(store->object("key1"), std::nullopt);
        EXPECT_TRUE(store->contains("key1"));
        store->set("key1", std::int64_t{50});
        EXPECT_EQ(store->integer("key1"), 50);
    }
    EXPECT_EQ(contentsOf(file), before);
    EXPECT_THAT(names(), ElementsAre("settings.sqlite"));
    EXPECT_THAT(lines, Not(Contains(HasSubstr("moved"))));
}

}  // namespace
}  // namespace tarnwick::platform
