// SPDX-License-Identifier: MIT
// The store on a file: what readers see, what is written and when, and its end.
#include "platform/linux/settings/json_user_defaults.h"

#include <cerrno>
#include <chrono>
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <linux/seccomp.h>
#include <map>
#include <stdexcept>
#include <string>
#include <sys/file.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <thread>
#include <unistd.h>
#include <vector>

#include "platform/linux/events/background_work.h"
#include "tests/platform/linux/child_process.h"
#include "tests/platform/linux/settings/json_user_defaults_fixture.h"

namespace tarnwick::platform {
namespace {

using std::chrono::milliseconds;
using tarnwick::testing::ChildProcess;
using tarnwick::testing::contentsOf;
using tarnwick::testing::putContents;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using testing::ManualDispatch;
using testing::syncs;

using JsonUserDefaultsTest = tarnwick::testing::JsonUserDefaultsFixture;

mode_t modeOf(const std::filesystem::path& path) {
    struct stat found {};
    EXPECT_EQ(::stat(path.c_str(), &found), 0);
    return found.st_mode & 07777;
}

// The place.

std::filesystem::path fileIn(const std::map<std::string, const char*>& variables) {
    return settingsFile([&variables](const char* name) {
        const auto found = variables.find(name);
        return found == variables.end() ? nullptr : found->second;
    });
}

TEST_F(JsonUserDefaultsTest, LiesInTheFolderOfSettings) {
    EXPECT_EQ(fileIn({{"XDG_CONFIG_HOME", "/config"}, {"HOME", "/home/a"}}),
              "/config/tarnwick/settings.json");
    for (const char* ignored : {static_cast<const char*>(nullptr), "", "config", "./config"}) {
        EXPECT_EQ(fileIn({{"XDG_CONFIG_HOME", ignored}, {"HOME", "/home/a"}}),
                  "/home/a/.config/tarnwick/settings.json");
    }
    EXPECT_EQ(fileIn({{"HOME", "home"}}), "");
    EXPECT_EQ(fileIn({}), "");
}

TEST_F(JsonUserDefaultsTest, NothingIsMadeBeforeSomethingIsSet) {
    file = folder / "config/tarnwick/settings.json";
    const auto store = open();
    EXPECT_EQ(store->object("key"), std::nullopt);
    EXPECT_FALSE(store->contains("key"));
    EXPECT_TRUE(store->settle(milliseconds(0)));
    EXPECT_THAT(names(), IsEmpty());
    EXPECT_THAT(lines, IsEmpty());
}

TEST_F(JsonUserDefaultsTest, FileAndFolderAreTheUsersAlone) {
    file = folder / "config/tarnwick/settings.json";
    const mode_t before = ::umask(0);
    const auto store = open();
    store->set("key", true);
    dispatch.runMain();
    ::umask(before);
    EXPECT_EQ(modeOf(file), 0600U);
    EXPECT_EQ(modeOf(file.parent_path()), 0700U);
}

TEST_F(JsonUserDefaultsTest, AFolderThatIsThereKeepsItsMode) {
    ASSERT_EQ(::chmod(folder.path().c_str(), 0755), 0);
    const auto store = open();
    store->set("key", true);
    dispatch.runMain();
    EXPECT_EQ(modeOf(folder.path()), 0755U);
    EXPECT_EQ(modeOf(file), 0600U);
}

// What is written.

TEST_F(JsonUserDefaultsTest, PeopleCanReadTheFile) {
    const auto store = open();
    store->set("settings.menuBarDisplayMode", std::string("iconOnly"));
    store->set("settings.cpuHighThreshold", 92.5);
    store->set("settings.cpuModerateThreshold", 80.0);
    store->set("settings.launchOnLogin", false);
    store->set("settings.shortcutKeyCode", std::int64_t{-1});
    store->set("battery.lastExactFetch", Date{1'700'000'000.25});
    dispatch.runMain();
    EXPECT_EQ(contentsOf(file), R"({
  "battery.lastExactFetch": 1700000000.25,
  "settings.cpuHighThreshold": 92.5,
  "settings.cpuModerateThreshold": 80,
  "settings.launchOnLogin": false,
  "settings.menuBarDisplayMode": "iconOnly",
  "settings.shortcutKeyCode": -1
}
)");
    EXPECT_THAT(names(), ElementsAre("settings.json"));
}

TEST_F(JsonUserDefaultsTest, EachTypeComesBack) {
    {
        const auto store = open();
        store->set("boolean", true);
        store->set("integer", std::int64_t{1} << 62);
        store->set("whole", 80.0);
        store->set("number", 92.5);
        store->set("text", std::string("caf\u00e9\n\"\\"));
        store->set("empty", std::string());
        store->set("date", Date{-62'135'596'800.5});
        dispatch.runMain();
    }
    const auto store = open();
    EXPECT_EQ(store->boolean("boolean"), true);
    EXPECT_EQ(store->integer("integer"), std::int64_t{1} << 62);
    EXPECT_EQ(store->number("whole"), 80);
    EXPECT_EQ(store->number("number"), 92.5);
    EXPECT_EQ(store->text("text"), "caf\u00e9\n\"\\");
    EXPECT_EQ(store->text("empty"), "");
    EXPECT_EQ(store->date("date"), Date{-62'135'596'800.5});
    EXPECT_EQ(store->text("boolean"), std::nullopt);
    EXPECT_EQ(store->boolean("integer"), std::nullopt);
    EXPECT_EQ(store->number("text"), std::nullopt);
    EXPECT_EQ(store->date("text"), std::nullopt);
    EXPECT_EQ(store->integer("number"), std::nullopt);
}

TEST_F(JsonUserDefaultsTest, ReadersSeeAtOnceWhatIsSet) {
    dispatch.setBackground(ManualDispatch::Background::byHand);
    const auto store = open();
    store->set("key", std::int64_t{1});
    EXPECT_EQ(store->integer("key"), 1);
    EXPECT_TRUE(store->contains("key"));
    EXPECT_THAT(names(), IsEmpty());
}

TEST_F(JsonUserDefaultsTest, OneTurnIsOneWrite) {
    const auto store = open();
    const std::size_t before = dispatch.detachedCount();
    const int synced = syncs;
    for (int i = 0; i < 8; ++i) {
        store->set("key" + std::to_string(i), std::int64_t{i});
    }
    EXPECT_EQ(dispatch.detachedCount(), before);
    dispatch.runMain();
    EXPECT_EQ(dispatch.detachedCount(), before + 1);
    // The file and its folder.
    EXPECT_EQ(syncs, synced + 2);
}

TEST_F(JsonUserDefaultsTest, AWriteHasBothHalvesOfWhatIsSetInOneTurnOrNone) {
    const auto store = open();
    dispatch.setBackground(ManualDispatch::Background::byHand);
    store->set("other", true);
    dispatch.runMainTurn();
    store->set("half1", std::int64_t{1});
    // The background does not wait for the second half.
    ASSERT_TRUE(dispatch.runNextDetached());
    EXPECT_EQ(contentsOf(file), "{\n  \"other\": true\n}\n");
    store->set("half2", std::int64_t{2});
    dispatch.setBackground(ManualDispatch::Background::automatic);
    dispatch.runMain();
    EXPECT_EQ(contentsOf(file), "{\n  \"other\": true,\n  \"half1\": 1,\n  \"half2\": 2\n}\n");
    EXPECT_EQ(dispatch.detachedCount(), 3U);
}

TEST_F(JsonUserDefaultsTest, WhileOneWriteIsOnItsWayWhatIsSetGoesWithTheNext) {
    const auto store = open();
    dispatch.setBackground(ManualDispatch::Background::byHand);
    store->set("key", std::int64_t{0});
    dispatch.runMain();
    const std::size_t begun = dispatch.detachedCount();
    for (int i = 1; i <= 100; ++i) {
        store->set("key", std::int64_t{i});
        dispatch.runMain();
        EXPECT_EQ(dispatch.detachedPending(), 1U);
    }
    ASSERT_TRUE(dispatch.runNextDetached());
    EXPECT_EQ(contentsOf(file), "{\n  \"key\": 0\n}\n");
    EXPECT_EQ(store->integer("key"), 100);
    dispatch.setBackground(ManualDispatch::Background::automatic);
    dispatch.runMain();
    EXPECT_EQ(dispatch.detachedCount(), begun + 1);
    EXPECT_EQ(contentsOf(file), "{\n  \"key\": 100\n}\n");
}

TEST_F(JsonUserDefaultsTest, AnEqualValueWritesNothing) {
    putContents(file, R"({"a": 80.0, "b": "x"})");
    const auto store = open();
    const std::size_t before = dispatch.detachedCount();
    store->set("a", 80.0);
    store->set("b", std::string("x"));
    dispatch.runMain();
    EXPECT_EQ(dispatch.detachedCount(), before);
    // There and back again in one turn.
    const int synced = syncs;
    store->set("a", 81.0);
    store->set("a", 80.0);
    dispatch.runMain();
    EXPECT_EQ(syncs, synced);
    EXPECT_EQ(contentsOf(file), R"({"a": 80.0, "b": "x"})");
}

TEST_F(JsonUserDefaultsTest, OrderAndUnknownKeysSurvive) {
    putContents(file, R"({"z": 1, "mine": {"deep": [1, 2]}, "a": 2, "wrong": 1e400})");
    const auto store = open();
    store->set("a", std::int64_t{3});
    dispatch.runMain();
    EXPECT_EQ(
        contentsOf(file),
        "{\n  \"z\": 1,\n  \"mine\": {\"deep\": [1, 2]},\n  \"a\": 3,\n  \"wrong\": 1e400\n}\n");
}

TEST_F(JsonUserDefaultsTest, AFileThatIsRemovedIsWholeAgainWithTheNextSet) {
    const auto store = open();
    store->set("a", std::int64_t{1});
    dispatch.runMain();
    std::filesystem::remove(file);
    notice(*store);
    EXPECT_EQ(store->integer("a"), 1);
    EXPECT_FALSE(std::filesystem::exists(file));
    store->set("b", std::int64_t{2});
    dispatch.runMain();
    EXPECT_EQ(contentsOf(file), "{\n  \"a\": 1,\n  \"b\": 2\n}\n");
    EXPECT_THAT(lines, IsEmpty());
}

TEST_F(JsonUserDefaultsTest, ReadingMakesNoSystemCall) {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    GTEST_SKIP() << "sanitizers make some of their own";
#endif
    putContents(file, R"({"text": "x", "number": 1.5, "flag": true})");
    const auto store = open();
    ChildProcess child([&] {
        const auto read = [&] {
            const bool isRight = store->text("text") == "x" && store->number("number") == 1.5 &&
                                 store->boolean("flag") == true && !store->contains("other") &&
                                 !store->integer("other") && !store->date("text");
            return isRight ? 0 : 1;
        };
        int status = read();
        // From here on any call but read(), write() and exit() ends the process.
        if (::prctl(PR_SET_SECCOMP, SECCOMP_MODE_STRICT) != 0) {
            ::_exit(2);
        }
        for (int i = 0; i < 10'000; ++i) {
            status |= read();
        }
        ::syscall(SYS_exit, status);
    });
    EXPECT_EQ(child.wait(), 0);
}

// The start.

TEST_F(JsonUserDefaultsTest, UntilTheFileHasBeenReadThereMayBeSomethingUnderEveryKey) {
    putContents(file, R"({"a": 1, "b": 1})");
    dispatch.setBackground(ManualDispatch::Background::byHand);
    const auto store = begin();
    int announced = 0;
    const auto subscription = store->onExternalChange([&] { ++announced; });
    EXPECT_FALSE(store->settle(milliseconds(1)));
    EXPECT_EQ(store->object("a"), std::nullopt);
    EXPECT_TRUE(store->contains("a"));
    EXPECT_TRUE(store->contains("c"));
    store->set("a", std::int64_t{2});
    EXPECT_EQ(store->integer("a"), 2);
    dispatch.setBackground(ManualDispatch::Background::automatic);
    dispatch.runMain();
    // What was set wins, what came late is announced.
    EXPECT_EQ(announced, 1);
    EXPECT_EQ(store->integer("a"), 2);
    EXPECT_EQ(store->integer("b"), 1);
    EXPECT_FALSE(store->contains("c"));
    EXPECT_EQ(contentsOf(file), "{\n  \"a\": 2,\n  \"b\": 1\n}\n");
}

// The end. Threads like the program's own.

class ThreadDispatch final : public Dispatch {
 public:
    double now() const override { return 0; }
    /// For ever: the main thread has no event loop any more.
    void async(std::function<void()> work) override {
        const std::lock_guard guard(lock_);
        queue_.push_back(std::move(work));
    }
    void asyncAfter(double, std::function<void()>) override {}
    bool detached(std::function<void()> work) override { return work_.run(std::move(work)); }
    std::unique_ptr<Timer> scheduleRepeating(double, std::function<void()>) override {
        throw std::logic_error("no timers here");
    }

 private:
    std::mutex lock_;
    std::vector<std::function<void()>> queue_;
    BackgroundWork work_;
};

class JsonUserDefaultsEndTest : public JsonUserDefaultsTest {
 protected:
    ThreadDispatch threads;
    JsonUserDefaults store{file, threads,
                           [this](std::string_view line) { lines.emplace_back(line); }};
};

TEST_F(JsonUserDefaultsEndTest, WaitsForWhatWasSetLast) {
    EXPECT_TRUE(store.settle(milliseconds(60'000)));
    store.set("a", std::int64_t{1});
    store.set("b", std::int64_t{2});
    EXPECT_TRUE(store.settle(milliseconds(60'000)));
    EXPECT_EQ(contentsOf(file), "{\n  \"a\": 1,\n  \"b\": 2\n}\n");
}

TEST_F(JsonUserDefaultsEndTest, SetsOfSeveralThreadsAreAllThere) {
    std::vector<std::thread> setters;
    for (int thread = 0; thread < 4; ++thread) {
        setters.emplace_back([this, thread] {
            for (int i = 0; i < 50; ++i) {
                store.set("key" + std::to_string(thread) + "-" + std::to_string(i), true);
                store.object("key0-0");
            }
        });
    }
    for (int i = 0; i < 5; ++i) {
        store.settle(milliseconds(60'000));
    }
    for (std::thread& setter : setters) {
        setter.join();
    }
    EXPECT_TRUE(store.settle(milliseconds(60'000)));
    const auto reader = open();
    for (int thread = 0; thread < 4; ++thread) {
        for (int i = 0; i < 50; ++i) {
            EXPECT_TRUE(reader->contains("key" + std::to_string(thread) + "-" + std::to_string(i)));
        }
    }
}

TEST_F(JsonUserDefaultsEndTest, WaitsNoLongerThanItsPatience) {
    EXPECT_TRUE(store.settle(milliseconds(60'000)));
    const int other = ::open(folder.path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    ASSERT_EQ(::flock(other, LOCK_EX), 0);
    store.set("key", true);
    EXPECT_FALSE(store.settle(milliseconds(5)));
    EXPECT_EQ(store.boolean("key"), true);
    ::close(other);
    EXPECT_TRUE(store.settle(milliseconds(60'000)));
    EXPECT_EQ(contentsOf(file), "{\n  \"key\": true\n}\n");
}

TEST_F(JsonUserDefaultsEndTest, TriesOnceMoreWhatWasRefused) {
    EXPECT_TRUE(store.settle(milliseconds(60'000)));
    testing::beforeSync = [] { return ENOSPC; };
    store.set("key", true);
    EXPECT_FALSE(store.settle(milliseconds(60'000)));
    EXPECT_FALSE(store.settle(milliseconds(60'000)));
    EXPECT_EQ(lines.size(), 1U);
    testing::beforeSync = nullptr;
    EXPECT_TRUE(store.settle(milliseconds(60'000)));
    EXPECT_EQ(contentsOf(file), "{\n  \"key\": true\n}\n");
}

}  // namespace
}  // namespace tarnwick::platform
