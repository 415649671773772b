// SPDX-License-Identifier: MIT
// What a drag in the settings window writes onto the disk.
#include "benchmarks/settings_drag.h"

#include <gtest/gtest.h>

#include "tests/platform/linux/settings/counted_syncs.h"

namespace tarnwick::benchmarks {
namespace {

using platform::testing::syncs;

TEST(SettingsDragTest, EachOf500ChangesIsOnTheDiskAtOnceAndOnce) {
    constexpr int changes = 500;
    SettingsDrag drag;
    for (int change = 0; change < changes; ++change) {
        const int before = syncs;
        const double value = drag.stored();
        drag.change();
        ASSERT_NE(drag.stored(), value) << change;
        // The file and its folder.
        ASSERT_EQ(syncs, before + 2) << change;
    }
}

TEST(SettingsDragTest, AnEqualValueLeavesTheDiskAlone) {
    SettingsDrag drag;
    drag.change();
    const int before = syncs;
    for (int move = 0; move < 50; ++move) {
        drag.rest();
    }
    EXPECT_EQ(syncs, before);
}

}  // namespace
}  // namespace tarnwick::benchmarks
