// SPDX-License-Identifier: MIT
#include "services/rate_text.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <string>

namespace tarnwick {
namespace {

/// Gives the count it was asked for, and the style.
class CountingFormatter final : public platform::ByteCountFormatter {
 public:
    std::string stringFromByteCount(std::int64_t byteCount,
                                    platform::CountStyle style) const override {
        return std::to_string(byteCount) +
               (style == platform::CountStyle::file ? " in files" : " in memory");
    }
};

std::string text(double rate) {
    return rateText(rate, CountingFormatter());
}

TEST(RateText, NoRateReadsZeroBytes) {
    EXPECT_EQ(text(0), "0 B/s");
    EXPECT_EQ(text(-0.0), "0 B/s");
}

TEST(RateText, ANegativeRateReadsZeroBytes) {
    EXPECT_EQ(text(-1), "0 B/s");
    EXPECT_EQ(text(-1e300), "0 B/s");
    EXPECT_EQ(text(-std::numeric_limits<double>::infinity()), "0 B/s");
}

TEST(RateText, NotANumberReadsZeroBytes) {
    EXPECT_EQ(text(std::nan("")), "0 B/s");
    EXPECT_EQ(text(-std::nan("")), "0 B/s");
}

TEST(RateText, ARateIsAByteCountInTheFileStyleASecond) {
    EXPECT_EQ(text(1234567), "1234567 in files/s");
}

TEST(RateText, HalvesAreRoundedAwayFromZero) {
    EXPECT_EQ(text(1499.5), "1500 in files/s");
    EXPECT_EQ(text(1500.5), "1501 in files/s");
    EXPECT_EQ(text(0.5), "1 in files/s");
    EXPECT_EQ(text(1.4999), "1 in files/s");
}

TEST(RateText, ARateJustBelowAHalfIsNotRoundedUp) {
    EXPECT_EQ(text(std::nextafter(0.5, 0)), "0 in files/s");
}

TEST(RateText, ARateThatRoundsToNothingIsFormattedAllTheSame) {
    EXPECT_EQ(text(0.3), "0 in files/s");
    EXPECT_EQ(text(std::numeric_limits<double>::denorm_min()), "0 in files/s");
}

TEST(RateText, TheLargestByteCountHasAText) {
    EXPECT_EQ(text(std::nextafter(0x1p63, 0)), "9223372036854774784 in files/s");
}

TEST(RateTextDeathTest, ARateBeyondAnyByteCountIsFatal) {
    EXPECT_DEATH(text(0x1p63), "");
    EXPECT_DEATH(text(std::numeric_limits<double>::infinity()), "");
}

}  // namespace
}  // namespace tarnwick
