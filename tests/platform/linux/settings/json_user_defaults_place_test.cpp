// SPDX-License-Identifier: MIT
// Places that take no settings, and what is said about each.
#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <system_error>
#include <unistd.h>

#include "platform/linux/settings/json_user_defaults.h"
#include "platform/testing/scripted_login_service.h"
#include "settings/user_settings.h"
#include "tests/platform/linux/child_process.h"
#include "tests/platform/linux/settings/json_user_defaults_fixture.h"

namespace tarnwick::platform {
namespace {

using tarnwick::testing::ChildProcess;
using tarnwick::testing::contentsOf;
using tarnwick::testing::putContents;
using tarnwick::testing::replaceContents;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr uid_t kNobody = 65534;

class JsonUserDefaultsPlace : public tarnwick::testing::JsonUserDefaultsFixture {
 protected:
    std::string unusable(const std::string& why) const {
        return "settings: " + file.native() + " cannot be used (" + why +
               "); changes are kept in memory";
    }
    std::string notWritten(const std::string& why) const {
        return "settings: " + file.native() + " cannot be written (" + why +
               "); changes are kept in memory";
    }
    /// Sets values again and again; each is there for readers, and one line is said.
    void expectInMemory(JsonUserDefaults& store, const std::string& line) {
        for (int i = 0; i < 3; ++i) {
            store.set("key", std::int64_t{i});
            dispatch.runMain();
            notice(store);
            EXPECT_EQ(store.integer("key"), i);
        }
        EXPECT_THAT(lines, ElementsAre(line));
    }
    /// After that the way is free again.
    void expectWritten(JsonUserDefaults& store) {
        store.set("other", true);
        dispatch.runMain();
        const auto reader = open();
        EXPECT_EQ(reader->integer("key"), 2);
        EXPECT_EQ(reader->boolean("other"), true);
        EXPECT_EQ(lines.size(), 1U);
    }
    /// Runs `body` as somebody whom permissions bind, and who owns the folder.
    void asUser(const std::function<void()>& body) {
        if (::geteuid() == 0) {
            ASSERT_EQ(::chown(folder.path().c_str(), kNobody, kNobody), 0);
            for (const std::string& name : names()) {
                ASSERT_EQ(::lchown((folder.path() / name).c_str(), kNobody, kNobody), 0);
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
    static void allow(const std::filesystem::path& path, mode_t mode) {
        ASSERT_EQ(::chmod(path.c_str(), mode), 0);
    }
    /// As a disk with so much space left.
    void limitFileSize(rlim_t bytes) {
        std::signal(SIGXFSZ, SIG_IGN);
        rlimit limit{};
        ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &limit), 0);
        limit.rlim_cur = bytes;
        ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &limit), 0);
    }
};

TEST_F(JsonUserDefaultsPlace, WithoutAHome) {
    file.clear();
    const auto store = open();
    EXPECT_FALSE(store->settle());
    expectInMemory(*store,
                   "settings: there is no home directory to keep them in; changes are lost "
                   "when the program ends");
}

TEST_F(JsonUserDefaultsPlace, AFolderInPlaceOfTheFileIsLeftAlone) {
    std::filesystem::create_directory(file);
    const auto store = open();
    EXPECT_TRUE(store->contains("key"));
    expectInMemory(*store, unusable("not a file"));
    std::filesystem::remove(file);
    expectWritten(*store);
}

TEST_F(JsonUserDefaultsPlace, APipeInPlaceOfTheFileIsLeftAlone) {
    ASSERT_EQ(::mkfifo(file.c_str(), 0600), 0);
    const auto store = open();
    expectInMemory(*store, unusable("not a file"));
    EXPECT_TRUE(std::filesystem::is_fifo(file));
    std::filesystem::remove(file);
    expectWritten(*store);
}

TEST_F(JsonUserDefaultsPlace, ASocketInPlaceOfTheFileIsLeftAlone) {
    const int made = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    ASSERT_LT(file.native().size(), sizeof address.sun_path);
    file.native().copy(address.sun_path, file.native().size());
    ASSERT_EQ(::bind(made, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
    expectInMemory(*open(), unusable("No such device or address"));
    EXPECT_TRUE(std::filesystem::is_socket(file));
    ::close(made);
}

TEST_F(JsonUserDefaultsPlace, ALinkToADeviceIsLeftAlone) {
    std::filesystem::create_symlink("/dev/zero", file);
    expectInMemory(*open(), unusable("not a file"));
    EXPECT_TRUE(std::filesystem::is_symlink(file));
}

TEST_F(JsonUserDefaultsPlace, APipeThatComesInItsPlaceIsLeftAlone) {
    const auto store = open();
    store->set("old", std::int64_t{1});
    dispatch.runMain();
    std::filesystem::remove(file);
    ASSERT_EQ(::mkfifo(file.c_str(), 0600), 0);
    notice(*store);
    EXPECT_EQ(store->integer("old"), 1);
    expectInMemory(*store, unusable("not a file"));
    EXPECT_TRUE(std::filesystem::is_fifo(file));
}

TEST_F(JsonUserDefaultsPlace, AFileWhereAFolderBelongs) {
    putContents(folder / "tarnwick", "not a folder");
    file = folder / "tarnwick/settings.json";
    const auto store = open();
    expectInMemory(*store, notWritten("Not a directory"));
    EXPECT_EQ(contentsOf(folder / "tarnwick"), "not a folder");
    std::filesystem::remove(folder / "tarnwick");
    expectWritten(*store);
}

TEST_F(JsonUserDefaultsPlace, ALinkStaysAndItsTargetIsReplaced) {
    std::filesystem::create_directory(folder / "dotfiles");
    putContents(folder / "dotfiles/settings.json", R"({"old": 1})");
    std::filesystem::create_symlink("dotfiles/settings.json", folder / "hop");
    std::filesystem::create_symlink(folder / "hop", file);
    const auto store = open();
    EXPECT_EQ(store->integer("old"), 1);
    store->set("key", true);
    dispatch.runMain();
    EXPECT_TRUE(std::filesystem::is_symlink(file));
    EXPECT_TRUE(std::filesystem::is_symlink(folder / "hop"));
    EXPECT_EQ(contentsOf(folder / "dotfiles/settings.json"),
              "{\n  \"old\": 1,\n  \"key\": true\n}\n");
    EXPECT_THAT(lines, IsEmpty());
}

TEST_F(JsonUserDefaultsPlace, ALinkToNothingIsWhereTheFileIsMade) {
    std::filesystem::create_symlink("dotfiles/settings.json", file);
    const auto store = open();
    EXPECT_FALSE(store->contains("key"));
    store->set("key", true);
    dispatch.runMain();
    EXPECT_TRUE(std::filesystem::is_symlink(file));
    EXPECT_EQ(contentsOf(folder / "dotfiles/settings.json"), "{\n  \"key\": true\n}\n");
    EXPECT_THAT(lines, IsEmpty());
}

TEST_F(JsonUserDefaultsPlace, ALinkToWhatHoldsNoSettingsStaysWhenThatIsSetAside) {
    std::filesystem::create_directory(folder / "dotfiles");
    putContents(folder / "dotfiles/mine.json", "none");
    std::filesystem::create_symlink("dotfiles/mine.json", file);
    const auto store = open();
    store->set("key", true);
    dispatch.runMain();
    EXPECT_TRUE(std::filesystem::is_symlink(file));
    EXPECT_EQ(contentsOf(folder / "dotfiles/mine.json.damaged-1"), "none");
    EXPECT_EQ(contentsOf(folder / "dotfiles/mine.json"), "{\n  \"key\": true\n}\n");
    EXPECT_EQ(lines.size(), 1U);
}

TEST_F(JsonUserDefaultsPlace, LinksInACircleAreLeftAlone) {
    std::filesystem::create_symlink("other", file);
    std::filesystem::create_symlink("settings.json", folder / "other");
    expectInMemory(*open(), unusable("Too many levels of symbolic links"));
    EXPECT_TRUE(std::filesystem::is_symlink(file));
}

TEST_F(JsonUserDefaultsPlace, ALinkToAFolderIsLeftAlone) {
    std::filesystem::create_directory_symlink(folder.path(), file);
    expectInMemory(*open(), unusable("not a file"));
}

TEST_F(JsonUserDefaultsPlace, AFolderBehindALinkIsUsed) {
    std::filesystem::create_directory(folder / "dotfiles");
    std::filesystem::create_directory_symlink("dotfiles", folder / "tarnwick");
    file = folder / "tarnwick/settings.json";
    const auto store = open();
    store->set("key", true);
    dispatch.runMain();
    EXPECT_EQ(contentsOf(folder / "dotfiles/settings.json"), "{\n  \"key\": true\n}\n");
    EXPECT_TRUE(std::filesystem::is_symlink(folder / "tarnwick"));
}

TEST_F(JsonUserDefaultsPlace, AReadOnlyFileIsReadAndStays) {
    putContents(file, R"({"old": 1})");
    allow(file, 0400);
    asUser([&] {
        const auto store = open();
        EXPECT_EQ(store->integer("old"), 1);
        EXPECT_THAT(lines, IsEmpty());
        expectInMemory(*store, notWritten("Permission denied"));
        EXPECT_EQ(contentsOf(file), R"({"old": 1})");
        allow(file, 0600);
        expectWritten(*store);
    });
    EXPECT_THAT(names(), ElementsAre("settings.json"));
}

TEST_F(JsonUserDefaultsPlace, AReadOnlyFolderIsRead) {
    putContents(file, R"({"old": 1})");
    asUser([&] {
        allow(folder.path(), 0500);
        const auto store = open();
        EXPECT_EQ(store->integer("old"), 1);
        expectInMemory(*store, notWritten("Permission denied"));
        allow(folder.path(), 0700);
        expectWritten(*store);
    });
}

TEST_F(JsonUserDefaultsPlace, AReadOnlyFolderWithoutAFile) {
    asUser([&] {
        allow(folder.path(), 0500);
        const auto store = open();
        EXPECT_THAT(lines, IsEmpty());
        expectInMemory(*store, notWritten("Permission denied"));
        allow(folder.path(), 0700);
        expectWritten(*store);
    });
}

TEST_F(JsonUserDefaultsPlace, AFolderThatCannotBeMade) {
    file = folder / "config/tarnwick/settings.json";
    asUser([&] {
        allow(folder.path(), 0500);
        const auto store = open();
        expectInMemory(*store, notWritten("Permission denied"));
        allow(folder.path(), 0700);
        expectWritten(*store);
    });
}

TEST_F(JsonUserDefaultsPlace, AFileThatMayNotBeReadIsNotTakenForAnAbsentOne) {
    putContents(file, R"({"old": 1})");
    allow(file, 0000);
    asUser([&] {
        const auto store = open();
        EXPECT_TRUE(store->contains("old"));
        expectInMemory(*store, unusable("Permission denied"));
        allow(file, 0600);
        expectWritten(*store);
        EXPECT_EQ(store->integer("old"), 1);
    });
}

TEST_F(JsonUserDefaultsPlace, AFileWithoutSettingsThatCannotBeMovedIsLeftAlone) {
    putContents(file, "none");
    asUser([&] {
        allow(folder.path(), 0500);
        const auto store = open();
        expectInMemory(*store, "settings: " + file.native() +
                                   " holds no settings and cannot be moved away (Permission "
                                   "denied); changes are kept in memory");
        allow(folder.path(), 0700);
    });
    EXPECT_EQ(contentsOf(file), "none");
}

// No space.

TEST_F(JsonUserDefaultsPlace, ADiskThatIsFullBeforeTheFileIsOnIt) {
    putContents(file, R"({"old": 1})");
    const auto store = open();
    for (const int error : {ENOSPC, EDQUOT, EIO}) {
        lines.clear();
        testing::beforeSync = [error] { return error; };
        expectInMemory(*store, notWritten(std::generic_category().message(error)));
        EXPECT_EQ(contentsOf(file), R"({"old": 1})");
        EXPECT_THAT(names(), ElementsAre("settings.json"));
    }
    testing::beforeSync = nullptr;
    expectWritten(*store);
}

TEST_F(JsonUserDefaultsPlace, SpaceForHalfOfTheFile) {
    putContents(file, R"({"old": 1})");
    ChildProcess child([&] {
        const auto store = open();
        limitFileSize(20);
        expectInMemory(*store, notWritten("File too large"));
        EXPECT_EQ(contentsOf(file), R"({"old": 1})");
        limitFileSize(RLIM_INFINITY);
        expectWritten(*store);
    });
    EXPECT_EQ(child.wait(), 0);
}

TEST_F(JsonUserDefaultsPlace, WhatCouldNotBeWrittenIsTriedAgainWithTheNextSetOfAnything) {
    const auto store = open();
    testing::beforeSync = [] { return ENOSPC; };
    store->set("key", std::int64_t{1});
    dispatch.runMain();
    testing::beforeSync = nullptr;
    // Equal, so by itself nothing to write.
    store->set("key", std::int64_t{1});
    dispatch.runMain();
    EXPECT_EQ(contentsOf(file), "{\n  \"key\": 1\n}\n");
}

TEST_F(JsonUserDefaultsPlace, EditsAreStillHeardOfWhereNothingCanBeWritten) {
    putContents(file, R"({"old": 1})");
    const auto store = open();
    testing::beforeSync = [] { return ENOSPC; };
    store->set("key", std::int64_t{1});
    dispatch.runMain();
    putContents(file, R"({"old": 2})");
    notice(*store);
    EXPECT_EQ(store->integer("old"), 2);
    EXPECT_EQ(store->integer("key"), 1);
}

TEST_F(JsonUserDefaultsPlace, WhatCouldNotBeWrittenYieldsToALaterEditOfTheSameKey) {
    putContents(file, R"({"a": 1, "b": 1, "c": 1})");
    const auto store = open();
    testing::beforeSync = [] { return ENOSPC; };
    store->set("a", std::int64_t{10});
    store->set("b", std::int64_t{10});
    dispatch.runMain();
    EXPECT_EQ(store->integer("a"), 10);
    // Still full, and then not any more.
    putContents(file, R"({"a": 2, "b": 1, "c": 2})");
    notice(*store);
    EXPECT_EQ(store->integer("a"), 2);
    EXPECT_EQ(store->integer("b"), 10);
    testing::beforeSync = nullptr;
    notice(*store);
    replaceContents(file, R"({"a": 3, "b": 1, "c": 3})");
    notice(*store);
    EXPECT_EQ(contentsOf(file), "{\n  \"a\": 3,\n  \"b\": 10,\n  \"c\": 3\n}\n");
    EXPECT_EQ(store->integer("a"), 3);
}

TEST_F(JsonUserDefaultsPlace, WhatIsSetAfterAnEditWinsThoughAnEarlierValueYielded) {
    putContents(file, R"({"a": 1})");
    const auto store = open();
    testing::beforeSync = [] { return ENOSPC; };
    store->set("a", std::int64_t{10});
    dispatch.runMain();
    putContents(file, R"({"a": 2})");
    notice(*store);
    testing::beforeSync = nullptr;
    store->set("a", std::int64_t{11});
    dispatch.runMain();
    EXPECT_EQ(contentsOf(file), "{\n  \"a\": 11\n}\n");
}

TEST_F(JsonUserDefaultsPlace, ThatItCannotBeReadIsAnAnswer) {
    std::filesystem::create_directory(file);
    const auto store = begin();
    int announced = 0;
    const auto observation = store->onExternalChange([&] { ++announced; });
    EXPECT_FALSE(store->hasAnswered());
    dispatch.runMain();
    EXPECT_TRUE(store->hasAnswered());
    EXPECT_FALSE(store->isComplete());
    EXPECT_EQ(announced, 1);
    store->set("key", true);
    dispatch.runMain();
    EXPECT_EQ(announced, 1);
}

TEST_F(JsonUserDefaultsPlace, WithoutAThreadItIsReadAndWrittenWithTheNextSet) {
    putContents(file, R"({"old": 1})");
    dispatch.refuseDetached(true);
    const auto store = open();
    EXPECT_FALSE(store->isComplete());
    store->set("key", std::int64_t{1});
    dispatch.runMain();
    EXPECT_FALSE(store->settle());
    EXPECT_EQ(contentsOf(file), R"({"old": 1})");
    dispatch.refuseDetached(false);
    store->set("key", std::int64_t{2});
    dispatch.runMain();
    EXPECT_TRUE(store->isComplete());
    EXPECT_EQ(store->integer("old"), 1);
    EXPECT_EQ(contentsOf(file), "{\n  \"old\": 1,\n  \"key\": 2\n}\n");
}

// The autostart entry is the system's answer, which a file that is read at last does not overrule.
TEST_F(JsonUserDefaultsPlace, AFileThatCanBeReadOnlyLaterStartsNothingAtLogin) {
    putContents(file, R"({"settings.launchOnLogin": true})");
    allow(file, 0000);
    asUser([&] {
        const auto store = open();
        testing::ScriptedLoginService service;
        const UserSettings settings(*store, service);
        EXPECT_FALSE(store->isComplete());
        service.clearCalls();
        allow(file, 0600);
        store->folderMayHaveChanged();
        dispatch.advance(JsonUserDefaults::kDelay);
        // A change of its rights alone is not noticed.
        replaceContents(file, R"({"settings.launchOnLogin": true})");
        notice(*store);
        EXPECT_TRUE(store->isComplete());
        EXPECT_THAT(service.calls(), ElementsAre(testing::ScriptedLoginService::Call::status));
        EXPECT_FALSE(settings.launchOnLogin());
        // From here on an edit is a wish.
        dispatch.runMain();
        replaceContents(file, R"({"settings.launchOnLogin": true})");
        notice(*store);
        EXPECT_EQ(service.calls().back(), testing::ScriptedLoginService::Call::registerService);
    });
}

// What is left on the way.

TEST_F(JsonUserDefaultsPlace, WhatAProgramLeftThatWasEndedWhileItWroteIsNoHindrance) {
    putContents(folder / ".settings.json.new", "half of");
    const auto store = open();
    EXPECT_FALSE(store->contains("key"));
    store->set("key", true);
    dispatch.runMain();
    EXPECT_EQ(contentsOf(file), "{\n  \"key\": true\n}\n");
    EXPECT_THAT(names(), ElementsAre("settings.json"));
}

TEST_F(JsonUserDefaultsPlace, ALinkInPlaceOfTheNewFileLeadsNowhere) {
    putContents(folder / "precious", "untouched");
    std::filesystem::create_symlink("precious", folder / ".settings.json.new");
    const auto store = open();
    store->set("key", true);
    dispatch.runMain();
    EXPECT_EQ(contentsOf(folder / "precious"), "untouched");
    EXPECT_FALSE(std::filesystem::is_symlink(file));
    EXPECT_EQ(contentsOf(file), "{\n  \"key\": true\n}\n");
}

TEST_F(JsonUserDefaultsPlace, AFolderInPlaceOfTheNewFile) {
    std::filesystem::create_directory(folder / ".settings.json.new");
    const auto store = open();
    expectInMemory(*store, notWritten("File exists"));
    std::filesystem::remove(folder / ".settings.json.new");
    expectWritten(*store);
}

TEST_F(JsonUserDefaultsPlace, ALinkToNothingIsNoFreeName) {
    putContents(file, "none");
    std::filesystem::create_symlink("nothing", folder / "settings.json.damaged-1");
    open();
    EXPECT_EQ(contentsOf(folder / "settings.json.damaged-2"), "none");
    EXPECT_TRUE(std::filesystem::is_symlink(folder / "settings.json.damaged-1"));
}

// A compact file has room for more than the same settings do with a line each.
TEST_F(JsonUserDefaultsPlace, SettingsThatCouldNotBeReadAgainAreNotWritten) {
    std::string compact = "{";
    for (int i = 0; compact.size() < 900'000; ++i) {
        compact += "\"" + std::to_string(i) + "\":0,";
    }
    compact += "\"last\":0}";
    // All on one line, and with one member a line.
    const auto members = static_cast<std::size_t>(std::count(compact.begin(), compact.end(), ','));
    ASSERT_GT(compact.size() + members * 3, SettingsDocument::kLimit);
    putContents(file, compact);
    const auto store = open();
    expectInMemory(*store, notWritten("File too large"));
    EXPECT_EQ(contentsOf(file), compact);
    EXPECT_THAT(names(), ElementsAre("settings.json"));
    EXPECT_FALSE(store->settle());
    EXPECT_THAT(names(), ElementsAre("settings.json"));
}

}  // namespace
}  // namespace tarnwick::platform
