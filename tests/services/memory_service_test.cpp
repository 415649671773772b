// SPDX-License-Identifier: MIT
#include "services/memory_service.h"

#include <atomic>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include "platform/testing/joined_thread.h"
#include "platform/testing/recording_log.h"
#include "platform/testing/scripted_kernel.h"

namespace tarnwick {
namespace {

using platform::SwapUsage;
using platform::VMStatistics;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::uint64_t kPage = 4096;
constexpr std::uint64_t kGiB = 1024ULL * 1024 * 1024;
constexpr std::uint32_t kMostPages = std::numeric_limits<std::uint32_t>::max();

class MemoryServiceTest : public testing::Test {
 protected:
    MemoryServiceTest() {
        kernel.answers.memorySize.set(16 * kGiB);
        kernel.answers.swapUsage.set(
            SwapUsage{.total = 8 * kGiB, .available = 5 * kGiB, .used = 3 * kGiB});
        setPages({});
    }

    void setPages(const VMStatistics& pages) {
        kernel.answers.hostStatistics64.set({.result = 0, .statistics = pages});
    }

    MemoryInfo read() { return service.readMemoryInfo(); }
    MemoryInfo read(const VMStatistics& pages) {
        setPages(pages);
        return read();
    }
    /// Reads with pages of another size; services keep the size that they began with.
    MemoryInfo readWithPageSize(std::uint64_t pageSize, const VMStatistics& pages) {
        kernel.answers.pageSize.set(pageSize);
        setPages(pages);
        return MemoryService(kernel).readMemoryInfo();
    }

