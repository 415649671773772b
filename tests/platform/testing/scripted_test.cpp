// The stand-ins themselves: a test can only be trusted when they do what they say.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/testing/scripted_kernel.h"
#include "platform/testing/scripted_volumes.h"

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

}  // namespace
}  // namespace tarnwick::platform::testing
