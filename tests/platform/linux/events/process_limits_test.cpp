// SPDX-License-Identifier: MIT
#include "platform/linux/events/process_limits.h"

#include <algorithm>
#include <fstream>
#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <sys/resource.h>

#include "tests/platform/linux/child_process.h"
#include "tests/platform/linux/files/descriptors.h"
#include "tests/platform/linux/temporary_folder.h"

namespace tarnwick::platform {
namespace {

using tarnwick::testing::ChildProcess;
using tarnwick::testing::descriptorLimit;
using tarnwick::testing::TemporaryFolder;

/// The limits of a process that had these and has raised them.
void expectRaised(rlimit before, rlim_t expected) {
    ChildProcess child([before, expected] {
        ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &before), 0);
        const auto returned = raiseDescriptorLimit();
        EXPECT_EQ(descriptorLimit().rlim_cur, expected);
        EXPECT_EQ(descriptorLimit().rlim_max, before.rlim_max);
        EXPECT_EQ(returned, expected == before.rlim_cur
                                ? std::nullopt
                                : std::optional<std::size_t>(before.rlim_cur));
    });
    EXPECT_EQ(child.wait(), 0);
}

TEST(DescriptorLimit, IsRaisedToWhatIsWanted) {
    const rlim_t most = descriptorLimit().rlim_max;
    expectRaised({.rlim_cur = 64, .rlim_max = most}, std::min<rlim_t>(most, 16'384));
}

TEST(DescriptorLimit, IsRaisedNoFurtherThanTheSystemAllows) {
    expectRaised({.rlim_cur = 64, .rlim_max = 100}, 100);
}

TEST(DescriptorLimit, AHigherOneStays) {
    const rlim_t most = descriptorLimit().rlim_max;
    if (most <= kWantedDescriptors) {
        GTEST_SKIP() << "no process may have more";
    }
    expectRaised({.rlim_cur = kWantedDescriptors + 1, .rlim_max = most}, kWantedDescriptors + 1);
}

TEST(FileSizeLimit, MakesAWriteFail) {
    ChildProcess child([] {
        surviveFileSizeLimit();
        const rlimit limit{.rlim_cur = 10, .rlim_max = 10};
        ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &limit), 0);
        const TemporaryFolder folder;
        std::ofstream file(folder.path() / "file");
        file << std::string(100, 'x') << std::flush;
        EXPECT_FALSE(file);
    });
    EXPECT_EQ(child.wait(), 0);
}

}  // namespace
}  // namespace tarnwick::platform
