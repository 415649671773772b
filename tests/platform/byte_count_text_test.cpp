// SPDX-License-Identifier: MIT
#include "platform/byte_count_text.h"

#include <clocale>
#include <cstdint>
#include <gtest/gtest.h>
#include <limits>
#include <string>

#include "tests/core/german_numbers.h"

namespace tarnwick::platform {
namespace {

std::string file(std::int64_t count) {
    return PlainByteCountFormatter().stringFromByteCount(count, CountStyle::file);
}

std::string memory(std::int64_t count) {
    return PlainByteCountFormatter().stringFromByteCount(count, CountStyle::memory);
}

TEST(PlainByteCountFormatter, NothingReadsZeroKB) {
    EXPECT_EQ(file(0), "Zero KB");
    EXPECT_EQ(memory(0), "Zero KB");
}

TEST(PlainByteCountFormatter, OneByteIsSingular) {
    EXPECT_EQ(file(1), "1 byte");
    EXPECT_EQ(memory(1), "1 byte");
}

TEST(PlainByteCountFormatter, BytesBelowTheFirstUnitAreWhole) {
    EXPECT_EQ(file(2), "2 bytes");
    EXPECT_EQ(file(999), "999 bytes");
    EXPECT_EQ(memory(999), "999 bytes");
    EXPECT_EQ(memory(1'000), "1,000 bytes");
    EXPECT_EQ(memory(1'023), "1,023 bytes");
}

TEST(PlainByteCountFormatter, KilobytesHaveNoDecimals) {
    EXPECT_EQ(file(1'000), "1 KB");
    EXPECT_EQ(file(1'400), "1 KB");
    EXPECT_EQ(file(12'345), "12 KB");
    EXPECT_EQ(memory(1'024), "1 KB");
    EXPECT_EQ(memory(1'023 * 1'024), "1,023 KB");
}

TEST(PlainByteCountFormatter, MegabytesHaveAtMostOneDecimal) {
    EXPECT_EQ(file(1'000'000), "1 MB");
    EXPECT_EQ(file(1'234'567), "1.2 MB");
    EXPECT_EQ(file(999'900'000), "999.9 MB");
    EXPECT_EQ(memory(1'024 * 1'024 * 3 / 2), "1.5 MB");
    EXPECT_EQ(memory(std::int64_t{1'000} << 20), "1,000 MB");
}

TEST(PlainByteCountFormatter, LargerUnitsHaveAtMostTwoDecimals) {
    EXPECT_EQ(file(1'234'567'890), "1.23 GB");
    EXPECT_EQ(file(1'234'567'890'123), "1.23 TB");
    EXPECT_EQ(file(1'234'567'890'123'456), "1.23 PB");
    EXPECT_EQ(file(1'234'567'890'123'456'789), "1.23 EB");
    EXPECT_EQ(memory((std::int64_t{1} << 30) * 5 / 4), "1.25 GB");
    EXPECT_EQ(memory((std::int64_t{1} << 40) * 5 / 4), "1.25 TB");
    EXPECT_EQ(memory((std::int64_t{1} << 50) * 5 / 4), "1.25 PB");
    EXPECT_EQ(memory((std::int64_t{1} << 60) * 5 / 4), "1.25 EB");
}

TEST(PlainByteCountFormatter, ZerosAtTheEndAreLeftOut) {
    EXPECT_EQ(file(12'000'000'000), "12 GB");
    EXPECT_EQ(file(12'500'000'000), "12.5 GB");
    EXPECT_EQ(file(12'050'000'000), "12.05 GB");
    EXPECT_EQ(file(100'000'000'000), "100 GB");
    EXPECT_EQ(memory(std::int64_t{16} << 30), "16 GB");
}

TEST(PlainByteCountFormatter, HalvesAreRoundedUp) {
    EXPECT_EQ(file(1'499), "1 KB");
    EXPECT_EQ(file(1'500), "2 KB");
    EXPECT_EQ(file(2'500), "3 KB");
    EXPECT_EQ(file(1'249'999), "1.2 MB");
    EXPECT_EQ(file(1'250'000), "1.3 MB");
    EXPECT_EQ(file(1'350'000), "1.4 MB");
    EXPECT_EQ(file(1'004'999'999), "1 GB");
    EXPECT_EQ(file(1'005'000'000), "1.01 GB");
    EXPECT_EQ(memory(1'024 + 511), "1 KB");
    EXPECT_EQ(memory(1'024 + 512), "2 KB");
}

TEST(PlainByteCountFormatter, WhatRoundsUpToAWholeUnitIsGivenInThatUnit) {
    EXPECT_EQ(file(999'499), "999 KB");
    EXPECT_EQ(file(999'500), "1 MB");
    EXPECT_EQ(file(999'999), "1 MB");
    EXPECT_EQ(file(999'949'999), "999.9 MB");
    EXPECT_EQ(file(999'950'000), "1 GB");
    EXPECT_EQ(file(999'994'999'999), "999.99 GB");
    EXPECT_EQ(file(999'995'000'000), "1 TB");
    EXPECT_EQ(file(999'995'000'000'000), "1 PB");
    EXPECT_EQ(file(999'995'000'000'000'000), "1 EB");
    EXPECT_EQ(memory(1'024 * 1'024 - 513), "1,023 KB");
    EXPECT_EQ(memory(1'024 * 1'024 - 512), "1 MB");
    EXPECT_EQ(memory((std::int64_t{1} << 30) - 1), "1 GB");
    EXPECT_EQ(memory((std::int64_t{1} << 40) - 1), "1 TB");
    EXPECT_EQ(memory((std::int64_t{1} << 50) - 1), "1 PB");
    EXPECT_EQ(memory((std::int64_t{1} << 60) - 1), "1 EB");
}

TEST(PlainByteCountFormatter, TheLargestCountIsExact) {
    EXPECT_EQ(file(std::numeric_limits<std::int64_t>::max()), "9.22 EB");
    EXPECT_EQ(memory(std::numeric_limits<std::int64_t>::max()), "8 EB");
}

TEST(PlainByteCountFormatter, ANegativeCountHasAMinusSign) {
    EXPECT_EQ(file(-1), "-1 byte");
    EXPECT_EQ(file(-999'999), "-1 MB");
    EXPECT_EQ(memory(std::numeric_limits<std::int64_t>::min()), "-8 EB");
}

// Far more digits than a double holds, around every power of both steps.
TEST(PlainByteCountFormatter, TextNeverSaysAThousandWhereTheNextUnitBegins) {
    for (const CountStyle style : {CountStyle::file, CountStyle::memory}) {
        const std::int64_t step = style == CountStyle::file ? 1'000 : 1'024;
        const std::string carry = style == CountStyle::file ? "1,000 " : "1,024 ";
        std::int64_t power = step;
        for (int exponent = 1; exponent <= 6; ++exponent) {
            for (std::int64_t shift = -2; shift <= 2; ++shift) {
                const std::string text =
                    PlainByteCountFormatter().stringFromByteCount(power + shift, style);
                EXPECT_FALSE(text.starts_with(carry)) << text;
                if (exponent > 1) {
                    EXPECT_TRUE(text.starts_with("1 ")) << power + shift << ": " << text;
                }
            }
            if (exponent < 6) {
                power *= step;
            }
        }
    }
}

TEST(PlainByteCountFormatter, TextDoesNotDependOnTheLocale) {
    const GermanNumbers german;
    ASSERT_STREQ(std::localeconv()->decimal_point, ",");
    EXPECT_EQ(file(1'230'000'000), "1.23 GB");
    EXPECT_EQ(memory(1'023 * 1'024), "1,023 KB");
}

}  // namespace
}  // namespace tarnwick::platform
