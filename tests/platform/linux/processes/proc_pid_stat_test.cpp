// SPDX-License-Identifier: MIT
#include "platform/linux/processes/proc_pid_stat.h"

#include <gtest/gtest.h>
#include <string>

namespace tarnwick::platform {
namespace {

TEST(ProcessIdentifier, IsANameOfDigits) {
    EXPECT_EQ(parseProcessIdentifier("1"), 1);
    EXPECT_EQ(parseProcessIdentifier("4194304"), 4194304);
    EXPECT_EQ(parseProcessIdentifier("2147483647"), 2147483647);
}

TEST(ProcessIdentifier, IsZeroForAnyOtherName) {
    for (const char* name : {"", ".", "..", "self", "0", "07", "-1", "+1", "1a", "1 ", " 1",
                             "2147483648", "99999999999999999999", "sys", "1.5"}) {
        EXPECT_EQ(parseProcessIdentifier(name), 0) << name;
    }
}

/// A line of a 6.1 kernel for a process of this name: 1234 and 567 ticks, 2,048 pages.
std::string lineOf(const std::string& command) {
    return "4711 (" + command +
           ") S 1 4711 4711 0 -1 4194560 20351 88 3 0 1234 567 9 9 20 0 4 0 5517 170414080 2048 "
           "18446744073709551615 1 1 0 0 0 0 671173123 4096 1260 0 0 0 17 3 0 0 0 0 0 0 0 0 0 0 0 "
           "0 "
           "0\n";
}

TEST(ProcessStat, HasCommandTimesAndPages) {
    const std::string line = lineOf("bash");
    const auto stat = parseProcessStat(line);
    ASSERT_TRUE(stat);
    EXPECT_EQ(stat->command, "bash");
    EXPECT_EQ(stat->userTicks, 1234U);
    EXPECT_EQ(stat->systemTicks, 567U);
    EXPECT_EQ(stat->residentPages, 2048U);
}

TEST(ProcessStat, ACommandMayHoldAnyBytes) {
    for (const std::string command :
         {"Web Content", "a) S 1 (b", ")", "(", ") ", "((sd-pam)", "x\ny", "\n", "a\tb", "",
          "kworker/u16:2-events_unbound", ") R 1 1 1 1 1 1 1 1 1 1 99 99 9 9 9 9 9 9 9 9 9 9",
          "\xC3", "😀😀😀"}) {
        const std::string line = lineOf(command);
        const auto stat = parseProcessStat(line);
        ASSERT_TRUE(stat) << command;
        EXPECT_EQ(stat->command, command);
        EXPECT_EQ(stat->userTicks, 1234U) << command;
        EXPECT_EQ(stat->systemTicks, 567U) << command;
        EXPECT_EQ(stat->residentPages, 2048U) << command;
    }
}

TEST(ProcessStat, OfAKernelThreadHasNoPages) {
    const auto stat = parseProcessStat(
        "17 (ksoftirqd/0) S 2 0 0 0 -1 69238848 0 0 0 0 0 42 0 0 20 0 1 0 12 0 0 "
        "18446744073709551615 0 0 0 0 0 0 0 2147483647 0 0 0 0 17 0 0 0 0 0 0 0 0 0 0 0 0 0 0\n");
    ASSERT_TRUE(stat);
    EXPECT_EQ(stat->command, "ksoftirqd/0");
    EXPECT_EQ(stat->systemTicks, 42U);
    EXPECT_EQ(stat->residentPages, 0U);
}

TEST(ProcessStat, OfAnOldKernelHasFewerFields) {
    const auto stat = parseProcessStat(
        "1 (init) S 0 0 0 0 -1 256 145 9022 15 92 3 51 22 118 16 0 1 0 62 2084864 134 4294967295 "
        "134512640 134544544 3217843504 0 0 0 1475401980 671819267 0 0 0 0 0\n");
    ASSERT_TRUE(stat);
    EXPECT_EQ(stat->userTicks, 3U);
    EXPECT_EQ(stat->systemTicks, 51U);
    EXPECT_EQ(stat->residentPages, 134U);
}

TEST(ProcessStat, AnEarlierNegativeFieldDoesNotMatter) {
    EXPECT_TRUE(
        parseProcessStat("1 (a) R -1 -1 -1 -1 -1 -1 -1 -1 -1 -1 5 6 -1 -1 -1 -1 -1 -1 -1 "
                         "-1 7 "));
}

TEST(ProcessStat, FiguresBelowZeroAreDamage) {
    EXPECT_FALSE(parseProcessStat("1 (a) R 0 0 0 0 0 0 0 0 0 0 -5 6 0 0 0 0 0 0 0 0 7 0\n"));
    EXPECT_FALSE(parseProcessStat("1 (a) R 0 0 0 0 0 0 0 0 0 0 5 -6 0 0 0 0 0 0 0 0 7 0\n"));
    EXPECT_FALSE(parseProcessStat("1 (a) R 0 0 0 0 0 0 0 0 0 0 5 6 0 0 0 0 0 0 0 0 -12 0\n"));
}

TEST(ProcessStat, TakesTheLargestNumbers) {
    const auto stat = parseProcessStat(
        "1 (a) R 0 0 0 0 0 0 0 0 0 0 18446744073709551615 6 0 0 0 0 0 0 0 0 18446744073709551615 "
        "0\n");
    ASSERT_TRUE(stat);
    EXPECT_EQ(stat->userTicks, 18446744073709551615U);
    EXPECT_EQ(stat->residentPages, 18446744073709551615U);
    EXPECT_FALSE(parseProcessStat(
        "1 (a) R 0 0 0 0 0 0 0 0 0 0 18446744073709551616 6 0 0 0 0 0 0 0 0 7 0\n"));
}

TEST(ProcessStat, IsAbsentWhenCutOffBeforeTheEndOfThePages) {
    const std::string line = lineOf("a) b");
    const std::size_t end = line.find(" 2048 ") + 5;
    for (std::size_t size = 0; size <= end; ++size) {
        EXPECT_FALSE(parseProcessStat(std::string_view(line).substr(0, size))) << size;
    }
    for (std::size_t size = end + 1; size <= line.size(); ++size) {
        EXPECT_TRUE(parseProcessStat(std::string_view(line).substr(0, size))) << size;
    }
}

TEST(ProcessStat, IsAbsentForAnythingElse) {
    for (const char* text : {"", "\n", "()", ")(", "no brackets at all",
                             "1 (a)R 0 0 0 0 0 0 0 0 0 0 5 6 0 0 0 0 0 0 0 0 7 ",
                             "1 (a) R 0 0 0 0 0 0 0 0 0 0 x 6 0 0 0 0 0 0 0 0 7 ",
                             "1 (a) R 0 0 0 0 0 0 0 0 0 0 5 6x 0 0 0 0 0 0 0 0 7 ",
                             "1 (a) R 0 0 0 0 0 0 0 0 0 0 5 6 0 0 0 0 0 0 0 0 - ",
                             "1 (a) R 0 0 0 0 0 0 0 0 0  0 5 6 0 0 0 0 0 0 0 0 7 ",
                             "1 (a) R 0 0 0 0 0 0 0 0 0 0 5 6 0 0\n0 0 0 0 0 0 7 "}) {
        EXPECT_FALSE(parseProcessStat(text)) << text;
    }
}

}  // namespace
}  // namespace tarnwick::platform
