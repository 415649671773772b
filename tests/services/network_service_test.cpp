// SPDX-License-Identifier: MIT
#include "services/network_service.h"

#include <cstdint>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include "platform/testing/recording_log.h"
#include "platform/testing/scripted_kernel.h"
#include "platform/testing/scripted_network_interfaces.h"

namespace tarnwick {
namespace {

using platform::Counters;
using platform::InterfaceTable;
using testing::DoubleEq;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::uint64_t kMostBytes = std::numeric_limits<std::uint64_t>::max();

class NetworkServiceTest : public testing::Test {
 protected:
    NetworkInfo read(double time, std::optional<InterfaceTable> interfaces) {
        kernel.setMonotonicSeconds(time);
        source.answers.interfaceCounters.set(std::move(interfaces));
        return service.readNetworkInfo();
    }

    static void expectRates(const NetworkInfo& info, double download, double upload) {
        EXPECT_DOUBLE_EQ(info.downloadBytesPerSecond, download);
        EXPECT_DOUBLE_EQ(info.uploadBytesPerSecond, upload);
    }
    static void expectTotals(const NetworkInfo& info, std::uint64_t received, std::uint64_t sent) {
        EXPECT_EQ(info.totalReceivedBytes, received);
        EXPECT_EQ(info.totalSentBytes, sent);
    }

