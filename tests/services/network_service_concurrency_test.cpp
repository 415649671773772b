// SPDX-License-Identifier: MIT
#include <atomic>
#include <cstdint>
#include <gtest/gtest.h>
#include <latch>
#include <set>
#include <thread>
#include <vector>

#include "platform/testing/joined_thread.h"
#include "services/network_service.h"

namespace tarnwick {
namespace {

constexpr int kReaders = 4;
constexpr int kReadsEach = 500;

TEST(NetworkServiceConcurrency, OverlappingCallsTakeTurnsFromTheReadingToTheSnapshot) {
    // Neither is guarded: calls that overlapped would be seen to meet, or as a data race.
    std::uint64_t readings = 0;
    double clock = 0;
    std::atomic<int> inside = 0;
    std::atomic<bool> met = false;
    NetworkService service(
        [&] {
            met = met || ++inside != 1;
            ++readings;
            std::this_thread::yield();
            return platform::InterfaceTable{{1, {readings * 1000, readings * 10, false}}};
        },
        [&] {
            clock += 2;
            --inside;
            return clock;
        });

    std::latch start(kReaders);
    std::vector<std::vector<NetworkInfo>> results(kReaders);
    {
        std::vector<platform::testing::JoinedThread> threads;
        for (std::vector<NetworkInfo>& own : results) {
            threads.emplace_back([&] {
                start.arrive_and_wait();
                for (int i = 0; i < kReadsEach; ++i) {
                    own.push_back(service.readNetworkInfo());
                }
            });
        }
    }

    EXPECT_FALSE(met);
    std::set<std::uint64_t> totals;
    int first = 0;
    for (const std::vector<NetworkInfo>& own : results) {
        ASSERT_EQ(own.size(), static_cast<std::size_t>(kReadsEach));
        for (const NetworkInfo& info : own) {
            totals.insert(info.totalReceivedBytes);
            first += info.hasSample ? 0 : 1;
            // Every reading compares with the one just before it, two seconds earlier.
            EXPECT_EQ(info.downloadBytesPerSecond, info.hasSample ? 500 : 0);
            EXPECT_EQ(info.uploadBytesPerSecond, info.hasSample ? 5 : 0);
        }
    }
    EXPECT_EQ(first, 1);
    EXPECT_EQ(totals.size(), static_cast<std::size_t>(kReaders * kReadsEach));
}

}  // namespace
}  // namespace tarnwick
