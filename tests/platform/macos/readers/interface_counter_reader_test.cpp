// SPDX-License-Identifier: MIT
#include "platform/macos/readers/interface_counter_reader.h"

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
#include "services/network_service.h"
#include "tests/platform/macos/readers/routing_message_bytes.h"

namespace tarnwick {
namespace {

using platform::Counters;
using platform::InterfaceAddress;
using platform::InterfaceTable;
using platform::testing::ScriptedInterfaceCalls;
using routing::Bytes;
using routing::interfaceMessage;
using routing::joined;
using routing::routingMessage;
using testing::ElementsAre;
using testing::Optional;

constexpr std::int32_t kNoSuchEntry = 2;

class InterfaceCounterReaderTest : public testing::Test {
 protected:
    InterfaceCounterReaderTest() {
        calls.answers.getifaddrs.set(std::vector{linkAddress("en9", 70, 71)});
        calls.answers.if_nametoindex.set(9);
    }

    static InterfaceAddress linkAddress(const std::string& name, std::uint32_t received,
                                        std::uint32_t sent) {
        return {.name = name,
                .flags = 0x8863,
                .family = std::uint8_t{18},
                .statistics = {{.inputBytes = received, .outputBytes = sent}}};
    }

    void answerList(std::size_t size, const Bytes& bytes) {
        calls.answers.sysctlSize.set({.size = size});
        calls.answers.sysctlList.set({.bytes = bytes});
    }
    void answerList(const Bytes& bytes) { answerList(bytes.size(), bytes); }

