// SPDX-License-Identifier: MIT
#include "ui/panel/memory_pressure.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <limits>

namespace tarnwick {
namespace {

MemoryPressure pressure(std::uint64_t total, std::uint64_t free, std::uint64_t cached,
                        std::uint64_t compressed) {
    return estimatedPressure(
        {.total = total, .free = free, .compressed = compressed, .cached = cached});
}

TEST(MemoryPressure, HasAWordForEachLevel) {
    EXPECT_EQ(word(MemoryPressure::good), "Good");
    EXPECT_EQ(word(MemoryPressure::normal), "Normal");
    EXPECT_EQ(word(MemoryPressure::high), "High");
    EXPECT_EQ(static_cast<int>(MemoryPressure::good), 0);
    EXPECT_EQ(static_cast<int>(MemoryPressure::normal), 1);
    EXPECT_EQ(static_cast<int>(MemoryPressure::high), 2);
}

TEST(MemoryPressure, IsGoodWithoutAReading) {
    EXPECT_EQ(pressure(0, 0, 0, 0), MemoryPressure::good);
    EXPECT_EQ(pressure(0, 0, 0, 100), MemoryPressure::good);
}

TEST(MemoryPressure, IsHighWithATenthAvailable) {
    // 1 GB free and 0.6 GB cached of 16 GB.
    EXPECT_EQ(pressure(16'000, 1'000, 600, 0), MemoryPressure::high);
    EXPECT_EQ(pressure(16'000, 1'000, 601, 0), MemoryPressure::normal);
    EXPECT_EQ(pressure(1'000, 0, 0, 0), MemoryPressure::high);
}

TEST(MemoryPressure, IsNormalWithAFifthAvailable) {
    EXPECT_EQ(pressure(1'000, 150, 50, 0), MemoryPressure::normal);
    EXPECT_EQ(pressure(1'000, 150, 51, 0), MemoryPressure::good);
}

TEST(MemoryPressure, RisesWithWhatIsCompressed) {
    // 2.4 GB of 16 GB.
    EXPECT_EQ(pressure(16'000, 13'000, 0, 2'400), MemoryPressure::high);
    EXPECT_EQ(pressure(16'000, 13'000, 0, 2'399), MemoryPressure::normal);
    EXPECT_EQ(pressure(1'000, 900, 0, 80), MemoryPressure::normal);
    EXPECT_EQ(pressure(1'000, 900, 0, 79), MemoryPressure::good);
}

TEST(MemoryPressure, CountsNoMoreAvailableThanThereIs) {
    EXPECT_EQ(pressure(1'000, 900, 900, 0), MemoryPressure::good);
    constexpr std::uint64_t most = std::numeric_limits<std::uint64_t>::max();
    EXPECT_EQ(pressure(most, most, most, 0), MemoryPressure::good);
    EXPECT_EQ(pressure(1'000, most, 1, 0), MemoryPressure::good);
}

TEST(MemoryPressure, LooksAtNothingElse) {
    const MemoryInfo memory{.total = 1'000,
                            .used = 1'000,
                            .free = 500,
                            .app = 1'000,
                            .wired = 1'000,
                            .compressed = 0,
                            .cached = 0,
                            .swapUsed = 1'000,
                            .swapTotal = 1'000};
    EXPECT_EQ(estimatedPressure(memory), MemoryPressure::good);
}

}  // namespace
}  // namespace tarnwick
