// SPDX-License-Identifier: MIT
// The rules of the runner on scripted children, in virtual time. Real children are run beside the
// POSIX sources.
#include "services/process_runner.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/testing/scripted_child_processes.h"

namespace tarnwick {
namespace {

using Outcome = platform::PipeRead::Outcome;
using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::Le;

class ProcessRunnerTest : public ::testing::Test {
 protected:
    std::optional<std::string> run() {
        auto output = ProcessRunner(children, [this] { return children.clock; }).run(request);
        EXPECT_EQ(children.record.alive, 0);
        return output;
    }
    /// A child that prints `text`, closes its output and ends with `status` at `endsAt`.
    void print(std::string text, std::int32_t status = 0, std::optional<double> endsAt = 0) {
        children.script.output = std::move(text);
        children.script.reads = {Outcome::data, Outcome::end};
        children.script.status = status;
        children.script.endsAt = endsAt;
    }

    platform::testing::ScriptedChildProcesses children;
    ProcessRequest request{
        .path = "/bin/it", .arguments = {"a", "b c"}, .outputLimit = 100, .timeout = 3};
};

TEST_F(ProcessRunnerTest, StartsTheCommandWithItsArguments) {
    print("x");
    run();
    EXPECT_EQ(children.record.path, "/bin/it");
    EXPECT_THAT(children.record.arguments, ElementsAre("a", "b c"));
    EXPECT_EQ(children.record.started, 1);
}

TEST_F(ProcessRunnerTest, GivesEverythingACommandThatSucceedsHasPrinted) {
    print(std::string("one\0two", 7));
    EXPECT_EQ(run(), std::string("one\0two", 7));
    EXPECT_EQ(children.record.terminated, 0);
}

TEST_F(ProcessRunnerTest, GivesAnEmptyTextWhenACommandThatSucceedsPrintsNothing) {
    children.script.reads = {Outcome::end};
    children.script.endsAt = 0;
    EXPECT_EQ(run(), "");
}

TEST_F(ProcessRunnerTest, GivesNothingWhenTheStatusIsNotZero) {
    for (const std::int32_t status : {1, 3, 255, -15, platform::ChildProcess::kUnknownStatus}) {
        print("text", status);
        EXPECT_EQ(run(), std::nullopt) << status;
    }
}

TEST_F(ProcessRunnerTest, GivesNothingWhenTheCommandCannotBeStarted) {
    print("text");
    children.script.canBeStarted = false;
    EXPECT_EQ(run(), std::nullopt);
    EXPECT_EQ(children.record.started, 0);
}

TEST_F(ProcessRunnerTest, ReadsAtMost16384BytesAtATime) {
    request.outputLimit = 1'000'000;
    print(std::string(40'000, 'x'));
    EXPECT_EQ(run(), std::string(40'000, 'x'));
    EXPECT_EQ(children.record.largestRead, 16'384U);
}

TEST_F(ProcessRunnerTest, WaitsAtMostTwentyMillisecondsForData) {
    run();
    EXPECT_EQ(children.record.polls.front(), 0.02);
    EXPECT_THAT(children.record.polls, Each(Le(0.02)));
    EXPECT_GE(children.record.polls.size(), 150U);
    EXPECT_LE(children.record.polls.size(), 152U);
}

TEST_F(ProcessRunnerTest, NeverWaitsBeyondTheDeadline) {
    request.timeout = 0.05;
    run();
    EXPECT_LE(children.clock, 0.05 + 1e-9);
    EXPECT_EQ(children.record.polls.size(), 3U);
    EXPECT_NEAR(children.record.polls.back(), 0.01, 1e-9);
}

TEST_F(ProcessRunnerTest, ReadsAgainAfterAReadThatWouldBlockOrWasInterrupted) {
    children.script.output = "text";
    children.script.reads = {Outcome::wouldBlock,  Outcome::interrupted, Outcome::data,
                             Outcome::interrupted, Outcome::wouldBlock,  Outcome::end};
    children.script.endsAt = 0;
    EXPECT_EQ(run(), "text");
}

TEST_F(ProcessRunnerTest, GivesNothingWhenAReadFails) {
    children.script.reads = {Outcome::failed};
    children.script.endsAt = 0;
    EXPECT_EQ(run(), std::nullopt);
    EXPECT_EQ(children.record.terminated, 1);
}

TEST_F(ProcessRunnerTest, TakesOutputUpToTheLimit) {
    print(std::string(100, 'x'));
    EXPECT_EQ(run(), std::string(100, 'x'));
}

TEST_F(ProcessRunnerTest, StopsAtOneByteAboveTheLimit) {
    print(std::string(101, 'x'));
    EXPECT_EQ(run(), std::nullopt);
    EXPECT_EQ(children.record.terminated, 1);
}

TEST_F(ProcessRunnerTest, CountsTheLimitOverAllReads) {
    print(std::string(101, 'x'));
    children.script.piece = 1;
    EXPECT_EQ(run(), std::nullopt);
    EXPECT_EQ(children.record.polls.size(), 101U);

    print(std::string(100, 'x'));
    EXPECT_EQ(run(), std::string(100, 'x'));
}

TEST_F(ProcessRunnerTest, GivesNothingWhenTheOutputDoesNotEndInTime) {
    children.script.output = "text";
    children.script.reads = {Outcome::data};
    children.script.endsAt = 0;
    EXPECT_EQ(run(), std::nullopt);
    EXPECT_EQ(children.record.terminated, 1);
    EXPECT_NEAR(children.clock, 3, 1e-9);
}

TEST_F(ProcessRunnerTest, GivesNothingWhenACommandPrintsForLongerThanItMay) {
    request.outputLimit = 1'000'000;
    children.script.output = std::string(1000, 'x');
    children.script.piece = 1;
    children.script.reads = {Outcome::data, Outcome::end};
    EXPECT_EQ(run(), std::nullopt);
    EXPECT_EQ(children.record.terminated, 1);
    EXPECT_NEAR(children.clock, 3, 1e-9);
}

TEST_F(ProcessRunnerTest, WaitsAfterTheEndOfTheOutputForTheEndOfTheCommand) {
    print("text", 0, 2.5);
    EXPECT_EQ(run(), "text");
    EXPECT_NEAR(children.clock, 2.5, 0.021);
    EXPECT_EQ(children.record.terminated, 0);

    children.clock = 0;
    print("text", 3, 2.5);
    EXPECT_EQ(run(), std::nullopt);
}

TEST_F(ProcessRunnerTest, DoesNotWaitForACommandThatLingersBeyondTheDeadline) {
    print("text", 0, 3.5);
    EXPECT_EQ(run(), std::nullopt);
    EXPECT_EQ(children.record.terminated, 1);
    EXPECT_NEAR(children.clock, 3, 1e-9);
}

TEST_F(ProcessRunnerTest, CountsTheTimeFromTheStart) {
    children.clock = 1'000'000;
    print("text", 0, 1'000'002);
    EXPECT_EQ(run(), "text");
}

TEST_F(ProcessRunnerTest, ATimeoutThatIsOverStartsNoWait) {
    for (const double timeout : {0.0, -1.0, std::numeric_limits<double>::quiet_NaN()}) {
        request.timeout = timeout;
        print("text");
        EXPECT_EQ(run(), std::nullopt) << timeout;
    }
    EXPECT_TRUE(children.record.polls.empty());
}

}  // namespace
}  // namespace tarnwick
