// SPDX-License-Identifier: MIT
#include "services/property_text.h"

#include <gtest/gtest.h>
#include <limits>
#include <string>
#include <string_view>
#include <vector>

namespace tarnwick {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();

TEST(NumberAtStart, IsTheNumberOfTheText) {
    EXPECT_EQ(numberAtStart("42.5"), 42.5);
    EXPECT_EQ(numberAtStart("0"), 0);
    EXPECT_EQ(numberAtStart("-5"), -5);
    EXPECT_EQ(numberAtStart("+5"), 5);
    EXPECT_EQ(numberAtStart(".5"), 0.5);
    EXPECT_EQ(numberAtStart("-.5"), -0.5);
    EXPECT_EQ(numberAtStart("5."), 5);
    EXPECT_EQ(numberAtStart("1e2"), 100);
    EXPECT_EQ(numberAtStart("1E-2"), 0.01);
}

TEST(NumberAtStart, WhiteSpaceBeforeItIsSkipped) {
    EXPECT_EQ(numberAtStart(" \t\r\n42.5"), 42.5);
    EXPECT_EQ(numberAtStart("\xC2\xA0"
                            "7"),
              7);
}

TEST(NumberAtStart, WhatFollowsIsIgnored) {
    EXPECT_EQ(numberAtStart("37 %"), 37);
    EXPECT_EQ(numberAtStart("37%"), 37);
    EXPECT_EQ(numberAtStart("3,5"), 3);
    EXPECT_EQ(numberAtStart("1.2.3"), 1.2);
    EXPECT_EQ(numberAtStart("1e"), 1);
    EXPECT_EQ(numberAtStart("0x20"), 0);
    EXPECT_EQ(numberAtStart(std::string_view("12\0003", 4)), 12);
}

TEST(NumberAtStart, IsZeroWhereTheTextDoesNotStartWithANumber) {
    for (const std::string_view text :
         {"", " ", "busy", "-", "+", "+-5", "-+5", "--5", ".", "-.", ".e5", "e5", "%5", "nan",
          "NaN", "inf", "-inf", "infinity", "+inf"}) {
        EXPECT_EQ(numberAtStart(text), 0) << text;
    }
}

TEST(NumberAtStart, BeyondTheRangeIsInfiniteOrZero) {
    EXPECT_EQ(numberAtStart("1e999"), kInfinity);
    EXPECT_EQ(numberAtStart("-1e999"), -kInfinity);
    EXPECT_EQ(numberAtStart(std::string(400, '9')), kInfinity);
    EXPECT_EQ(numberAtStart(std::string(400, '9') + ".5"), kInfinity);
    EXPECT_EQ(numberAtStart("1e-999"), 0);
    EXPECT_EQ(numberAtStart("0." + std::string(400, '0') + "1"), 0);
    EXPECT_EQ(numberAtStart("1e999 e-5"), kInfinity);
}

TEST(WholeDecimalInteger, MayHaveASign) {
    EXPECT_EQ(wholeDecimalInteger("10"), 10);
    EXPECT_EQ(wholeDecimalInteger("+10"), 10);
    EXPECT_EQ(wholeDecimalInteger("-10"), -10);
    EXPECT_EQ(wholeDecimalInteger("007"), 7);
    EXPECT_EQ(wholeDecimalInteger("9223372036854775807"), 9223372036854775807);
}

TEST(WholeDecimalInteger, NothingElseIsOne) {
    for (const std::string_view text : {"", "+", "-", " 10", "10 ", "10\n", "1.0", "1e3", "ten",
                                        "+-1", "--1", "++1", "0x10", "9223372036854775808"}) {
        EXPECT_EQ(wholeDecimalInteger(text), std::nullopt) << text;
    }
}

std::optional<std::string> decoded(std::string_view bytes) {
    return textFromUTF8(std::as_bytes(std::span(bytes)));
}

TEST(TextFromUTF8, TakesEveryWellFormedText) {
    for (const std::string_view text :
         {"", "Apple M2", "\x7F", "\xC2\x80", "\xDF\xBF", "\xE0\xA0\x80", "\xED\x9F\xBF",
          "\xEE\x80\x80", "\xEF\xBF\xBF", "\xF0\x90\x80\x80", "\xF4\x8F\xBF\xBF"}) {
        EXPECT_EQ(decoded(text), text);
    }
    EXPECT_EQ(decoded(std::string_view("a\0b", 3)), std::string("a\0b", 3));
}

TEST(TextFromUTF8, RefusesWhatIsNotWellFormed) {
    for (const std::string_view text :
         {"\x80", "\xBF", "\xC0\x80", "\xC1\xBF", "\xC2", "\xC2\x41", "\xE0\x9F\xBF", "\xE1\x80",
          "\xE1\x80\x41", "\xED\xA0\x80", "\xF0\x8F\xBF\xBF", "\xF0\x90\x80", "\xF0\x90\x80\x41",
          "\xF4\x90\x80\x80", "\xF5\x80\x80\x80", "\xFF", "good\xFE"}) {
        EXPECT_EQ(decoded(text), std::nullopt);
    }
}

TEST(TextFromUTF8, ACutCharacterIsNotCompletedByANul) {
    EXPECT_EQ(decoded(std::string_view("\xC2\0\x80", 3)), std::nullopt);
}

}  // namespace
}  // namespace tarnwick
