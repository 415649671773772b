// SPDX-License-Identifier: MIT
#include "app/settings_window.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <memory>
#include <set>

#include "platform/testing/scripted_windows.h"

namespace tarnwick {
namespace {

using platform::testing::ScriptedWindows;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// How many views were made and how many of them still are.
struct ViewCount {
    int made = 0;
    int living = 0;
};

class CountedView final : public platform::View {
 public:
    explicit CountedView(ViewCount& count) : count_(count) {
        ++count_.made;
        ++count_.living;
    }
    CountedView(const CountedView&) = delete;
    CountedView& operator=(const CountedView&) = delete;
    ~CountedView() override { --count_.living; }

 private:
    ViewCount& count_;
};

class SettingsWindowTest : public ::testing::Test {
 protected:
    ScriptedWindows windows;
    ViewCount views;
    SettingsWindow window{windows, [this] { return std::make_unique<CountedView>(views); }};
};

TEST_F(SettingsWindowTest, DoesNotExistUntilItIsShown) {
    EXPECT_FALSE(window.exists());
    EXPECT_THAT(windows.calls.all(), IsEmpty());
    EXPECT_EQ(views.made, 0);
}

TEST_F(SettingsWindowTest, IsMadeTitledAndCentredBeforeItComesToTheFront) {
    window.show();
    EXPECT_THAT(windows.calls.all(), ElementsAre("make 1", "title 1 Tarnwick Settings", "content 1",
                                                 "center 1", "delegate 1", "front 1", "activate"));
    EXPECT_TRUE(window.exists());
    EXPECT_EQ(views.living, 1);
}

TEST_F(SettingsWindowTest, HasAFixedSize) {
    window.show();
    ASSERT_EQ(windows.options.size(), 1U);
    EXPECT_EQ(windows.options[0].width, 520);
    EXPECT_EQ(windows.options[0].height, 500);
    EXPECT_FALSE(windows.options[0].isResizable);
    EXPECT_FALSE(windows.options[0].isMiniaturizable);
}

TEST_F(SettingsWindowTest, ShownAgainItOnlyComesToTheFront) {
    window.show();
    windows.calls.clear();
    window.show();
    window.show();
    EXPECT_THAT(windows.calls.all(), ElementsAre("front 1", "activate", "front 1", "activate"));
    EXPECT_EQ(windows.living(), 1);
    EXPECT_EQ(views.made, 1);
}

TEST_F(SettingsWindowTest, ClosingTearsDownItsContentAndForgetsIt) {
    window.show();
    windows.calls.clear();
    windows.closeByUser(1);
    EXPECT_THAT(windows.calls.all(), ElementsAre("no content 1", "no delegate 1", "gone 1"));
    EXPECT_FALSE(window.exists());
    EXPECT_EQ(windows.living(), 0);
    EXPECT_EQ(views.living, 0);
}

TEST_F(SettingsWindowTest, OpenedAgainItIsANewOneWithFreshContent) {
    window.show();
    windows.closeByUser(1);
    windows.calls.clear();
    window.show();
    EXPECT_THAT(windows.calls.all(), ElementsAre("make 2", "title 2 Tarnwick Settings", "content 2",
                                                 "center 2", "delegate 2", "front 2", "activate"));
    EXPECT_EQ(views.made, 2);
    EXPECT_EQ(views.living, 1);
}

TEST_F(SettingsWindowTest, EveryWindowHasTheSameDelegate) {
    std::set<platform::WindowDelegate*> delegates;
    for (int number = 1; number <= 3; ++number) {
        window.show();
        delegates.insert(windows.delegates.back());
        windows.closeByUser(number);
    }
    EXPECT_EQ(delegates.size(), 1U);
    EXPECT_EQ(delegates.count(nullptr), 0U);
}

TEST_F(SettingsWindowTest, AClosingWithoutAWindowIsHarmless) {
    window.show();
    platform::WindowDelegate* delegate = windows.delegates.back();
    windows.closeByUser(1);
    windows.calls.clear();
    delegate->windowWillClose();
    EXPECT_THAT(windows.calls.all(), IsEmpty());
}

}  // namespace
}  // namespace tarnwick
