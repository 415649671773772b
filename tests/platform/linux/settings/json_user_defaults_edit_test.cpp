// SPDX-License-Identifier: MIT
// What somebody else writes into the file while the program runs.
#include <fcntl.h>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <string>
#include <utility>

#include "platform/linux/settings/json_user_defaults.h"
#include "platform/testing/scripted_login_service.h"
#include "settings/user_settings.h"
#include "tests/platform/linux/settings/json_user_defaults_fixture.h"

namespace tarnwick::platform {
namespace {

using tarnwick::testing::contentsOf;
using tarnwick::testing::putContents;
using tarnwick::testing::replaceContents;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using testing::ManualDispatch;
using testing::syncs;

class JsonUserDefaultsEdit : public tarnwick::testing::JsonUserDefaultsFixture {
 protected:
    /// A store that has written `a` and `b`; edits are counted.
    void start() {
        store = open();
        store->set("a", std::int64_t{1});
        store->set("b", std::int64_t{1});
        dispatch.runMain();
        notice(*store);
        subscription = store->onExternalChange([this] { ++announced; });
    }
    bool isReadable() const {
        pollfd watched{store->watchDescriptor(), POLLIN, 0};
        return ::poll(&watched, 1, 0) == 1;
    }
    void expect(std::int64_t a, std::int64_t b, int announcements) {
        EXPECT_EQ(store->integer("a"), a);
        EXPECT_EQ(store->integer("b"), b);
        EXPECT_EQ(announced, announcements);
    }

