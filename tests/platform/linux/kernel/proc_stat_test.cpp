// SPDX-License-Identifier: MIT
#include "platform/linux/kernel/proc_stat.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <string_view>
#include <vector>

#include "tests/platform/linux/machine_tree.h"

namespace tarnwick::platform {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using testing::recordedFile;

std::vector<ProcessorTicks> parsed(std::string_view text) {
    std::vector<ProcessorTicks> processors = {{.processor = 99, .columns = {9, 9, 9, 9}}};
    const bool found = parseProcessorTicks(text, processors);
    EXPECT_EQ(found, !processors.empty());
    return processors;
}

TEST(ProcessorTicks, AreTheColumnsOfTheKernelWithoutThoseOfGuests) {
    // user nice system idle iowait irq softirq steal guest guest_nice
    EXPECT_THAT(parsed("cpu  9 9 9 9 9 9 9 9 9 9\ncpu0 1 20 300 4000 50000 7 80 900 5 6\n"),
                ElementsAre(ProcessorTicks{0, {1, 20, 300, 4000, 50000, 7, 80, 900}}));
}

TEST(ProcessorTicks, ColumnsOfOldKernelsAreEnough) {
    EXPECT_THAT(parsed("cpu0 1 2 3 4\n"), ElementsAre(ProcessorTicks{0, {1, 2, 3, 4}}));
    EXPECT_THAT(parsed("cpu0 1 2 3 4 10 20 30\n"),
                ElementsAre(ProcessorTicks{0, {1, 2, 3, 4, 10, 20, 30}}));
}

TEST(ProcessorTicks, ASpaceAtTheEndOfALineIsNoDamage) {
    EXPECT_THAT(parsed("cpu0 1 2 3 4 \n"), ElementsAre(ProcessorTicks{0, {1, 2, 3, 4}}));
}

TEST(ProcessorTicks, NewColumnsAreIgnored) {
    EXPECT_THAT(parsed("cpu0 1 2 3 4 0 0 0 0 0 0 77 88\n"),
                ElementsAre(ProcessorTicks{0, {1, 2, 3, 4}}));
}

TEST(ProcessorTicks, ProcessorsComeInTheKernelsOrderWithGaps) {
    EXPECT_THAT(parsed("cpu0 1 0 0 0\ncpu2 2 0 0 0\ncpu13 3 0 0 0\nintr 1\ncpu14 4 0 0 0\n"),
                ElementsAre(ProcessorTicks{0, {1, 0, 0, 0}}, ProcessorTicks{2, {2, 0, 0, 0}},
                            ProcessorTicks{13, {3, 0, 0, 0}}));
}

TEST(ProcessorTicks, CountersHave64Bits) {
    EXPECT_THAT(parsed("cpu0 4294967296 4294967295 0 18446744073709551615\n"),
                ElementsAre(ProcessorTicks{0, {4294967296, 4294967295, 0, 18446744073709551615U}}));
    EXPECT_THAT(parsed("cpu0 18446744073709551616 0 0 0\n"), IsEmpty());
}

TEST(ProcessorTicks, ADamagedProcessorSpoilsAll) {
    for (const std::string_view line :
         {"cpu1\n", "cpu1 1 2 3\n", "cpu1 1 2 3 x\n", "cpu1 1 2 -3 4\n", "cpu1 1 2 3 4 5x\n",
          "cpu1x 1 2 3 4\n", "cpu1\t1 2 3 4\n", "cpu1 1 2  3 4\n", "cpux 1 2 3 4\n",
          "cpu4294967296 1 2 3 4\n", "cpu-1 1 2 3 4\n", "cpu0 1 2 3 4\n", "cpu1 1 2 3 4"}) {
        EXPECT_THAT(parsed("cpu  1 2 3 4\ncpu0 1 2 3 4\n" + std::string(line)), IsEmpty()) << line;
    }
}

TEST(ProcessorTicks, TextWithoutProcessorsGivesNone) {
    for (const std::string_view text :
         {"", "\n", "cpu", "cpu\n", "cpu  1 2 3 4\n", "intr 1 2\n", "\ncpu0 1 2 3 4\n"}) {
        EXPECT_THAT(parsed(text), IsEmpty()) << text;
    }
    EXPECT_THAT(parsed(std::string_view("\0\0\0\0", 4)), IsEmpty());
}

TEST(ProcessorTicks, RecordedMachinesAreRead) {
    EXPECT_EQ(parsed(recordedFile("laptop", "proc/stat")).size(), 8U);
    EXPECT_EQ(parsed(recordedFile("server", "proc/stat")).size(), 63U);
    EXPECT_EQ(parsed(recordedFile("old-kernel", "proc/stat")).size(), 2U);
    EXPECT_THAT(parsed(recordedFile("damaged", "proc/stat")), IsEmpty());
}

// Cut anywhere, the text gives whole processors with their true counters, or none.
TEST(ProcessorTicks, ATruncatedTextNeverGivesAWrongCounter) {
    for (const std::string_view machine : {"laptop", "server", "old-kernel"}) {
        const std::string text = recordedFile(machine, "proc/stat");
        const std::vector<ProcessorTicks> whole = parsed(text);
        ASSERT_THAT(whole, ::testing::Not(IsEmpty()));
        for (std::size_t size = 0; size < text.size(); ++size) {
            const std::vector<ProcessorTicks> part = parsed(std::string_view(text).substr(0, size));
            ASSERT_LE(part.size(), whole.size());
            ASSERT_TRUE(std::equal(part.begin(), part.end(), whole.begin())) << machine << size;
        }
    }
}

TEST(BootTime, IsFoundAnywhereInTheText) {
    EXPECT_EQ(parseBootTime("cpu 1\nbtime 1767612345\nprocesses 5\n"), 1767612345);
    EXPECT_EQ(parseBootTime("btime 0\n"), 0);
    EXPECT_EQ(parseBootTime(recordedFile("laptop", "proc/stat")), 1767612345);
    EXPECT_EQ(parseBootTime(recordedFile("server", "proc/stat")), 1735689600);
    EXPECT_EQ(parseBootTime(recordedFile("old-kernel", "proc/stat")), 1199145600);
}

TEST(BootTime, IsAbsentWhenDamaged) {
    for (const std::string_view text :
         {"", "btime", "btime ", "btime \n", "btime 12", "btime -12\n", "btime 12x\n", "btime x\n",
          "xbtime 12\n", "btime  12\n", "btime 9223372036854775808\n",
          "btime 99999999999999999999999999\n"}) {
        EXPECT_EQ(parseBootTime(text), std::nullopt) << text;
    }
    EXPECT_EQ(parseBootTime(recordedFile("damaged", "proc/stat")), std::nullopt);
}

TEST(BootTime, ATruncatedTextGivesTheTrueTimeOrNone) {
    for (const std::string_view machine : {"laptop", "server", "old-kernel"}) {
        const std::string text = recordedFile(machine, "proc/stat");
        const std::size_t end = text.find('\n', text.find("btime")) + 1;
        const std::optional<std::int64_t> whole = parseBootTime(text);
        for (std::size_t size = 0; size < text.size(); ++size) {
            ASSERT_EQ(parseBootTime(std::string_view(text).substr(0, size)),
                      size < end ? std::nullopt : whole)
                << machine << size;
        }
    }
}

}  // namespace
}  // namespace tarnwick::platform