    platform::testing::ScriptedKernel kernel;
    platform::testing::ScriptedNetworkInterfaces source;
    platform::testing::RecordingLog log;
    NetworkService service{source, kernel, platform::Logger(log)};
};

TEST_F(NetworkServiceTest, TheFirstCallHasTotalsAndNoRates) {
    const NetworkInfo info = read(50, InterfaceTable{{1, {100, 10, false}}, {4, {200, 20, true}}});
    EXPECT_FALSE(info.hasSample);
    expectRates(info, 0, 0);
    expectTotals(info, 300, 30);
}

TEST_F(NetworkServiceTest, TheSecondCallHasRates) {
    read(50, InterfaceTable{{1, {100, 10, false}}});
    const NetworkInfo info = read(52, InterfaceTable{{1, {1100, 70, false}}});
    EXPECT_TRUE(info.hasSample);
    expectRates(info, 500, 30);
    expectTotals(info, 1100, 70);
}

TEST_F(NetworkServiceTest, EachCallComparesWithTheOneBefore) {
    read(0, InterfaceTable{{1, {0, 0, false}}});
    expectRates(read(1, InterfaceTable{{1, {1000, 1, false}}}), 1000, 1);
    expectRates(read(3, InterfaceTable{{1, {1500, 5, false}}}), 250, 2);
    expectRates(read(13, InterfaceTable{{1, {1500, 5, false}}}), 0, 0);
}

TEST_F(NetworkServiceTest, IntervalsAreFractionsOfASecondToo) {
    read(1.5, InterfaceTable{{1, {0, 0, false}}});
    expectRates(read(1.75, InterfaceTable{{1, {100, 200, false}}}), 400, 800);
}

TEST_F(NetworkServiceTest, TheSharesOfInterfacesAddUp) {
    read(0, InterfaceTable{{1, {10, 1, false}}, {2, {20, 2, true}}, {3, {30, 3, false}}});
    const NetworkInfo info = read(
        10, InterfaceTable{{1, {110, 11, false}}, {2, {220, 22, true}}, {3, {330, 33, false}}});
    expectRates(info, 60, 6);
    expectTotals(info, 660, 66);
}

TEST_F(NetworkServiceTest, EachShareIsDividedByItself) {
    // Two thirds, rounded twice and added, are not the third of the sum.
    const double share = 2.0 / 3;
    const double once = 10.0 / 3;
    ASSERT_NE(share + share + share + share + share, once);
    InterfaceTable before;
    InterfaceTable after;
    for (std::uint32_t index = 1; index <= 5; ++index) {
        before[index] = {0, 0, false};
        after[index] = {2, 2, false};
    }
    read(0, before);
    const NetworkInfo info = read(3, after);
    EXPECT_EQ(info.downloadBytesPerSecond, share + share + share + share + share);
    EXPECT_EQ(info.uploadBytesPerSecond, share + share + share + share + share);
}

TEST_F(NetworkServiceTest, NoTimeBetweenTwoCallsMeansNoRates) {
    read(50, InterfaceTable{{1, {100, 10, false}}});
    const NetworkInfo info = read(50, InterfaceTable{{1, {5100, 510, false}}});
    EXPECT_TRUE(info.hasSample);
    expectRates(info, 0, 0);
    expectTotals(info, 5100, 510);
    // The second table is what the third compares with.
    expectRates(read(51, InterfaceTable{{1, {5200, 530, false}}}), 100, 20);
}

TEST_F(NetworkServiceTest, AClockThatWentBackMeansNoRates) {
    read(50, InterfaceTable{{1, {100, 10, false}}});
    const NetworkInfo info = read(49, InterfaceTable{{1, {5100, 510, false}}});
    EXPECT_TRUE(info.hasSample);
    expectRates(info, 0, 0);
    expectRates(read(50, InterfaceTable{{1, {5200, 530, false}}}), 100, 20);
}

TEST_F(NetworkServiceTest, ANewInterfaceAddsToTheTotalsAndNotToTheRates) {
    read(0, InterfaceTable{{1, {100, 10, false}}});
    const NetworkInfo info =
        read(1, InterfaceTable{{1, {150, 15, false}}, {2, {1'000'000, 100'000, false}}});
    EXPECT_TRUE(info.hasSample);
    expectRates(info, 50, 5);
    expectTotals(info, 1'000'150, 100'015);
    expectRates(read(2, InterfaceTable{{1, {150, 15, false}}, {2, {1'000'007, 100'003, false}}}), 7,
                3);
}

TEST_F(NetworkServiceTest, AnInterfaceThatIsGoneAddsNothing) {
    read(0, InterfaceTable{{1, {100, 10, false}}, {2, {1000, 2000, false}}});
    const NetworkInfo info = read(1, InterfaceTable{{1, {150, 15, false}}});
    expectRates(info, 50, 5);
    expectTotals(info, 150, 15);
}

TEST_F(NetworkServiceTest, AnInterfaceThatComesBackHasNoRatesForOneSample) {
    read(0, InterfaceTable{{1, {100, 10, false}}});
    read(1, InterfaceTable{});
    expectRates(read(2, InterfaceTable{{1, {900, 90, false}}}), 0, 0);
    expectRates(read(3, InterfaceTable{{1, {950, 95, false}}}), 50, 5);
}

TEST_F(NetworkServiceTest, AThirtyTwoBitCounterThatWrappedAddsNothing) {
    read(0, InterfaceTable{{1, {4'294'967'000, 4'294'967'000, true}}});
    const NetworkInfo info = read(1, InterfaceTable{{1, {500, 4'294'967'100, true}}});
    expectRates(info, 0, 100);
    expectTotals(info, 500, 4'294'967'100);
    expectRates(read(2, InterfaceTable{{1, {800, 4'294'967'101, true}}}), 300, 1);
}

TEST_F(NetworkServiceTest, EachCounterThatWentBackwardsAddsNothing) {
    read(0, InterfaceTable{{1, {1000, 1000, false}}, {2, {0, 0, false}}});
    expectRates(read(1, InterfaceTable{{1, {999, 1010, false}}, {2, {5, 5, false}}}), 5, 15);
    expectRates(read(2, InterfaceTable{{1, {1009, 0, false}}, {2, {10, 10, false}}}), 15, 5);
}

TEST_F(NetworkServiceTest, AnInterfaceWhoseCountersBecameNarrowerIsSkipped) {
    read(0, InterfaceTable{{1, {100, 10, false}}, {2, {0, 0, false}}});
    const NetworkInfo info = read(1, InterfaceTable{{1, {900, 90, true}}, {2, {7, 8, false}}});
    expectRates(info, 7, 8);
    expectTotals(info, 907, 98);
    expectRates(read(2, InterfaceTable{{1, {950, 95, true}}, {2, {7, 8, false}}}), 50, 5);
}

TEST_F(NetworkServiceTest, AnInterfaceWhoseCountersBecameWiderIsSkipped) {
    read(0, InterfaceTable{{1, {100, 10, true}}});
    expectRates(read(1, InterfaceTable{{1, {5'000'000'000, 6'000'000'000, false}}}), 0, 0);
    expectRates(read(2, InterfaceTable{{1, {5'000'000'003, 6'000'000'004, false}}}), 3, 4);
}

TEST_F(NetworkServiceTest, InterfacesAreToldApartByTheirIndex) {
    read(0, InterfaceTable{{1, {100, 100, false}}, {2, {500, 500, false}}});
    expectRates(read(1, InterfaceTable{{2, {501, 502, false}}, {1, {110, 120, false}}}), 11, 22);
}

TEST_F(NetworkServiceTest, AnEmptyTableIsASampleLikeAnyOther) {
    const NetworkInfo first = read(0, InterfaceTable{});
    EXPECT_FALSE(first.hasSample);
    const NetworkInfo second = read(1, InterfaceTable{});
    EXPECT_TRUE(second.hasSample);
    expectRates(second, 0, 0);
    expectTotals(second, 0, 0);
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(NetworkServiceTest, WithoutATableEverythingIsZero) {
    read(0, InterfaceTable{{1, {100, 10, false}}});
    const NetworkInfo info = read(1, std::nullopt);
    EXPECT_FALSE(info.hasSample);
    expectRates(info, 0, 0);
    expectTotals(info, 0, 0);
}

TEST_F(NetworkServiceTest, AfterACallWithoutATableRatesSpanTheLongerInterval) {
    read(0, InterfaceTable{{1, {100, 10, false}}});
    read(2, std::nullopt);
    read(4, std::nullopt);
    const NetworkInfo info = read(10, InterfaceTable{{1, {1100, 20, false}}});
    EXPECT_TRUE(info.hasSample);
    expectRates(info, 100, 1);
}

TEST_F(NetworkServiceTest, ACallWithoutATableIsNoFirstSample) {
    read(0, std::nullopt);
    EXPECT_FALSE(read(1, InterfaceTable{{1, {100, 10, false}}}).hasSample);
    EXPECT_TRUE(read(2, InterfaceTable{{1, {100, 10, false}}}).hasSample);
}

TEST_F(NetworkServiceTest, TotalsReachTheLargestNumber) {
    const InterfaceTable full{{1, {kMostBytes - 1, 1, false}}, {2, {1, kMostBytes - 1, false}}};
    expectTotals(read(0, full), kMostBytes, kMostBytes);
}

TEST_F(NetworkServiceTest, ACounterMayMoveByTheLargestNumber) {
    read(0, InterfaceTable{{1, {0, 0, false}}});
    expectRates(read(1, InterfaceTable{{1, {kMostBytes, kMostBytes, false}}}), 0x1p64, 0x1p64);
}

TEST_F(NetworkServiceTest, TotalsThatOverflowAreFatal) {
    EXPECT_DEATH(read(0, InterfaceTable{{1, {kMostBytes, 0, false}}, {2, {1, 0, false}}}), "");
    EXPECT_DEATH(read(0, InterfaceTable{{1, {0, kMostBytes, false}}, {2, {0, 1, false}}}), "");
}

TEST_F(NetworkServiceTest, EveryFailureOfAllSourcesIsLogged) {
    read(0, std::nullopt);
    read(1, InterfaceTable{});
    read(2, std::nullopt);
    const auto line =
        std::pair{platform::LogLevel::error, std::string("Network counter readers unavailable")};
    EXPECT_THAT(log.lines(), ElementsAre(line, line));
}

TEST_F(NetworkServiceTest, CountersAreReadOnceAndBeforeTheClock) {
    std::vector<std::string> order;
    NetworkService ordered(
        [&order] {
            order.emplace_back("readCounters");
            return InterfaceTable{};
        },
        [&order] {
            order.emplace_back("now");
            return 1.0;
        });
    ordered.readNetworkInfo();
    EXPECT_THAT(order, ElementsAre("readCounters", "now"));
}

TEST_F(NetworkServiceTest, WithoutATableTheClockIsNotRead) {
    read(0, std::nullopt);
    EXPECT_THAT(kernel.calls(), IsEmpty());
    read(0, InterfaceTable{});
    EXPECT_THAT(kernel.calls(), ElementsAre("monotonicSeconds"));
    EXPECT_THAT(source.calls(), ElementsAre("interfaceCounters", "interfaceCounters"));
}

TEST(NetworkService, TheDefaultLogRecordsNothing) {
    platform::testing::ScriptedKernel kernel;
    platform::testing::ScriptedNetworkInterfaces source;
    NetworkService service(source, kernel);
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    service.readNetworkInfo();
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST(Counters, AreEqualWhenAllThreeFieldsAre) {
    const Counters counters{1, 2, true};
    EXPECT_EQ(counters, (Counters{1, 2, true}));
    EXPECT_NE(counters, (Counters{9, 2, true}));
    EXPECT_NE(counters, (Counters{1, 9, true}));
    EXPECT_NE(counters, (Counters{1, 2, false}));
}

}  // namespace
}  // namespace tarnwick
