// SPDX-License-Identifier: MIT
#include "platform/linux/kernel/online_processors.h"

#include <gtest/gtest.h>
#include <string>
#include <string_view>

#include "tests/platform/linux/machine_tree.h"

namespace tarnwick::platform {
namespace {

using testing::MachineTree;
using testing::recordedMachine;

TEST(ProcessorList, CountsNumbersAndRanges) {
    EXPECT_EQ(parseProcessorList("0\n"), 1);
    EXPECT_EQ(parseProcessorList("0-3\n"), 4);
    EXPECT_EQ(parseProcessorList("0-3,5\n"), 5);
    EXPECT_EQ(parseProcessorList("0,2,4-6,9\n"), 6);
    EXPECT_EQ(parseProcessorList("7-7\n"), 1);
    EXPECT_EQ(parseProcessorList("0-1048575\n"), 1048576);
}

TEST(ProcessorList, DamagedTextHasNoCount) {
    for (const std::string_view text :
         {"", "\n", "0", "0-3", "0-\n", "-3\n", "0,\n", ",0\n", "3-1\n", "0-3,3\n", "2,1\n", "a\n",
          "0-3 \n", " 0\n", "0-3\n\n", "0-99999999999\n", "0-1048576\n", "0--3\n"}) {
        EXPECT_EQ(parseProcessorList(text), std::nullopt) << text;
    }
}

TEST(ProcessorList, ATruncatedListHasNoCount) {
    const std::string text = "0-16,18-63\n";
    for (std::size_t size = 0; size < text.size(); ++size) {
        EXPECT_EQ(parseProcessorList(text.substr(0, size)), std::nullopt) << size;
    }
}

TEST(OnlineProcessors, AreCountedOnEveryRecordedMachine) {
    EXPECT_EQ(OnlineProcessors(recordedMachine("laptop")).count(), 8);
    EXPECT_EQ(OnlineProcessors(recordedMachine("server")).count(), 63);
    EXPECT_EQ(OnlineProcessors(recordedMachine("old-kernel")).count(), 2);
    EXPECT_EQ(OnlineProcessors(recordedMachine("damaged")).count(), std::nullopt);
    EXPECT_EQ(OnlineProcessors(recordedMachine("no such machine")).count(), std::nullopt);
}

TEST(OnlineProcessors, TheListCountsBeforeTheStatistics) {
    const MachineTree tree;
    tree.write("proc/stat", "cpu0 1 2 3 4\ncpu1 1 2 3 4\n");
    OnlineProcessors processors(tree.root());
    EXPECT_EQ(processors.count(), 2);
    tree.write("sys/devices/system/cpu/online", "0-4\n");
    EXPECT_EQ(processors.count(), 5);
    tree.write("sys/devices/system/cpu/online", "0-5");
    EXPECT_EQ(processors.count(), 2);
}

}  // namespace
}  // namespace tarnwick::platform