    platform::testing::ScriptedKernel kernel;
    platform::testing::RecordingLog log;
    MemoryService service{kernel, platform::Logger(log)};
};

using MemoryServiceDeathTest = MemoryServiceTest;

TEST_F(MemoryServiceTest, EachFigureComesFromItsOwnCounts) {
    const MemoryInfo info = read({.free_count = 100,
                                  .wire_count = 700,
                                  .purgeable_count = 11,
                                  .speculative_count = 30,
                                  .compressor_page_count = 1300,
                                  .external_page_count = 1700,
                                  .internal_page_count = 1900});
    EXPECT_EQ(info.total, 16 * kGiB);
    EXPECT_EQ(info.free, 70 * kPage);
    EXPECT_EQ(info.app, 1889 * kPage);
    EXPECT_EQ(info.wired, 700 * kPage);
    EXPECT_EQ(info.compressed, 1300 * kPage);
    EXPECT_EQ(info.cached, 1711 * kPage);
    EXPECT_EQ(info.used, (1889 + 700 + 1300) * kPage);
    EXPECT_EQ(info.swapUsed, 3 * kGiB);
    EXPECT_EQ(info.swapTotal, 8 * kGiB);
}

TEST_F(MemoryServiceTest, NoPagesGiveZeros) {
    const MemoryInfo info = read();
    EXPECT_EQ(info.total, 16 * kGiB);
    for (const std::uint64_t count :
         {info.used, info.free, info.app, info.wired, info.compressed, info.cached}) {
        EXPECT_EQ(count, 0U);
    }
}

TEST_F(MemoryServiceTest, SpeculativePagesAreNotFree) {
    EXPECT_EQ(read({.free_count = 100, .speculative_count = 30}).free, 70 * kPage);
}

TEST_F(MemoryServiceTest, MoreSpeculativeThanFreePagesLeaveNothingFree) {
    EXPECT_EQ(read({.free_count = 100, .speculative_count = 150}).free, 0U);
    EXPECT_EQ(read({.free_count = 100, .speculative_count = 100}).free, 0U);
    EXPECT_EQ(read({.free_count = 100, .speculative_count = 99}).free, kPage);
}

TEST_F(MemoryServiceTest, PurgeablePagesMoveFromApplicationsToCache) {
    const MemoryInfo info =
        read({.purgeable_count = 40, .external_page_count = 7, .internal_page_count = 100});
    EXPECT_EQ(info.app, 60 * kPage);
    EXPECT_EQ(info.cached, 47 * kPage);
}

TEST_F(MemoryServiceTest, MorePurgeableThanInternalPagesLeaveNoApplicationMemory) {
    const MemoryInfo info =
        read({.purgeable_count = 150, .external_page_count = 7, .internal_page_count = 100});
    EXPECT_EQ(info.app, 0U);
    EXPECT_EQ(info.cached, 157 * kPage);
    EXPECT_EQ(read({.purgeable_count = 100, .internal_page_count = 100}).app, 0U);
    EXPECT_EQ(read({.purgeable_count = 99, .internal_page_count = 100}).app, kPage);
}

TEST_F(MemoryServiceTest, FiguresGoBeyondFourGibibytes) {
    kernel.answers.memorySize.set(std::numeric_limits<std::uint64_t>::max());
    const std::uint64_t bytes = std::uint64_t{kMostPages} * kPage;
    EXPECT_EQ(read({.free_count = kMostPages}).free, bytes);
    EXPECT_EQ(read({.internal_page_count = kMostPages}).app, bytes);
    EXPECT_EQ(read({.wire_count = kMostPages}).wired, bytes);
    EXPECT_EQ(read({.compressor_page_count = kMostPages}).compressed, bytes);
    EXPECT_EQ(read({.purgeable_count = kMostPages, .external_page_count = kMostPages}).cached,
              2 * bytes);
    EXPECT_EQ(read({.wire_count = kMostPages,
                    .compressor_page_count = kMostPages,
                    .internal_page_count = kMostPages})
                  .used,
              3 * bytes);
}

TEST_F(MemoryServiceTest, UsedBelowTheTotalStays) {
    kernel.answers.memorySize.set(61 * kPage);
    EXPECT_EQ(read({.free_count = 50, .wire_count = 60}).used, 60 * kPage);
}

TEST_F(MemoryServiceTest, UsedEqualToTheTotalStays) {
    kernel.answers.memorySize.set(60 * kPage);
    EXPECT_EQ(read({.free_count = 50, .wire_count = 60}).used, 60 * kPage);
}

TEST_F(MemoryServiceTest, UsedAboveTheTotalBecomesWhatIsNeitherFreeNorCached) {
    kernel.answers.memorySize.set(50 * kPage);
    const MemoryInfo info = read({.free_count = 6,
                                  .wire_count = 20,
                                  .purgeable_count = 1,
                                  .speculative_count = 1,
                                  .compressor_page_count = 20,
                                  .external_page_count = 3,
                                  .internal_page_count = 21});
    EXPECT_EQ(info.used, (50 - 5 - 4) * kPage);
    EXPECT_EQ(info.app, 20 * kPage);
    EXPECT_EQ(info.wired, 20 * kPage);
    EXPECT_EQ(info.compressed, 20 * kPage);
    EXPECT_EQ(info.free, 5 * kPage);
    EXPECT_EQ(info.cached, 4 * kPage);
}

TEST_F(MemoryServiceTest, UsedAboveTheTotalKeepsTheLastByteThatIsNeitherFreeNorCached) {
    kernel.answers.memorySize.set(10 * kPage + 1);
    EXPECT_EQ(read({.free_count = 6, .wire_count = 60, .external_page_count = 4}).used, 1U);
}

TEST_F(MemoryServiceTest, UsedIsTheTotalWhenFreeAndCachedReachIt) {
    kernel.answers.memorySize.set(10 * kPage);
    EXPECT_EQ(read({.free_count = 6, .wire_count = 60, .external_page_count = 4}).used, 10 * kPage);
}

TEST_F(MemoryServiceTest, UsedIsTheTotalWhenFreeAndCachedExceedIt) {
    kernel.answers.memorySize.set(10 * kPage);
    EXPECT_EQ(read({.free_count = 6, .wire_count = 60, .external_page_count = 5}).used, 10 * kPage);
}

TEST_F(MemoryServiceTest, ThePageSizeIsTakenOnceWhenTheServiceIsMade) {
    platform::testing::ScriptedKernel other;
    other.answers.pageSize.queue(16384);
    MemoryService sixteen(other);
    EXPECT_THAT(other.calls(), ElementsAre("pageSize"));

    other.clearCalls();
    other.answers.hostStatistics64.set({.result = 0, .statistics = {.free_count = 2}});
    EXPECT_EQ(sixteen.readMemoryInfo().free, 2U * 16384);
    EXPECT_EQ(sixteen.readMemoryInfo().free, 2U * 16384);
    EXPECT_THAT(other.calls(), testing::Not(testing::Contains("pageSize")));
}

TEST_F(MemoryServiceTest, AsksForTheSizeThenThePagesThenTheSwap) {
    kernel.clearCalls();
    read();
    EXPECT_THAT(kernel.calls(), ElementsAre("memorySize", "hostStatistics64", "swapUsage"));
}

TEST_F(MemoryServiceTest, NothingIsKeptBetweenCalls) {
    read({.free_count = 9, .wire_count = 9, .compressor_page_count = 9});
    kernel.answers.swapUsage.set(std::nullopt);
    const MemoryInfo info = read({});
    EXPECT_EQ(info.free, 0U);
    EXPECT_EQ(info.used, 0U);
    EXPECT_EQ(info.swapTotal, 0U);
}

TEST_F(MemoryServiceTest, AFailedPageCountLeavesOnlyTheTotal) {
    kernel.answers.hostStatistics64.set({.result = 5, .statistics = {.free_count = 7}});
    const MemoryInfo info = read();
    EXPECT_EQ(info.total, 16 * kGiB);
    for (const std::uint64_t count : {info.used, info.free, info.app, info.wired, info.compressed,
                                      info.cached, info.swapUsed, info.swapTotal}) {
        EXPECT_EQ(count, 0U);
    }
}

TEST_F(MemoryServiceTest, AFailedPageCountIsLoggedWithItsCode) {
    kernel.answers.hostStatistics64.queue({.result = 5});
    kernel.answers.hostStatistics64.queue({.result = -308});
    read();
    read();
    EXPECT_THAT(log.lines(),
                ElementsAre(std::pair{platform::LogLevel::error,
                                      std::string("host_statistics64 failed with result: 5")},
                            std::pair{platform::LogLevel::error,
                                      std::string("host_statistics64 failed with result: -308")}));
}

TEST_F(MemoryServiceTest, AFailedPageCountKeepsSwapUnread) {
    kernel.clearCalls();
    kernel.answers.hostStatistics64.set({.result = 5});
    read();
    EXPECT_THAT(kernel.calls(), ElementsAre("memorySize", "hostStatistics64"));
}

TEST_F(MemoryServiceTest, WithoutTheMemorySizeTotalAndUsedAreZero) {
    kernel.answers.memorySize.set(std::nullopt);
    const MemoryInfo info = read({.free_count = 3,
                                  .wire_count = 4,
                                  .compressor_page_count = 5,
                                  .external_page_count = 6,
                                  .internal_page_count = 7});
    EXPECT_EQ(info.total, 0U);
    EXPECT_EQ(info.used, 0U);
    EXPECT_EQ(info.free, 3 * kPage);
    EXPECT_EQ(info.wired, 4 * kPage);
    EXPECT_EQ(info.compressed, 5 * kPage);
    EXPECT_EQ(info.cached, 6 * kPage);
    EXPECT_EQ(info.app, 7 * kPage);
    EXPECT_EQ(info.swapTotal, 8 * kGiB);
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(MemoryServiceTest, WithoutTheMemorySizeAndFreePagesUsedIsStillZero) {
    kernel.answers.memorySize.set(std::nullopt);
    EXPECT_EQ(read({.wire_count = 4}).used, 0U);
}

TEST_F(MemoryServiceTest, WithoutAnySourceTheRecordIsEmpty) {
    kernel.answers.memorySize.set(std::nullopt);
    kernel.answers.hostStatistics64.set({.result = 1});
    EXPECT_EQ(read().total, 0U);
}

TEST_F(MemoryServiceTest, WithoutSwapFiguresOnlyTheseAreZero) {
    kernel.answers.swapUsage.set(std::nullopt);
    const MemoryInfo info = read({.free_count = 3, .wire_count = 4});
    EXPECT_EQ(info.swapUsed, 0U);
    EXPECT_EQ(info.swapTotal, 0U);
    EXPECT_EQ(info.total, 16 * kGiB);
    EXPECT_EQ(info.free, 3 * kPage);
    EXPECT_EQ(info.used, 4 * kPage);
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(MemoryServiceTest, SuccessIsNotLogged) {
    read();
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST(MemoryService, TheDefaultLogRecordsNothing) {
    platform::testing::ScriptedKernel kernel;
    MemoryService service(kernel);
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    service.readMemoryInfo();
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST_F(MemoryServiceTest, ConcurrentCallsGiveTheSameRecord) {
    setPages({.free_count = 100, .wire_count = 200});
    std::atomic<int> wrong = 0;
    {
        std::vector<platform::testing::JoinedThread> threads;
        for (int i = 0; i < 4; ++i) {
            threads.emplace_back([&] {
                for (int n = 0; n < 200; ++n) {
                    const MemoryInfo info = read();
                    if (info.free != 100 * kPage || info.used != 200 * kPage) {
                        ++wrong;
                    }
                }
            });
        }
    }
    EXPECT_EQ(wrong, 0);
}

TEST_F(MemoryServiceDeathTest, AProductThatDoesNotFitIsFatal) {
    constexpr std::uint64_t kHuge = 1ULL << 33;
    EXPECT_DEATH(readWithPageSize(kHuge, {.free_count = kMostPages}), "");
    EXPECT_DEATH(readWithPageSize(kHuge, {.wire_count = kMostPages}), "");
    EXPECT_DEATH(readWithPageSize(kHuge, {.compressor_page_count = kMostPages}), "");
    EXPECT_DEATH(readWithPageSize(kHuge, {.external_page_count = kMostPages}), "");
    EXPECT_DEATH(readWithPageSize(kHuge, {.purgeable_count = kMostPages}), "");
    EXPECT_DEATH(readWithPageSize(kHuge, {.internal_page_count = kMostPages}), "");
}

TEST_F(MemoryServiceDeathTest, PagesAreMultipliedBeforeTheyAreSubtracted) {
    // The difference would be no pages at all, but neither product fits.
    EXPECT_DEATH(readWithPageSize(1ULL << 33, {.purgeable_count = kMostPages,
                                               .internal_page_count = kMostPages}),
                 "");
}

TEST_F(MemoryServiceDeathTest, CachedMemoryThatDoesNotFitIsFatal) {
    EXPECT_DEATH(readWithPageSize(1ULL << 32,
                                  {.purgeable_count = 1U << 31, .external_page_count = 1U << 31}),
                 "");
}

TEST_F(MemoryServiceDeathTest, UsedMemoryThatDoesNotFitIsFatal) {
    EXPECT_DEATH(
        readWithPageSize(1ULL << 32, {.wire_count = 1U << 31, .compressor_page_count = 1U << 31}),
        "");
    EXPECT_DEATH(
        readWithPageSize(1ULL << 32, {.wire_count = 1U << 31, .internal_page_count = 1U << 31}),
        "");
}

TEST_F(MemoryServiceDeathTest, FreeAndCachedMemoryThatDoNotFitAreFatal) {
    EXPECT_DEATH(readWithPageSize(1ULL << 32, {.free_count = 1U << 31,
                                               .wire_count = 1U << 31,
                                               .external_page_count = 1U << 31}),
                 "");
}

TEST_F(MemoryServiceTest, TheLargestFiguresThatFitAreExact) {
    kernel.answers.memorySize.set(std::numeric_limits<std::uint64_t>::max());
    const MemoryInfo info =
        readWithPageSize(1ULL << 32, {.free_count = kMostPages, .wire_count = kMostPages});
    EXPECT_EQ(info.free, 0xFFFFFFFF00000000U);
    EXPECT_EQ(info.used, 0xFFFFFFFF00000000U);
}

}  // namespace
}  // namespace tarnwick
