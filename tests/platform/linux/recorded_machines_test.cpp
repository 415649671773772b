// SPDX-License-Identifier: MIT
// Every reader of one moment over every recorded machine, side by side.
#include <cstdint>
#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <unistd.h>
#include <variant>
#include <vector>

#include "platform/linux/files/kept_file.h"
#include "platform/linux/kernel/linux_kernel.h"
#include "platform/linux/power/linux_process_info.h"
#include "platform/linux/volumes/linux_volumes.h"
#include "services/cpu_service.h"
#include "services/memory_service.h"
#include "services/storage_service.h"
#include "services/system_uptime.h"
#include "tests/platform/linux/machine_tree.h"

namespace tarnwick::platform {
namespace {

using testing::recordedMachine;
using testing::recordedMachines;

/// What a recorded machine must read as.
struct Expected {
    std::string machine;
    std::optional<std::int32_t> processors;
    std::optional<std::int64_t> bootTime;
    /// KiB.
    std::uint64_t memory;
    std::uint64_t swap;
    std::uint64_t swapUsed;
    std::string home;
    std::string volume;
    std::int64_t thermalState;
    /// Seconds.
    std::optional<double> uptime;
};

const std::vector<Expected>& expectations() {
    static const std::vector<Expected> all = {
        {"container-host", 96, 1751328000, 263855104, 0, 0, "/home/deploy", "/home",
         kUnknownThermalState, 43921469.80},
        {"damaged", {}, {}, 0, 0, 0, "/home", "/", kUnknownThermalState, {}},
        {"developer", 4, 1767000000, 8052344, 4194300, 0, "/home/kim", "/", kUnknownThermalState,
         3120.55},
        {"handheld", 8, 1767200000, 15221396, 8658812, 756604, "/home/deck", "home", 0, 8190.44},
        {"laptop", 8, 1767612345, 16122588, 8061288, 1157280, "/home/ada", "Ada's Disk", 0,
         190643.27},
        {"old-kernel", 2, 1199145600, 1035344, 2031608, 20124, "/home/bob", "/",
         kUnknownThermalState, 86399.99},
        {"server", 63, 1735689600, 527985432, 0, 0, "/home/ops", "/home", kUnknownThermalState,
         31546211.90},
        {"two-batteries", 4, 1767500000, 7980448, 8388604, 87492, "/home/mia", "/", 1, 61822.07},
        {"virtual-machine", 2, 1764547200, 2014432, 1048572, 46240, "/home/admin",
         "cloudimg-rootfs", kUnknownThermalState, 2419206.55},
        {"workstation", 24, 1766900000, 65758412, 8388604, 0, "/home/grace", "/", 0, 262811.38},
    };
    return all;
}

class RecordedMachine : public ::testing::TestWithParam<Expected> {
 protected:
    const Expected& expected = GetParam();
    const std::string root = recordedMachine(expected.machine);
};

TEST(RecordedMachines, AreAllInTheTable) {
    std::vector<std::string> names;
    for (const Expected& expected : expectations()) {
        names.push_back(expected.machine);
    }
    EXPECT_EQ(names, recordedMachines());
}

TEST(RecordedMachines, HaveEachANoteAndALineInTheListOfAll) {
    const std::string list = readWholeFile(recordedMachine("README.md")).value_or("");
    for (const std::string& name : recordedMachines()) {
        EXPECT_NE(list.find("| `" + name + "` |"), std::string::npos) << name;
        const std::string note = readWholeFile(recordedMachine(name + "/README.md")).value_or("");
        EXPECT_TRUE(note.starts_with("# " + name + "\n\nWritten by ")) << name;
    }
}

TEST(RecordedMachines, OfAGroupHaveEachALineInItsNote) {
    for (const std::string group :
         {"batteries", "graphics", "memories", "networks", "processors", "volumes"}) {
        const std::string note = readWholeFile(recordedMachine(group + "/README.md")).value_or("");
        EXPECT_FALSE(recordedMachines(group).empty()) << group;
        for (const std::string& name : recordedMachines(group)) {
            EXPECT_NE(note.find("| `" + name + "` |"), std::string::npos) << group << '/' << name;
        }
    }
}

TEST_P(RecordedMachine, HasItsUptime) {
    LinuxKernel kernel(root);
    EXPECT_NEAR(readUptime(kernel), expected.uptime.value_or(0), 0.001);
}

TEST_P(RecordedMachine, HasItsProcessors) {
    LinuxKernel kernel(root);
    EXPECT_EQ(kernel.logicalCPUCount(), expected.processors);
    const HostProcessorInfo info = kernel.hostProcessorInfo();
    EXPECT_EQ(info.words.has_value(), expected.processors.has_value());
    if (expected.processors) {
        EXPECT_EQ(info.processorCount, static_cast<std::uint32_t>(*expected.processors));
        EXPECT_EQ(LinuxProcessInfo(root).activeProcessorCount(), *expected.processors);
        EXPECT_EQ(CPUService(kernel).readCPUInfo().coreUsages.size(),
                  static_cast<std::size_t>(*expected.processors));
    }
}

TEST_P(RecordedMachine, BootedWhenItSays) {
    const std::optional<TimeValue> boot = LinuxKernel(root).bootTime();
    ASSERT_EQ(boot.has_value(), expected.bootTime.has_value());
    if (boot) {
        EXPECT_EQ(boot->seconds, *expected.bootTime);
    }
}

TEST_P(RecordedMachine, HasItsMemory) {
    LinuxKernel kernel(root);
    const MemoryInfo info = MemoryService(kernel).readMemoryInfo();
    EXPECT_EQ(info.total, expected.memory * 1024);
    EXPECT_EQ(info.swapTotal, expected.swap * 1024);
    EXPECT_EQ(info.swapUsed, expected.swapUsed * 1024);
    EXPECT_LE(info.used, info.total);
    EXPECT_EQ(info.used > 0, expected.memory > 0);
    EXPECT_LE(info.app + info.wired + info.compressed, info.total);
}

TEST_P(RecordedMachine, HasItsVolume) {
    LinuxVolumes volumes(root, expected.home);
    const auto answer = volumes.resourceValues(volumes.homeDirectoryForCurrentUser());
    const auto* values = std::get_if<VolumeResourceValues>(&answer);
    ASSERT_NE(values, nullptr);
    EXPECT_EQ(values->name, expected.volume);
    EXPECT_EQ(StorageService(volumes).readStorageInfo().name, expected.volume);
}

TEST_P(RecordedMachine, IsAsHotAsItIs) {
    EXPECT_EQ(LinuxProcessInfo(root).thermalState(), expected.thermalState);
}

std::string nameOfMachine(const ::testing::TestParamInfo<Expected>& info) {
    std::string name = info.param.machine;
    for (char& letter : name) {
        letter = letter == '-' ? '_' : letter;
    }
    return name;
}

INSTANTIATE_TEST_SUITE_P(All, RecordedMachine, ::testing::ValuesIn(expectations()), nameOfMachine);

}  // namespace
}  // namespace tarnwick::platform
