// SPDX-License-Identifier: MIT
// The stand-ins themselves: a test can only be trusted when they do what they say.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <optional>

#include "platform/testing/scripted_hot_keys.h"
#include "platform/testing/scripted_kernel.h"
#include "platform/testing/scripted_keyboard_layout.h"
#include "platform/testing/scripted_volumes.h"
#include "platform/testing/scripted_windows.h"

namespace tarnwick::platform::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

TEST(Answers, GiveTheQueuedOnesOnceAndThenTheStandingOne) {
    Answers<int> answers{0};
    EXPECT_EQ(answers.take(), 0);
    answers.queue(1);
    answers.queue(2);
    answers.set(9);
    EXPECT_EQ(answers.take(), 1);
    EXPECT_EQ(answers.take(), 2);
    EXPECT_EQ(answers.take(), 9);
    EXPECT_EQ(answers.take(), 9);
}

TEST(Answers, ComputeTheStandingAnswerAtEachCall) {
    Answers<int> answers{0};
    int n = 0;
    answers.compute([&n] { return ++n; });
    EXPECT_EQ(answers.take(), 1);
    EXPECT_EQ(answers.take(), 2);
}

TEST(ScriptedKernel, FailsUntilToldOtherwise) {
    ScriptedKernel kernel;
    EXPECT_FALSE(kernel.logicalCPUCount().has_value());
    EXPECT_FALSE(kernel.memorySize().has_value());
    EXPECT_FALSE(kernel.swapUsage().has_value());
    EXPECT_NE(kernel.hostProcessorInfo().result, 0);
    EXPECT_NE(kernel.hostStatistics64().result, 0);
    EXPECT_FALSE(kernel.bootTime().has_value());
}

TEST(ScriptedKernel, KeepsTheOrderOfTheCalls) {
    ScriptedKernel kernel;
    kernel.swapUsage();
    kernel.monotonicSeconds();
    kernel.wallClockSeconds();
    kernel.pageSize();
    EXPECT_THAT(kernel.calls(),
                ElementsAre("swapUsage", "monotonicSeconds", "wallClockSeconds", "pageSize"));
    kernel.clearCalls();
    EXPECT_THAT(kernel.calls(), IsEmpty());
}

TEST(ScriptedKernel, ClocksStandStillUntilTheyAreTurned) {
    ScriptedKernel kernel;
    kernel.setMonotonicSeconds(10);
    kernel.setWallClockSeconds(1'700'000'000);
    EXPECT_EQ(kernel.monotonicSeconds(), 10);
    EXPECT_EQ(kernel.monotonicSeconds(), 10);
    kernel.advance(2.5);
    EXPECT_EQ(kernel.monotonicSeconds(), 12.5);
    EXPECT_EQ(kernel.wallClockSeconds(), 1'700'000'002.5);
}

TEST(ScriptedKernel, ProcessorTicksAreFourWordsAProcessor) {
    const HostProcessorInfo info = processorTicks({{1, 2, 3, 4}, {5, 6, 7, 8}});
    EXPECT_EQ(info.result, 0);
    EXPECT_EQ(info.processorCount, 2U);
    ASSERT_TRUE(info.words.has_value());
    EXPECT_THAT(*info.words, ElementsAre(1, 2, 3, 4, 5, 6, 7, 8));
    EXPECT_TRUE(processorTicks({}).words.has_value());
}

TEST(ScriptedVolumes, FailsUntilToldOtherwiseAndKeepsTheOrderOfTheCalls) {
    ScriptedVolumes volumes;
    EXPECT_EQ(volumes.homeDirectoryForCurrentUser(), "/home/user");
    EXPECT_TRUE(std::holds_alternative<VolumeError>(volumes.resourceValues("/a")));
    EXPECT_FALSE(volumes.attributesOfFileSystemForPath("/b").has_value());
    EXPECT_THAT(volumes.calls(), ElementsAre("homeDirectoryForCurrentUser", "resourceValues /a",
                                             "attributesOfFileSystemForPath /b"));
    volumes.clearCalls();
    EXPECT_THAT(volumes.calls(), IsEmpty());
}

TEST(ScriptedHotKeys, HoldsWhatIsRegisteredUntilItsHandleGoes) {
    ScriptedHotKeys keys;
    auto first = keys.registerEventHotKey(1, 2, {3, 4});
    auto second = keys.registerEventHotKey(5, 6, {7, 8});
    EXPECT_EQ(first.status, 0);
    EXPECT_NE(first.handle->description(), second.handle->description());
    EXPECT_THAT(keys.held(), ElementsAre(ScriptedHotKeys::HotKey{1, 2, {3, 4}},
                                         ScriptedHotKeys::HotKey{5, 6, {7, 8}}));
    first.handle.reset();
    EXPECT_THAT(keys.held(), ElementsAre(ScriptedHotKeys::HotKey{5, 6, {7, 8}}));
    EXPECT_THAT(keys.calls.all(), ElementsAre("register 1 2", "register 5 6", "unregister"));
}

TEST(ScriptedHotKeys, ARefusalHoldsNothing) {
    ScriptedHotKeys keys;
    keys.registerStatus.queue(-9878);
    const auto result = keys.registerEventHotKey(1, 2, {});
    EXPECT_EQ(result.status, -9878);
    EXPECT_EQ(result.handle, nullptr);
    EXPECT_THAT(keys.held(), IsEmpty());
    keys.installStatus.queue(-1);
    EXPECT_EQ(keys.installEventHandler([](const HotKeyEvent*) { return 0; }).handle, nullptr);
    EXPECT_FALSE(keys.hasHandler());
}

TEST(ScriptedHotKeys, APressReachesTheHandlerWhileBothAreThere) {
    ScriptedHotKeys keys;
    HotKeyID pressed;
    EXPECT_EQ(keys.press(), std::nullopt);
    auto handler = keys.installEventHandler(
        [&pressed](const HotKeyEvent* event) { return event->hotKeyID(pressed) + 5; });
    EXPECT_EQ(keys.press(), std::nullopt);
    auto hotKey = keys.registerEventHotKey(1, 2, {3, 4});
    EXPECT_EQ(keys.press(), 5);
    EXPECT_EQ(pressed, (HotKeyID{3, 4}));
    handler.handle.reset();
    EXPECT_EQ(keys.press(), std::nullopt);
}

TEST(ScriptedHotKeyEvent, KeepsAnUnreadableIdentifierToItself) {
    HotKeyID id{1, 2};
    EXPECT_EQ(ScriptedHotKeyEvent::unreadable(-7).hotKeyID(id), -7);
    EXPECT_EQ(id, (HotKeyID{1, 2}));
}

TEST(ScriptedKeyboardLayout, HasTheTextsItWasGiven) {
    ScriptedKeyboardLayout layout({{1, "A"}});
    EXPECT_EQ(layout.displayText(1), "A");
    EXPECT_EQ(layout.displayText(2), std::nullopt);
    EXPECT_THAT(layout.asked, ElementsAre(1, 2));
}

TEST(ScriptedWindows, CountsAndRecords) {
    ScriptedWindows windows;
    auto window = windows.makeWindow({.width = 1, .height = 2});
    window->setTitle("title");
    window->setContentView(std::make_unique<View>());
    EXPECT_EQ(windows.living(), 1);
    window.reset();
    EXPECT_EQ(windows.living(), 0);
    EXPECT_THAT(windows.calls.all(), ElementsAre("make 1", "title 1 title", "content 1", "gone 1"));
    windows.closeByUser(1);
}

}  // namespace
}  // namespace tarnwick::platform::testing
