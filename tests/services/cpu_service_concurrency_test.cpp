// SPDX-License-Identifier: MIT
#include <algorithm>
#include <atomic>
#include <gtest/gtest.h>
#include <latch>
#include <vector>

#include "platform/testing/joined_thread.h"
#include "platform/testing/scripted_kernel.h"
#include "services/cpu_service.h"

namespace tarnwick {
namespace {

constexpr int kThreads = 4;
constexpr int kReads = 500;

/// The counters of the `step`th reading: between any two readings every processor spends 10 of 100
/// ticks in user mode, 20 in the kernel and 5 niced. The number of processors changes.
platform::HostProcessorInfo readingAt(std::uint32_t step) {
    platform::HostProcessorInfo info;
    info.processorCount = 60 + step % 7;
    info.words.emplace();
    for (std::uint32_t i = 0; i < info.processorCount; ++i) {
        info.words->insert(info.words->end(), {10 * step, 20 * step, 65 * step, 5 * step});
    }
    return info;
}

TEST(CPUServiceConcurrency, OverlappingCallsEachSeeAConsistentPreviousReading) {
    platform::testing::ScriptedKernel kernel;
    std::uint32_t step = 0;  // The scripted kernel computes one answer at a time.
    kernel.answers.hostProcessorInfo.compute([&step] { return readingAt(++step); });
    CPUService service(kernel);

    std::latch start(kThreads);
    std::vector<std::vector<CPUInfo>> results(kThreads);
    {
        std::vector<platform::testing::JoinedThread> threads;
        for (std::vector<CPUInfo>& own : results) {
            threads.emplace_back([&] {
                start.arrive_and_wait();
                for (int i = 0; i < kReads; ++i) {
                    own.push_back(service.readCPUInfo());
                }
            });
        }
    }

    int compared = 0;
    for (const std::vector<CPUInfo>& own : results) {
        ASSERT_EQ(own.size(), static_cast<std::size_t>(kReads));
        for (const CPUInfo& info : own) {
            ASSERT_GE(info.coreUsages.size(), 60U);
            ASSERT_LE(info.coreUsages.size(), 66U);
            // A reading that overtook a later one goes backwards and reads idle.
            if (info.usagePercentage == 0) {
                ASSERT_EQ(info.idlePercentage, 100);
                ASSERT_TRUE(std::ranges::all_of(info.coreUsages, [](double v) { return v == 0; }));
                continue;
            }
            ++compared;
            ASSERT_DOUBLE_EQ(info.usagePercentage, 35);
            ASSERT_DOUBLE_EQ(info.userPercentage, 10);
            ASSERT_DOUBLE_EQ(info.systemPercentage, 20);
            ASSERT_DOUBLE_EQ(info.idlePercentage, 65);
            // A processor beyond the previous reading reads 0; those before it are all alike.
            const auto known = std::ranges::find(info.coreUsages, 0.0);
            for (auto usage = info.coreUsages.begin(); usage != known; ++usage) {
                ASSERT_DOUBLE_EQ(*usage, 35);
            }
            ASSERT_TRUE(std::all_of(known, info.coreUsages.end(), [](double v) { return v == 0; }));
        }
    }
    EXPECT_GT(compared, 0);
}

}  // namespace
}  // namespace tarnwick
