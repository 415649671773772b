// SPDX-License-Identifier: MIT
#include "core/records/text.h"

#include <clocale>
#include <gtest/gtest.h>
#include <limits>
#include <string>

#include "tests/core/german_numbers.h"

namespace tarnwick {
namespace {

TEST(Text, TrimsWhiteSpaceAndLineBreaksAtBothEnds) {
    EXPECT_EQ(trimmed(""), "");
    EXPECT_EQ(trimmed(" \t\r\n\v\f"), "");
    EXPECT_EQ(trimmed(" a b\n"), "a b");
    EXPECT_EQ(trimmed("\xC2\xA0x\xE3\x80\x80"), "x");
    EXPECT_EQ(trimmed("\xE2\x80\xA8\xC3\xA4\xE2\x80\xA9"), "\xC3\xA4");
}

TEST(Text, TrimsEveryKindOfWhiteSpace) {
    for (const char* space :
         {"\t",     "\n",     "\v",     "\f",     "\r",     " ",      "\u00A0", "\u1680",  "\u2000",
          "\u2001", "\u2002", "\u2003", "\u2004", "\u2005", "\u2006", "\u2007", "\u2008",  "\u2009",
          "\u200A", "\u200B", "\u2028", "\u2029", "\u202F", "\u205F", "\u3000", "\xC2\x85"}) {
        EXPECT_EQ(trimmed(std::string(space) + "x" + space), "x")
            << ::testing::PrintToString(space);
    }
}

TEST(Text, TrimmingKeepsBytesThatOnlyLookLikeHalfASpace) {
    EXPECT_EQ(trimmed("\xE4\xB8\x85"), "\xE4\xB8\x85");
    EXPECT_EQ(trimmed("\x85"), "\x85");
    EXPECT_EQ(trimmed("\xE2\x80"), "\xE2\x80");
}

TEST(Text, PercentagesAreRoundedToTheirDecimals) {
    EXPECT_EQ(percentText(99.6, 0), "100%");
    EXPECT_EQ(percentText(0.4, 0), "0%");
    EXPECT_EQ(percentText(0.5, 0), "0%");
    EXPECT_EQ(percentText(1.5, 0), "2%");
    EXPECT_EQ(percentText(2.5, 0), "2%");
    EXPECT_EQ(percentText(42.04, 1), "42.0%");
    EXPECT_EQ(percentText(0, 1), "0.0%");
    EXPECT_EQ(percentText(-3.2, 0), "-3%");
}

TEST(Text, ThePointDoesNotFollowTheLanguage) {
    const GermanNumbers german;
    ASSERT_STREQ(std::localeconv()->decimal_point, ",");
    EXPECT_EQ(percentText(12.5, 1), "12.5%");
    EXPECT_EQ(fixedText(-1234567.125, 3), "-1234567.125");
    EXPECT_EQ(fixedText(-0.04, 1), "-0.0");
    EXPECT_EQ(fixedText(7, 0), "7");
    EXPECT_EQ(fixedText(std::numeric_limits<double>::infinity(), 1), "inf");
}

TEST(Text, TheLargestValueHasRoom) {
    EXPECT_EQ(percentText(std::numeric_limits<double>::max(), 1).size(), 309U + 3U);
    EXPECT_EQ(percentText(-std::numeric_limits<double>::max(), 1).size(), 310U + 3U);
}

}  // namespace
}  // namespace tarnwick