    /// What the addresses give unless a test changes them.
    const InterfaceTable fallback{{9, {70, 71, true}}};
    ScriptedInterfaceCalls calls;
    InterfaceCounterReader reader{calls};
};

TEST_F(InterfaceCounterReaderTest, TheInterfaceListGivesSixtyFourBitCounters) {
    answerList(interfaceMessage({.index = 4, .received = 5'000'000'000, .sent = 6'000'000'000}));
    EXPECT_THAT(reader.interfaceCounters(),
                Optional(InterfaceTable{{4, {5'000'000'000, 6'000'000'000, false}}}));
    EXPECT_THAT(calls.calls(), ElementsAre("sysctl size", "sysctl 160"));
    EXPECT_THAT(calls.sysctlName(), ElementsAre(4, 17, 0, 0, 6, 0));
}

TEST_F(InterfaceCounterReaderTest, OnlyWhatWasWrittenToTheBufferIsRead) {
    answerList(300, interfaceMessage({.index = 4, .received = 1, .sent = 2}));
    EXPECT_THAT(reader.interfaceCounters(), Optional(InterfaceTable{{4, {1, 2, false}}}));
    EXPECT_THAT(calls.calls(), ElementsAre("sysctl size", "sysctl 300"));
}

TEST_F(InterfaceCounterReaderTest, AListOfNoBytesIsAnEmptyTable) {
    answerList(16, {});
    EXPECT_THAT(reader.interfaceCounters(), Optional(InterfaceTable{}));
}

TEST_F(InterfaceCounterReaderTest, ASizeBelowOneIsAnEmptyTableWithoutASecondCall) {
    answerList(0, interfaceMessage({}));
    EXPECT_THAT(reader.interfaceCounters(), Optional(InterfaceTable{}));
    EXPECT_THAT(calls.calls(), ElementsAre("sysctl size"));
}

TEST_F(InterfaceCounterReaderTest, ASizeOfOneIsRead) {
    answerList(1, {});
    EXPECT_THAT(reader.interfaceCounters(), Optional(InterfaceTable{}));
    EXPECT_THAT(calls.calls(), ElementsAre("sysctl size", "sysctl 1"));
}

TEST_F(InterfaceCounterReaderTest, AFailedSizeUsesTheAddressesAtOnceWhateverTheError) {
    for (const std::int32_t error : {1, kNoSuchEntry, 12}) {
        ScriptedInterfaceCalls failing;
        failing.answers.sysctlSize.set({.error = error, .size = 160});
        failing.answers.sysctlList.set({.bytes = interfaceMessage({})});
        failing.answers.getifaddrs.set(std::vector{linkAddress("en9", 70, 71)});
        failing.answers.if_nametoindex.set(9);
        EXPECT_THAT(InterfaceCounterReader(failing).interfaceCounters(), Optional(fallback));
        EXPECT_THAT(failing.calls(),
                    ElementsAre("sysctl size", "getifaddrs", "if_nametoindex en9"));
    }
}

TEST_F(InterfaceCounterReaderTest, AListThatGrewIsAskedForAgainWithAFreshSize) {
    const Bytes list = interfaceMessage({.index = 4, .received = 1, .sent = 2});
    calls.answers.sysctlSize.queue({.size = 80});
    calls.answers.sysctlSize.queue({.size = 120});
    calls.answers.sysctlSize.queue({.size = 200});
    calls.answers.sysctlList.queue({.error = 12});
    calls.answers.sysctlList.queue({.error = 12});
    calls.answers.sysctlList.queue({.bytes = list});
    EXPECT_THAT(reader.interfaceCounters(), Optional(InterfaceTable{{4, {1, 2, false}}}));
    EXPECT_THAT(calls.calls(), ElementsAre("sysctl size", "sysctl 80", "sysctl size", "sysctl 120",
                                           "sysctl size", "sysctl 200"));
}

TEST_F(InterfaceCounterReaderTest, AThirdListThatGrewUsesTheAddresses) {
    calls.answers.sysctlSize.set({.size = 80});
    calls.answers.sysctlList.set({.error = 12});
    EXPECT_THAT(reader.interfaceCounters(), Optional(fallback));
    EXPECT_THAT(calls.calls(),
                ElementsAre("sysctl size", "sysctl 80", "sysctl size", "sysctl 80", "sysctl size",
                            "sysctl 80", "getifaddrs", "if_nametoindex en9"));
}

TEST_F(InterfaceCounterReaderTest, AnyOtherErrorOfTheListUsesTheAddressesAtOnce) {
    for (const std::int32_t error : {1, kNoSuchEntry, 11, 13, 14}) {
        ScriptedInterfaceCalls failing;
        failing.answers.sysctlSize.set({.size = 160});
        failing.answers.sysctlList.set({.error = error, .bytes = interfaceMessage({})});
        failing.answers.getifaddrs.set(std::vector{linkAddress("en9", 70, 71)});
        failing.answers.if_nametoindex.set(9);
        EXPECT_THAT(InterfaceCounterReader(failing).interfaceCounters(), Optional(fallback));
        EXPECT_THAT(failing.calls(),
                    ElementsAre("sysctl size", "sysctl 160", "getifaddrs", "if_nametoindex en9"));
    }
}

TEST_F(InterfaceCounterReaderTest, AnotherErrorAfterAListThatGrewUsesTheAddresses) {
    calls.answers.sysctlSize.set({.size = 80});
    calls.answers.sysctlList.queue({.error = 12});
    calls.answers.sysctlList.set({.error = 1});
    EXPECT_THAT(reader.interfaceCounters(), Optional(fallback));
    EXPECT_EQ(calls.calls().size(), 6U);
}

TEST_F(InterfaceCounterReaderTest, AFailedFreshSizeUsesTheAddresses) {
    calls.answers.sysctlSize.queue({.size = 80});
    calls.answers.sysctlSize.set({.error = 12});
    calls.answers.sysctlList.set({.error = 12});
    EXPECT_THAT(reader.interfaceCounters(), Optional(fallback));
    EXPECT_THAT(calls.calls(), ElementsAre("sysctl size", "sysctl 80", "sysctl size", "getifaddrs",
                                           "if_nametoindex en9"));
}

TEST_F(InterfaceCounterReaderTest, AFreshSizeBelowOneIsAnEmptyTable) {
    calls.answers.sysctlSize.queue({.size = 80});
    calls.answers.sysctlSize.set({.size = 0});
    calls.answers.sysctlList.set({.error = 12});
    EXPECT_THAT(reader.interfaceCounters(), Optional(InterfaceTable{}));
}

TEST_F(InterfaceCounterReaderTest, AMessageOfVersionFourMakesTheWholeListFailOver) {
    answerList(joined(
        {interfaceMessage({.index = 4, .received = 1, .sent = 2}), routingMessage(12, 16, 4)}));
    EXPECT_THAT(reader.interfaceCounters(), Optional(fallback));
    EXPECT_THAT(calls.calls(),
                ElementsAre("sysctl size", "sysctl 176", "getifaddrs", "if_nametoindex en9"));
}

TEST_F(InterfaceCounterReaderTest, EveryReadTriesTheListFirst) {
    calls.answers.sysctlSize.queue({.error = 1});
    EXPECT_THAT(reader.interfaceCounters(), Optional(fallback));
    answerList(interfaceMessage({.index = 4, .received = 1, .sent = 2}));
    EXPECT_THAT(reader.interfaceCounters(), Optional(InterfaceTable{{4, {1, 2, false}}}));
}

TEST_F(InterfaceCounterReaderTest, AFailedListOfAddressesGivesNoTable) {
    calls.answers.getifaddrs.set(std::nullopt);
    EXPECT_EQ(reader.interfaceCounters(), std::nullopt);
}

TEST_F(InterfaceCounterReaderTest, AnEmptyListOfAddressesGivesNoTable) {
    calls.answers.getifaddrs.set(std::vector<InterfaceAddress>{});
    EXPECT_EQ(reader.interfaceCounters(), std::nullopt);
}

TEST_F(InterfaceCounterReaderTest, AddressesOfWhichNoneCountsGiveAnEmptyTable) {
    InterfaceAddress loopback = linkAddress("lo0", 1, 2);
    loopback.flags = 0x8049;
    calls.answers.getifaddrs.set(std::vector{loopback});
    EXPECT_THAT(reader.interfaceCounters(), Optional(InterfaceTable{}));
}

TEST_F(InterfaceCounterReaderTest, OnlyAddressesThatCountAreLookedUp) {
    InterfaceAddress down = linkAddress("down", 1, 2);
    down.flags = 0x8862;
    InterfaceAddress loopback = linkAddress("loopback", 1, 2);
    loopback.flags = 0x9;
    InterfaceAddress withoutAddress = linkAddress("bare", 1, 2);
    withoutAddress.family = std::nullopt;
    InterfaceAddress internet = linkAddress("internet", 1, 2);
    internet.family = std::uint8_t{2};
    InterfaceAddress withoutStatistics = linkAddress("silent", 1, 2);
    withoutStatistics.statistics = std::nullopt;
    InterfaceAddress barelyUp = linkAddress("up", 3, 4);
    barelyUp.flags = 0x1;
    calls.answers.getifaddrs.set(
        std::vector{down, loopback, withoutAddress, internet, withoutStatistics, barelyUp});
    calls.answers.if_nametoindex.set(6);
    EXPECT_THAT(reader.interfaceCounters(), Optional(InterfaceTable{{6, {3, 4, true}}}));
    EXPECT_THAT(calls.calls(), ElementsAre("sysctl size", "getifaddrs", "if_nametoindex up"));
}

TEST_F(InterfaceCounterReaderTest, OnlyTheLinkLayerFamilyCounts) {
    for (int family = 0; family < 256; ++family) {
        InterfaceAddress address = linkAddress("en0", 1, 2);
        address.family = static_cast<std::uint8_t>(family);
        calls.answers.getifaddrs.set(std::vector{address});
        const InterfaceTable expected =
            family == 18 ? InterfaceTable{{9, {1, 2, true}}} : InterfaceTable{};
        EXPECT_THAT(reader.interfaceCounters(), Optional(expected)) << family;
    }
}

TEST_F(InterfaceCounterReaderTest, AnAddressWhoseInterfaceIsGoneIsSkipped) {
    calls.answers.getifaddrs.set(std::vector{linkAddress("gone", 1, 2), linkAddress("en0", 3, 4)});
    calls.answers.if_nametoindex.queue(0);
    calls.answers.if_nametoindex.queue(5);
    EXPECT_THAT(reader.interfaceCounters(), Optional(InterfaceTable{{5, {3, 4, true}}}));
}

TEST_F(InterfaceCounterReaderTest, TheLastAddressOfAnInterfaceHolds) {
    calls.answers.getifaddrs.set(std::vector{linkAddress("en0", 9, 9), linkAddress("en0", 3, 4)});
    EXPECT_THAT(reader.interfaceCounters(), Optional(InterfaceTable{{9, {3, 4, true}}}));
}

TEST_F(InterfaceCounterReaderTest, AddressesAreReadInTheirOrderUpToTheLargestCounter) {
    constexpr std::uint32_t kLargest = std::numeric_limits<std::uint32_t>::max();
    calls.answers.getifaddrs.set(
        std::vector{linkAddress("en1", kLargest, 1), linkAddress("en0", 2, kLargest)});
    calls.answers.if_nametoindex.queue(1);
    calls.answers.if_nametoindex.queue(kLargest);
    EXPECT_THAT(
        reader.interfaceCounters(),
        Optional(InterfaceTable{{1, {kLargest, 1, true}}, {kLargest, {2, kLargest, true}}}));
    EXPECT_THAT(calls.calls(), ElementsAre("sysctl size", "getifaddrs", "if_nametoindex en1",
                                           "if_nametoindex en0"));
}

TEST(InterfaceCounterReaderFailures, AFailureOfTheCallsBelowTheCounterReaderIsLogged) {
    platform::testing::ScriptedKernel kernel;
    platform::testing::ScriptedInterfaceCalls calls;
    platform::testing::RecordingLog log;
    InterfaceCounterReader reader(calls);
    NetworkService service(reader, kernel, platform::Logger(log));
    EXPECT_FALSE(service.readNetworkInfo().hasSample);
    EXPECT_THAT(log.lines(),
                ElementsAre(std::pair{platform::LogLevel::error,
                                      std::string("Network counter readers unavailable")}));
}

}  // namespace
}  // namespace tarnwick
