// SPDX-License-Identifier: MIT
#include "services/processor_loads.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>

namespace tarnwick {
namespace {

using testing::ElementsAre;

TEST(ProcessorLoadRecords, AreNamedAndSizedAsTheSystemDoes) {
    EXPECT_EQ(kProcessorCPULoadInfoFlavour, 2);
    EXPECT_EQ(kProcessorLoadSize, 16U);
}

TEST(ProcessorLoadRecords, HoldFourCountersEachInTheOrderOfTheWords) {
    const std::vector<std::uint32_t> words{1, 2, 3, 4, 5, 6, 7, 0xFFFFFFFF};
    const auto loads = decodeProcessorLoads(2, words);
    ASSERT_TRUE(loads.has_value());
    ASSERT_EQ(loads->size(), 2U);
    EXPECT_THAT((*loads)[0].cpu_ticks, ElementsAre(1, 2, 3, 4));
    EXPECT_THAT((*loads)[1].cpu_ticks, ElementsAre(5, 6, 7, 0xFFFFFFFF));
}

TEST(ProcessorLoadRecords, EveryTruncationIsAbsent) {
    const std::vector<std::uint32_t> words(8);
    for (std::size_t size = 0; size < 8; ++size) {
        EXPECT_FALSE(decodeProcessorLoads(2, std::span(words).first(size)).has_value()) << size;
    }
}

TEST(ProcessorLoadRecords, IgnoresWordsBehindTheLastProcessor) {
    const std::vector<std::uint32_t> words{1, 2, 3, 4, 5, 6, 7};
    const auto loads = decodeProcessorLoads(1, words);
    ASSERT_TRUE(loads.has_value());
    EXPECT_EQ(loads->size(), 1U);
}

TEST(ProcessorLoadRecords, NoProcessorsNeedNoWords) {
    const auto loads = decodeProcessorLoads(0, {});
    ASSERT_TRUE(loads.has_value());
    EXPECT_TRUE(loads->empty());
}

TEST(ProcessorLoadRecords, ACountWhoseSizeNeedsMoreThanThirtyTwoBitsIsAbsent) {
    const std::vector<std::uint32_t> words(8);
    EXPECT_FALSE(decodeProcessorLoads(0x10000000, words).has_value());
    EXPECT_FALSE(decodeProcessorLoads(0x10000001, words).has_value());
    EXPECT_FALSE(
        decodeProcessorLoads(std::numeric_limits<std::uint32_t>::max(), words).has_value());
}

}  // namespace
}  // namespace tarnwick
