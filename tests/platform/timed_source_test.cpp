// SPDX-License-Identifier: MIT
#include "platform/timed_source.h"

#include <gtest/gtest.h>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/testing/scripted_workers.h"

namespace tarnwick::platform {
namespace {

class TimedSourceTest : public ::testing::Test {
 protected:
    std::optional<int> read() {
        return source->read([this] {
            ++asked;
            return value;
        });
    }

    testing::ScriptedWorkers workers;
    std::unique_ptr<TimedSource<int>> source = std::make_unique<TimedSource<int>>(workers, 0.25);
    int value = 1;
    int asked = 0;
};

TEST_F(TimedSourceTest, AnswersWithWhatComesInTime) {
    EXPECT_EQ(read(), 1);
    value = 2;
    EXPECT_EQ(read(), 2);
    EXPECT_EQ(asked, 2);
}

TEST_F(TimedSourceTest, TheLastRecordStandsForThreeReadingsThenNothingDoes) {
    EXPECT_EQ(read(), 1);
    workers.hangs = true;
    for (int reading = 0; reading < 3; ++reading) {
        EXPECT_EQ(read(), 1) << reading;
    }
    for (int reading = 0; reading < 3; ++reading) {
        EXPECT_EQ(read(), std::nullopt) << reading;
    }
}

TEST_F(TimedSourceTest, WithoutAnyRecordNothingStands) {
    workers.hangs = true;
    EXPECT_EQ(read(), std::nullopt);
}

TEST_F(TimedSourceTest, WithNoReadingsToStandForOnlyWhatComesInTimeCounts) {
    source = std::make_unique<TimedSource<int>>(workers, 0.25, 0);
    EXPECT_EQ(read(), 1);
    workers.hangs = true;
    EXPECT_EQ(read(), std::nullopt);
    workers.comeBack();
    // What came late is none, either.
    EXPECT_EQ(read(), std::nullopt);
    workers.hangs = false;
    workers.comeBack();
    EXPECT_EQ(read(), 1);
    workers.refuses = true;
    EXPECT_EQ(read(), std::nullopt);
}

TEST_F(TimedSourceTest, IsWaitedForOnceAndNeverAskedByTwo) {
    workers.hangs = true;
    for (int reading = 0; reading < 100; ++reading) {
        read();
    }
    EXPECT_EQ(workers.hanging(), 1U);
    EXPECT_EQ(workers.waits, (std::vector<double>{0.25}));
}

TEST_F(TimedSourceTest, IsAskedAnewWhenItIsBack) {
    EXPECT_EQ(read(), 1);
    workers.hangs = true;
    for (int reading = 0; reading < 10; ++reading) {
        read();
    }
    workers.hangs = false;
    value = 5;
    workers.comeBack();
    value = 6;
    EXPECT_EQ(read(), 6);
}

TEST_F(TimedSourceTest, WhatComesLateStandsForTheNextReadings) {
    workers.hangs = true;
    EXPECT_EQ(read(), std::nullopt);
    value = 5;
    workers.comeBack();
    value = 6;
    // Hangs again.
    for (int reading = 0; reading < 3; ++reading) {
        EXPECT_EQ(read(), 5) << reading;
    }
    EXPECT_EQ(read(), std::nullopt);
    EXPECT_EQ(workers.waits.size(), 2U);
}

TEST_F(TimedSourceTest, AnAnswerBeginsTheCountAnew) {
    EXPECT_EQ(read(), 1);
    for (int round = 0; round < 5; ++round) {
        workers.hangs = true;
        for (int reading = 0; reading < 3; ++reading) {
            EXPECT_EQ(read(), 1);
        }
        workers.hangs = false;
        workers.comeBack();
        EXPECT_EQ(read(), 1);
    }
}

TEST_F(TimedSourceTest, AWorkerThatCannotBeStartedIsTriedAgain) {
    EXPECT_EQ(read(), 1);
    workers.refuses = true;
    value = 2;
    EXPECT_EQ(read(), 1);
    workers.refuses = false;
    EXPECT_EQ(read(), 2);
    workers.refuses = true;
    for (int reading = 0; reading < 3; ++reading) {
        EXPECT_EQ(read(), 2);
    }
    EXPECT_EQ(read(), std::nullopt);
    EXPECT_EQ(asked, 2);
}

TEST_F(TimedSourceTest, MayGoBeforeItsWorkerIsBack) {
    workers.hangs = true;
    read();
    source.reset();
    workers.comeBack();
    EXPECT_EQ(asked, 1);
}

TEST(NoWorkers, RunWorkOnTheCallersThread) {
    bool ran = false;
    EXPECT_EQ(noWorkers().run([&ran] { ran = true; }, 0), Workers::Outcome::ended);
    EXPECT_TRUE(ran);
}

TEST(ScriptedWorkers, TurnTheClockByWhatIsWaited) {
    testing::ManualDispatch dispatch;
    testing::ScriptedWorkers workers(&dispatch);
    workers.hangs = true;
    EXPECT_EQ(workers.run([] {}, 0.25), Workers::Outcome::late);
    EXPECT_EQ(dispatch.now(), 0.25);
}

}  // namespace
}  // namespace tarnwick::platform
