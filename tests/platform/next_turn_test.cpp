// SPDX-License-Identifier: MIT
#include "platform/next_turn.h"

#include <gtest/gtest.h>
#include <optional>

#include "platform/testing/manual_dispatch.h"

namespace tarnwick::platform {
namespace {

class NextTurnTest : public ::testing::Test {
 protected:
    testing::ManualDispatch dispatch;
    int runs = 0;
};

TEST_F(NextTurnTest, ManyRequestsOfOneTurnAreOneRunOfALaterOne) {
    NextTurn next(dispatch, [this] { ++runs; });
    next.schedule();
    next.schedule();
    EXPECT_EQ(runs, 0);
    dispatch.runMain();
    EXPECT_EQ(runs, 1);
}

TEST_F(NextTurnTest, NothingRunsUnasked) {
    const NextTurn next(dispatch, [this] { ++runs; });
    dispatch.runMain();
    EXPECT_EQ(runs, 0);
}

TEST_F(NextTurnTest, EachTurnCanAskAgain) {
    NextTurn next(dispatch, [this] { ++runs; });
    for (int turn = 1; turn <= 3; ++turn) {
        next.schedule();
        dispatch.runMain();
        EXPECT_EQ(runs, turn);
    }
}

TEST_F(NextTurnTest, TheWorkMayScheduleItself) {
    std::optional<NextTurn> next;
    next.emplace(dispatch, [&] {
        if (++runs < 3) {
            next->schedule();
        }
    });
    next->schedule();
    dispatch.runMain();
    EXPECT_EQ(runs, 3);
}

TEST_F(NextTurnTest, NothingRunsOnceItIsGone) {
    std::optional<NextTurn> next;
    next.emplace(dispatch, [this] { ++runs; });
    next->schedule();
    next.reset();
    dispatch.runMain();
    EXPECT_EQ(runs, 0);
}

TEST_F(NextTurnTest, TheWorkMayDestroyIt) {
    std::optional<NextTurn> next;
    int after = 0;
    next.emplace(dispatch, [this, &next, &after] {
        ++runs;
        next.reset();
        // What the work holds is still there.
        after = runs;
    });
    next->schedule();
    dispatch.runMain();
    EXPECT_EQ(runs, 1);
    EXPECT_EQ(after, 1);
}

}  // namespace
}  // namespace tarnwick::platform
