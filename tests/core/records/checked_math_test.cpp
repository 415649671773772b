// SPDX-License-Identifier: MIT
#include "core/records/checked_math.h"

#include <cstdint>
#include <gtest/gtest.h>

namespace tarnwick {
namespace {

constexpr std::uint64_t kLargest = std::numeric_limits<std::uint64_t>::max();

TEST(CheckedMath, ComputesWhatFits) {
    EXPECT_EQ(checkedAdd<std::uint64_t>(kLargest - 1, 1), kLargest);
    EXPECT_EQ(checkedSubtract<std::uint64_t>(5, 5), 0U);
    EXPECT_EQ(checkedMultiply<std::uint64_t>(kLargest, 1), kLargest);
    EXPECT_EQ(checkedMultiply<std::uint64_t>(0, kLargest), 0U);
    EXPECT_EQ(checkedIncrement(std::numeric_limits<int>::max() - 1),
              std::numeric_limits<int>::max());
}

TEST(CheckedMathDeathTest, OverflowIsFatal) {
    EXPECT_DEATH(checkedAdd<std::uint64_t>(kLargest, 1), "");
    EXPECT_DEATH(checkedSubtract<std::uint64_t>(4, 5), "");
    EXPECT_DEATH(checkedMultiply<std::uint64_t>(kLargest / 2 + 1, 2), "");
    EXPECT_DEATH(checkedIncrement(std::numeric_limits<int>::max()), "");
}

TEST(CheckedMath, CounterThatWentBackwardsContributesNothing) {
    EXPECT_EQ(counterDelta<std::uint32_t>(7, 5), 2U);
    EXPECT_EQ(counterDelta<std::uint32_t>(5, 5), 0U);
    EXPECT_EQ(counterDelta<std::uint32_t>(3, 0xFFFFFFFFU), 0U);
}

}  // namespace
}  // namespace tarnwick
