// SPDX-License-Identifier: MIT
// The real sources over recorded machines, refreshed for as long as is wanted. Batteries,
// cards and processes of the machine come and go meanwhile.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "tests/soak/held.h"
#include "tests/ui/panel/recorded_panel.h"

namespace tarnwick::testing {
namespace {

// Refreshes of a cycle with the panel open and with none.
constexpr int kOpenRefreshes = 20;
constexpr int kHiddenRefreshes = 5;

/// The folders of batteries and cards, and of one process.
std::vector<std::filesystem::path> pluggable(const std::filesystem::path& root) {
    std::vector<std::filesystem::path> found{root / "sys/class/power_supply",
                                             root / "sys/class/drm"};
    for (const auto& entry : std::filesystem::directory_iterator(root / "proc")) {
        const std::string name = entry.path().filename().native();
        if (name.find_first_not_of("0123456789") == std::string::npos && name != "1") {
            found.push_back(entry.path());
            break;
        }
    }
    return found;
}

/// Takes the folders away, or puts them back; how many of them there were.
int plug(const std::vector<std::filesystem::path>& folders, bool isThere) {
    int moved = 0;
    for (const std::filesystem::path& folder : folders) {
        const std::filesystem::path away = folder.native() + " away";
        std::error_code notThere;
        std::filesystem::rename(isThere ? away : folder, isThere ? folder : away, notThere);
        moved += notThere ? 0 : 1;
    }
    return moved;
}

/// The number of refreshes.
int cycle(RecordedPanel& panel, const std::vector<std::filesystem::path>& folders) {
    for (const bool isThere : {true, false}) {
        plug(folders, isThere);
        panel.open();
        for (int refresh = 0; refresh < kOpenRefreshes; ++refresh) {
            panel.refresh();
        }
        panel.close();
        for (int refresh = 0; refresh < kHiddenRefreshes; ++refresh) {
            panel.refresh();
        }
    }
    plug(folders, true);
    return 2 * (kOpenRefreshes + kHiddenRefreshes);
}

/// Between them they have batteries, cards of two makers, and files that no one can read.
const std::vector<std::string> kMachines = {"damaged", "laptop", "two-batteries", "workstation"};

class RecordedSoak : public ::testing::TestWithParam<std::string> {};

TEST_P(RecordedSoak, HoldsNotOneByteOrDescriptorMoreHoweverLongItRuns) {
    RecordedPanel panel(GetParam());
    panel.close();
    const std::vector<std::filesystem::path> folders = pluggable(panel.root());
    ASSERT_GT(plug(folders, false), 0) << "nothing comes and goes";
    plug(folders, true);
    for (int warmUp = 0; warmUp < kWarmUpCycles; ++warmUp) {
        cycle(panel, folders);
    }
    const Held before = Held::now();
    const std::size_t heap = heapInUse();
    std::int64_t refreshes = 0;
    while (refreshes < wantedRefreshes() / static_cast<std::int64_t>(kMachines.size())) {
        refreshes += cycle(panel, folders);
        ASSERT_EQ(Held::now(), before) << "after " << refreshes << " refreshes";
    }
    EXPECT_LE(heapInUse(), heap + kHeapRounding);
    std::printf("%s: %lld refreshes of everything, 0 bytes and descriptors more than before\n",
                GetParam().c_str(), static_cast<long long>(refreshes));
}

INSTANTIATE_TEST_SUITE_P(Machines, RecordedSoak, ::testing::ValuesIn(kMachines),
                         [](const auto& machine) {
                             std::string name = machine.param;
                             std::erase(name, '-');
                             return name;
                         });

}  // namespace
}  // namespace tarnwick::testing
