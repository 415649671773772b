// SPDX-License-Identifier: MIT
#include "tools/threshold_file.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "tests/platform/linux/machine_tree.h"

namespace tarnwick::probe {
namespace {

using platform::testing::MachineTree;

ThresholdReading readingOf(const std::string& text) {
    const MachineTree folder;
    folder.write("settings.json", text);
    return readThresholds(folder.root() + "/settings.json");
}

TEST(ThresholdFile, HasTheThresholdsOfTheSettings) {
    const ThresholdReading reading = readingOf(
        R"({"settings.cpuModerateThreshold": 40, "settings.cpuHighThreshold": 55.5,
            "settings.storageModerateThreshold": 70, "settings.storageCriticalThreshold": 20,
            "settings.hasPresentedInitialSettings": true, "other": [1]})");
    EXPECT_EQ(reading.trouble, "");
    // The pair of the storage is normalised, as for the panel.
    EXPECT_EQ(reading.thresholds,
              (MetricThresholds{
                  .cpuNormal = 40, .cpuHigh = 55.5, .storageNormal = 70, .storageHigh = 71}));
}

TEST(ThresholdFile, HasTheDefaultsWhereNothingIsSet) {
    for (const char* text : {"{}", "", " \n", R"({"settings.cpuHighThreshold": "high"})"}) {
        const ThresholdReading reading = readingOf(text);
        EXPECT_EQ(reading.trouble, "") << text;
        EXPECT_EQ(reading.thresholds, MetricThresholds()) << text;
    }
}

TEST(ThresholdFile, SaysWhyItCannotBeUsed) {
    EXPECT_EQ(readingOf("[1]").trouble, "it holds no settings");
    EXPECT_EQ(readingOf("{\"settings.cpuHigh").trouble, "it holds no settings");
    const MachineTree folder;
    EXPECT_EQ(readThresholds(folder.root()).trouble, "not a file");
    const ThresholdReading missing = readThresholds(folder.root() + "/none/settings.json");
    EXPECT_EQ(missing.trouble, "there is no such file");
    EXPECT_TRUE(missing.isMissing);
}

TEST(ThresholdFile, DoesNotWaitForTheOtherEndOfAPipe) {
    const MachineTree folder;
    const std::string pipe = folder.root() + "/pipe";
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    EXPECT_EQ(readThresholds(pipe).trouble, "not a file");
}

TEST(ThresholdFile, IsNotChanged) {
    // A program with a window would store what an older version meant by this.
    const std::string text = R"({"settings.hasPresentedInitialSettings": true})";
    const MachineTree folder;
    folder.write("settings.json", text);
    readThresholds(folder.root() + "/settings.json");
    EXPECT_EQ(std::filesystem::file_size(folder.root() + "/settings.json"), text.size());
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.root()), {}), 1);
}

}  // namespace
}  // namespace tarnwick::probe