    std::unique_ptr<JsonUserDefaults> store;
    Subscription subscription;
    int announced = 0;
};

TEST_F(JsonUserDefaultsEdit, ByAnotherFileInItsPlaceIsAnnounced) {
    start();
    EXPECT_FALSE(isReadable());
    replaceContents(file, R"({"a": 2, "b": 1})");
    EXPECT_TRUE(isReadable());
    notice(*store);
    EXPECT_FALSE(isReadable());
    expect(2, 1, 1);
    // And the next one, for which the file is another one.
    replaceContents(file, R"({"a": 3, "b": 1})");
    notice(*store);
    expect(3, 1, 2);
}

TEST_F(JsonUserDefaultsEdit, InPlaceIsAnnounced) {
    start();
    putContents(file, R"({"a": 2, "b": 1})");
    notice(*store);
    expect(2, 1, 1);
}

TEST_F(JsonUserDefaultsEdit, ObserversFindTheNewValues) {
    start();
    std::optional<std::int64_t> seen;
    const auto other = store->onExternalChange([&] { seen = store->integer("a"); });
    replaceContents(file, R"({"a": 2, "b": 1})");
    notice(*store);
    EXPECT_EQ(seen, 2);
}

TEST_F(JsonUserDefaultsEdit, IsReadInTheBackgroundAndOnceForManySteps) {
    start();
    dispatch.setBackground(ManualDispatch::Background::byHand);
    for (int i = 0; i < 20; ++i) {
        replaceContents(file, R"({"a": )" + std::to_string(i) + "}");
        store->folderMayHaveChanged();
    }
    EXPECT_EQ(dispatch.detachedPending(), 0U);
    dispatch.advance(JsonUserDefaults::kDelay);
    EXPECT_EQ(dispatch.detachedPending(), 1U);
    expect(1, 1, 0);
    dispatch.runDetached();
    dispatch.runMain();
    EXPECT_EQ(store->integer("a"), 19);
    EXPECT_EQ(announced, 1);
}

TEST_F(JsonUserDefaultsEdit, AKeyThatIsTakenOutHasNoValueAnyMore) {
    start();
    replaceContents(file, R"({"b": 1})");
    notice(*store);
    EXPECT_FALSE(store->contains("a"));
    EXPECT_EQ(announced, 1);
}

TEST_F(JsonUserDefaultsEdit, OneThatChangesNoValueIsNotAnnounced) {
    start();
    putContents(file, R"({"b": 1.0,     "a": 1})");
    notice(*store);
    EXPECT_EQ(announced, 0);
    EXPECT_EQ(contentsOf(file), R"({"b": 1.0,     "a": 1})");
}

TEST_F(JsonUserDefaultsEdit, TheStoresOwnWritesAreNone) {
    start();
    for (int i = 2; i < 5; ++i) {
        store->set("a", std::int64_t{i});
        dispatch.runMain();
        notice(*store);
    }
    expect(4, 1, 0);
    EXPECT_FALSE(isReadable());
}

TEST_F(JsonUserDefaultsEdit, AnotherFileInTheFolderIsNone) {
    start();
    const std::size_t before = dispatch.detachedCount();
    putContents(folder / "notes.txt", "x");
    notice(*store);
    EXPECT_EQ(dispatch.detachedCount(), before);
}

// With values of ours on their way.

TEST_F(JsonUserDefaultsEdit, IsMergedKeyByKeyWithWhatIsOnItsWay) {
    start();
    dispatch.setBackground(ManualDispatch::Background::byHand);
    store->set("a", std::int64_t{10});
    dispatch.runMain();
    replaceContents(file, R"({"a": 2, "b": 2, "c": 2})");
    dispatch.setBackground(ManualDispatch::Background::automatic);
    dispatch.runMain();
    expect(10, 2, 1);
    EXPECT_EQ(contentsOf(file), "{\n  \"a\": 10,\n  \"b\": 2,\n  \"c\": 2\n}\n");
    notice(*store);
    expect(10, 2, 1);
}

TEST_F(JsonUserDefaultsEdit, IsMergedWithWhatIsSetWhileItIsRead) {
    start();
    dispatch.setBackground(ManualDispatch::Background::byHand);
    replaceContents(file, R"({"a": 2, "b": 2})");
    notice(*store);
    ASSERT_TRUE(dispatch.runNextDetached());
    store->set("a", std::int64_t{10});
    dispatch.setBackground(ManualDispatch::Background::automatic);
    dispatch.runMain();
    expect(10, 2, 1);
    EXPECT_EQ(contentsOf(file), "{\n  \"a\": 10,\n  \"b\": 2\n}\n");
}

TEST_F(JsonUserDefaultsEdit, BetweenTheReadingAndTheReplacingIsNotLost) {
    start();
    // When the new file is on the disk and has not taken the old one's place.
    testing::beforeSync = [this] {
        testing::beforeSync = nullptr;
        replaceContents(file, R"({"a": 2, "b": 2})");
        return 0;
    };
    store->set("a", std::int64_t{10});
    dispatch.runMain();
    expect(10, 2, 1);
    EXPECT_EQ(contentsOf(file), "{\n  \"a\": 10,\n  \"b\": 2\n}\n");
    EXPECT_THAT(names(), ElementsAre("settings.json"));
}

TEST_F(JsonUserDefaultsEdit, ByAProgramThatIsAlwaysFasterLosesNothing) {
    start();
    int count = 0;
    testing::beforeSync = [this, &count] {
        replaceContents(file, R"({"a": 2, "b": )" + std::to_string(++count) + "}");
        return 0;
    };
    store->set("a", std::int64_t{10});
    dispatch.runMain();
    EXPECT_EQ(store->integer("a"), 10);
    EXPECT_GT(count, 1);
    testing::beforeSync = nullptr;
    dispatch.advance(JsonUserDefaults::kDelay);
    EXPECT_EQ(contentsOf(file), "{\n  \"a\": 10,\n  \"b\": " + std::to_string(count) + "\n}\n");
    EXPECT_THAT(lines, IsEmpty());
}

TEST_F(JsonUserDefaultsEdit, TwoStoresOnOneFileFollowEachOther) {
    start();
    const auto other = open();
    other->set("c", std::int64_t{3});
    dispatch.runMain();
    notice(*store);
    EXPECT_EQ(store->integer("c"), 3);
    store->set("a", std::int64_t{2});
    dispatch.runMain();
    notice(*other);
    EXPECT_EQ(other->integer("a"), 2);
    EXPECT_EQ(contentsOf(file), "{\n  \"a\": 2,\n  \"b\": 1,\n  \"c\": 3\n}\n");
}

// Links.

TEST_F(JsonUserDefaultsEdit, BehindALinkIsNoticedInPlaceAndByRename) {
    std::filesystem::create_directory(folder / "dotfiles");
    const auto target = folder / "dotfiles/tarnwick.json";
    std::filesystem::create_symlink("dotfiles/tarnwick.json", file);
    start();
    putContents(target, R"({"a": 2, "b": 1})");
    notice(*store);
    expect(2, 1, 1);
    replaceContents(target, R"({"a": 3, "b": 1})");
    notice(*store);
    expect(3, 1, 2);
    EXPECT_TRUE(std::filesystem::is_symlink(file));
}

TEST_F(JsonUserDefaultsEdit, ByAnotherLinkIsNoticedAndWrittenThroughThat) {
    start();
    std::filesystem::create_directory(folder / "dotfiles");
    const auto target = folder / "dotfiles/tarnwick.json";
    putContents(target, R"({"a": 2, "b": 1})");
    std::filesystem::remove(file);
    std::filesystem::create_symlink(target, file);
    notice(*store);
    expect(2, 1, 1);
    store->set("b", std::int64_t{5});
    dispatch.runMain();
    EXPECT_EQ(contentsOf(target), "{\n  \"a\": 2,\n  \"b\": 5\n}\n");
    EXPECT_TRUE(std::filesystem::is_symlink(file));
}

// Faults.

TEST_F(JsonUserDefaultsEdit, ThatIsUnderWayIsWaitedFor) {
    start();
    putContents(file, R"({"a": 2, "b)");
    notice(*store);
    putContents(file, R"({"a": 2, "b": 2})");
    dispatch.advance(JsonUserDefaults::kDelay);
    expect(2, 2, 1);
    EXPECT_THAT(lines, IsEmpty());
    EXPECT_THAT(names(), ElementsAre("settings.json"));
}

TEST_F(JsonUserDefaultsEdit, ThatLeavesNoSettingsIsSetAsideAndTheValuesStay) {
    start();
    const std::string edited = R"({"a": 2, "b": 2,})";
    putContents(file, edited);
    notice(*store);
    dispatch.advance(JsonUserDefaults::kDelay);
    expect(1, 1, 0);
    EXPECT_EQ(contentsOf(folder / "settings.json.damaged-1"), edited);
    EXPECT_EQ(contentsOf(file), "{\n  \"a\": 1,\n  \"b\": 1\n}\n");
    EXPECT_THAT(lines, ElementsAre(HasSubstr("holds no settings; it is kept as")));
}

TEST_F(JsonUserDefaultsEdit, ThatLeavesNoSettingsKeepsWhatIsSetMeanwhile) {
    start();
    putContents(file, "none");
    store->set("a", std::int64_t{7});
    dispatch.runMain();
    dispatch.advance(JsonUserDefaults::kDelay);
    EXPECT_EQ(contentsOf(folder / "settings.json.damaged-1"), "none");
    EXPECT_EQ(contentsOf(file), "{\n  \"a\": 7,\n  \"b\": 1\n}\n");
    EXPECT_EQ(lines.size(), 1U);
}

TEST_F(JsonUserDefaultsEdit, ThatTruncatesTheFileChangesNothing) {
    start();
    putContents(file, "");
    notice(*store);
    EXPECT_THAT(lines, IsEmpty());
    EXPECT_THAT(names(), ElementsAre("settings.json"));
}

TEST_F(JsonUserDefaultsEdit, AFolderThatIsReplacedIsFollowed) {
    file = folder / "config/settings.json";
    start();
    std::filesystem::rename(folder / "config", folder / "old");
    std::filesystem::create_directory(folder / "config");
    putContents(file, R"({"a": 2, "b": 1})");
    notice(*store);
    expect(2, 1, 1);
    replaceContents(file, R"({"a": 3, "b": 1})");
    notice(*store);
    expect(3, 1, 2);
}

// What comes of it.

TEST_F(JsonUserDefaultsEdit, AppliesToTheSettingsAtOnce) {
    start();
    testing::ScriptedLoginService service;
    UserSettings settings(*store, service);
    int changes = 0;
    const auto observation = settings.objectWillChange([&] { ++changes; });
    replaceContents(file, R"({
        "settings.cpuModerateThreshold": 40, "settings.cpuHighThreshold": 50,
        "settings.menuBarDisplayMode": "iconOnly",
        "settings.shortcutKeyCode": 12, "settings.shortcutModifiers": 1048576})");
    notice(*store);
    EXPECT_EQ(changes, 1);
    EXPECT_EQ(settings.thresholds().cpuNormal, 40);
    EXPECT_EQ(settings.thresholds().cpuHigh, 50);
    EXPECT_EQ(settings.menuBarDisplayMode(), MenuBarDisplayMode::iconOnly);
    EXPECT_EQ(settings.shortcutKeyCode(), 12);
}

TEST_F(JsonUserDefaultsEdit, InAFolderThatWasRemovedAndMadeAgainIsNoticed) {
    file = folder / "config" / "tarnwick" / "settings.json";
    const auto elsewhere = open();
    elsewhere->set("key", true);
    dispatch.runMain();
    ASSERT_TRUE(std::filesystem::exists(file));
    std::filesystem::remove_all(folder / "config");
    notice(*elsewhere);
    EXPECT_EQ(elsewhere->boolean("key"), true);
    for (const bool value : {false, true}) {
        std::filesystem::create_directories(file.parent_path());
        notice(*elsewhere);
        putContents(file, value ? R"({"key": true})" : R"({"key": false})");
        notice(*elsewhere);
        EXPECT_EQ(elsewhere->boolean("key"), value);
    }
}

}  // namespace
}  // namespace tarnwick::platform
