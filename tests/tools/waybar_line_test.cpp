// SPDX-License-Identifier: MIT
#include "tools/waybar_line.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace tarnwick::probe {
namespace {

nlohmann::json read(const MachineSample& sample) {
    const std::string line = waybarLine(sample);
    EXPECT_EQ(line.find('\n'), std::string::npos);
    return nlohmann::json::parse(line);
}

MachineSample withMemory(std::uint64_t percent) {
    MachineSample sample;
    sample.memory.total = 100;
    sample.memory.used = percent;
    sample.storage->resize(1);
    sample.storage->front().totalSpace = 1000;
    sample.storage->front().usedSpace = 795;
    return sample;
}

TEST(WaybarLine, SaysWhatTheItemSays) {
    nlohmann::json line = read(withMemory(95));
    EXPECT_EQ(line["text"], "RAM 95%");
    EXPECT_EQ(line["alt"], "warning");
    EXPECT_EQ(line["class"], "warning");
    EXPECT_EQ(line["percentage"], 95);
    line = read(withMemory(81));
    EXPECT_EQ(line["text"], "RAM 81%");
    EXPECT_EQ(line["class"], "info");
    EXPECT_EQ(line["percentage"], 81);
}

TEST(WaybarLine, HasTheLargestShareWhileAllIsCalm) {
    const nlohmann::json line = read(withMemory(20));
    EXPECT_EQ(line["text"], "");
    EXPECT_EQ(line["alt"], "ok");
    EXPECT_EQ(line["percentage"], 80);
    EXPECT_FALSE(read({}).contains("percentage"));
}

TEST(WaybarLine, HasTheFiguresAsMarkup) {
    MachineSample sample = withMemory(95);
    sample.topMemoryProcesses = {{.id = 1, .name = "<a&b>\n\xff", .cpuUsage = 0, .memoryUsage = 5}};
    EXPECT_EQ(read(sample)["tooltip"],
              "Memory usage is at 95%, above the high threshold.\n\n"
              "Memory 95% · 95 bytes of 100 bytes\n"
              "Disk 80% · 795 bytes of 1 KB on \n\n"
              "Memory 5 bytes · &lt;a&amp;b&gt; \uFFFD");
}

}  // namespace
}  // namespace tarnwick::probe
