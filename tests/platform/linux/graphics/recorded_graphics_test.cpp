// SPDX-License-Identifier: MIT
// Recorded parts of machines: their graphics at one moment and two seconds later.
#include <algorithm>
#include <filesystem>
#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/linux/files/kept_file.h"
#include "platform/linux/graphics/linux_accelerators.h"
#include "services/gpu_service.h"
#include "tests/platform/linux/files/opened_files.h"
#include "tests/platform/linux/machine_tree.h"

namespace tarnwick::platform {
namespace {

using testing::MachineTree;
using testing::OpenedFiles;
using testing::recordedMachine;
using testing::recordedMachines;

struct Use {
    double device = 0;
    double renderer = 0;

    bool operator==(const Use&) const = default;
};

/// What is shown at the two moments. Absent where the use is unknown.
struct Expected {
    std::string name;
    std::optional<Use> atFirst;
    std::optional<Use> later;
};

const std::vector<Expected>& expectations() {
    static const std::vector<Expected> all = {
        {"amdgpu-average", {{42, 42}}, {{42, 42}}},
        {"amdgpu-spikes", {{100, 100}}, {}},
        {"asleep", {}, {}},
        {"intel-container", {}, {}},
        {"intel-hidden-display", {}, {}},
        {"intel-light", {}, {{11, 11}}},
        {"msm", {}, {{17, 17}}},
        {"nouveau", {}, {}},
        {"panfrost-unprofiled", {}, {}},
        {"panthor", {}, {{33, 33}}},
        {"resting", {{0, 0}}, {{97, 97}}},
        {"v3d", {}, {{25, 25}}},
        {"xe", {}, {{40, 30}}},
    };
    return all;
}

TEST(RecordedGraphics, AreAllInTheTableAndHaveANote) {
    std::vector<std::string> names;
    for (const Expected& expected : expectations()) {
        names.push_back(expected.name);
        const std::string note =
            readWholeFile(recordedMachine("graphics/" + expected.name + "/README.md")).value_or("");
        EXPECT_TRUE(note.starts_with("# " + expected.name + "\n\nWritten by ")) << expected.name;
    }
    EXPECT_EQ(names, recordedMachines("graphics"));
}

class RecordedGraphics : public ::testing::TestWithParam<Expected> {};

std::optional<Use> useNow(LinuxAccelerators& accelerators) {
    const GPUInfo info = GPUService(accelerators).readGPUInfo();
    return info.isAvailable
               ? std::optional(Use{info.usagePercentage, info.rendererUtilizationPercentage})
               : std::nullopt;
}

TEST_P(RecordedGraphics, ShowTheirUse) {
    const MachineTree tree("graphics/" + GetParam().name);
    LinuxAccelerators accelerators(tree.root());
    const auto expect = [&accelerators](const std::optional<Use>& expected) {
        const std::optional<Use> use = useNow(accelerators);
        ASSERT_EQ(use.has_value(), expected.has_value());
        if (use) {
            EXPECT_NEAR(use->device, expected->device, 0.0001);
            EXPECT_NEAR(use->renderer, expected->renderer, 0.0001);
        }
    };
    expect(GetParam().atFirst);
    expect(GetParam().atFirst);
    tree.turnToLater();
    expect(GetParam().later);
}

std::string nameOfGraphics(const ::testing::TestParamInfo<Expected>& info) {
    std::string name = info.param.name;
    std::erase(name, '-');
    return name;
}

INSTANTIATE_TEST_SUITE_P(All, RecordedGraphics, ::testing::ValuesIn(expectations()),
                         nameOfGraphics);

// The files that tell what a card is and whether it sleeps. The kernel answers them by itself.
bool asksTheKernelOnly(const std::filesystem::path& file) {
    const std::string name = file.filename();
    return file.parent_path().filename() == "power" || name == "uevent" || name == "enabled" ||
           name == "dpms";
}

TEST(SleepingCards, AreNeverWoken) {
    const MachineTree tree("graphics/asleep");
    OpenedFiles opened;
    std::vector<std::string> statuses;
    int watched = 0;
    for (const std::string_view folder : {"sys/devices", "proc/1301"}) {
        for (const auto& entry : std::filesystem::recursive_directory_iterator(
                 tree.root() + "/" + std::string(folder))) {
            const std::string file = entry.path().lexically_relative(tree.root());
            if (entry.path().filename() == "runtime_status") {
                statuses.push_back(file);
            }
            if (!entry.is_regular_file() || entry.is_symlink() || asksTheKernelOnly(file)) {
                continue;
            }
            if (!opened.watch(tree.root(), file)) {
                GTEST_SKIP() << "this machine does not tell which files are opened";
            }
            ++watched;
        }
    }
    ASSERT_EQ(statuses.size(), 4U);
    ASSERT_GT(watched, 20);
    double now = 1000;
    LinuxAccelerators accelerators(
        tree.root(), [&now] { return now; }, "");
    for (int tick = 0; tick < 500; ++tick) {
        now += 2;
        EXPECT_EQ(useNow(accelerators), std::nullopt);
    }
    EXPECT_FALSE(opened.any());

    for (const std::string& status : statuses) {
        tree.write(status, "active\n");
        now += 2;
        useNow(accelerators);
        EXPECT_TRUE(opened.any()) << status << " is asked at once when it has woken";
        tree.write(status, "suspended\n");
    }
}

// Not even when others of the same program's cards are awake.
TEST(SleepingCards, AreNotAskedThroughTheirClients) {
    const MachineTree tree("graphics/asleep");
    tree.write("sys/class/drm/card1/device/power/runtime_status", "active\n");
    OpenedFiles opened;
    for (const int descriptor : {10, 12, 13}) {
        if (!opened.watch(tree.root(), "proc/1301/fdinfo/" + std::to_string(descriptor))) {
            GTEST_SKIP() << "this machine does not tell which files are opened";
        }
    }
    double now = 1000;
    LinuxAccelerators accelerators(
        tree.root(), [&now] { return now; }, "");
    for (int tick = 0; tick < 500; ++tick) {
        now += 2;
        useNow(accelerators);
    }
    EXPECT_EQ(useNow(accelerators), Use{});
    EXPECT_FALSE(opened.any());
}

TEST(SearchForClients, HappensOnlyForCardsThatNeedIt) {
    for (const std::string_view name : {"amdgpu-average", "v3d", "asleep"}) {
        const MachineTree tree("graphics/" + std::string(name));
        OpenedFiles opened;
        if (!opened.watch(tree.root(), "proc")) {
            GTEST_SKIP() << "this machine does not tell which files are opened";
        }
        double now = 1000;
        LinuxAccelerators accelerators(
            tree.root(), [&now] { return now; }, "");
        for (int tick = 0; tick < 100; ++tick) {
            now += 2;
            useNow(accelerators);
        }
        EXPECT_FALSE(opened.any()) << name;
    }
}

}  // namespace
}  // namespace tarnwick::platform
