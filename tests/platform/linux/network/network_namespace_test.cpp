// SPDX-License-Identifier: MIT
// The sampler in private networks with interfaces of the test's own and real traffic, beside what
// the tool that people trust says.
#include "tests/platform/linux/network/network_namespace.h"

#include <cstdint>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <semaphore>
#include <stop_token>
#include <string>
#include <thread>
#include <utility>

#include "platform/linux/network/linux_network_interfaces.h"
#include "services/network_service.h"
#include "tests/platform/linux/files/descriptors.h"

namespace tarnwick::platform {
namespace {

using namespace testing;
using tarnwick::testing::limitDescriptors;
using tarnwick::testing::openDescriptors;
using ::testing::IsEmpty;

class NetworkNamespace : public ::testing::Test {
 protected:
    void SetUp() override {
        if (const std::string reason = enterEmptyNetwork(); !reason.empty()) {
            GTEST_SKIP() << reason;
        }
    }

    InterfaceTable table() {
        auto found = interfaces.interfaceCounters();
        EXPECT_TRUE(found);
        return found.value_or(InterfaceTable{});
    }
    NetworkInfo sampleAt(double seconds) {
        clock = seconds;
        return service.readNetworkInfo();
    }
    /// Two interfaces that are up and joined.
    static void joinedPair() { ip(cable("left", "right")); }
    /// Makes many pairs. One end of each pair has sent a frame of a size of its own.
    static void joinedPairs(int count) {
        std::string commands;
        for (int pair = 0; pair < count; ++pair) {
            const std::string number = std::to_string(pair);
            commands += cable("a" + number, "b" + number);
        }
        ip(commands);
        for (int pair = 0; pair < count; ++pair) {
            sendFrames("a" + std::to_string(pair), static_cast<std::size_t>(100 + pair));
        }
    }

    LinuxNetworkInterfaces interfaces;
    double clock = 0;
    NetworkService service{[this] { return interfaces.interfaceCounters(); },
                           [this] { return clock; }};
};

TEST_F(NetworkNamespace, TheLoopbackInterfaceIsNotCountedWhateverItMoves) {
    EXPECT_THAT(table(), IsEmpty());
    ip("link set lo up");
    sendToItself(10'000);
    ASSERT_GE(toolsTable().at(indexOf("lo")).received, 10'000U);
    EXPECT_THAT(table(), IsEmpty());
}

TEST_F(NetworkNamespace, TrafficIsCountedToTheByteOnBothEndsOfACable) {
    joinedPair();
    const std::uint32_t left = indexOf("left");
    const std::uint32_t right = indexOf("right");
    const InterfaceTable before = table();
    sendFrames("left", 1'514, 700);
    sendFrames("right", 60, 33);
    const InterfaceTable after = table();
    EXPECT_EQ(after.at(left).sent - before.at(left).sent, 1'514U * 700);
    EXPECT_EQ(after.at(right).received - before.at(right).received, 1'514U * 700);
    EXPECT_EQ(after.at(right).sent - before.at(right).sent, 60U * 33);
    EXPECT_EQ(after.at(left).received - before.at(left).received, 60U * 33);
    EXPECT_FALSE(after.at(left).uses32BitCounters);
}

TEST_F(NetworkNamespace, RatesAndTotalsAgreeWithTheTool) {
    joinedPair();
    const auto tools = [] {
        Counters both;
        for (const auto& [index, counters] : toolsTable()) {
            both.received += counters.received;
            both.sent += counters.sent;
        }
        return both;
    };
    const Counters before = tools();
    sampleAt(100);
    sendFrames("left", 1'400, 5'000);
    sendFrames("right", 900, 300);
    const NetworkInfo info = sampleAt(104);
    const Counters after = tools();
    EXPECT_EQ(info.totalReceivedBytes, after.received);
    EXPECT_EQ(info.totalSentBytes, after.sent);
    EXPECT_DOUBLE_EQ(info.downloadBytesPerSecond,
                     static_cast<double>(after.received - before.received) / 4);
    EXPECT_DOUBLE_EQ(info.uploadBytesPerSecond, static_cast<double>(after.sent - before.sent) / 4);
    // What was sent on one end was received on the other.
    EXPECT_DOUBLE_EQ(info.downloadBytesPerSecond, (1'400.0 * 5'000 + 900.0 * 300) / 4);
}

TEST_F(NetworkNamespace, AnInterfaceThatGoesDownIsNotCounted) {
    joinedPair();
    sendFrames("left", 1'000, 10);
    sampleAt(0);
    sendFrames("left", 1'000, 10);
    ip("link set left down");
    const NetworkInfo down = sampleAt(10);
    // Only the end that stayed up: what it has received.
    EXPECT_EQ(down.totalReceivedBytes, 20'000U);
    EXPECT_EQ(down.totalSentBytes, 0U);
    EXPECT_DOUBLE_EQ(down.downloadBytesPerSecond, 1'000);
    EXPECT_EQ(down.uploadBytesPerSecond, 0);

    ip("link set left up");
    const NetworkInfo up = sampleAt(20);
    EXPECT_EQ(up.totalSentBytes, 20'000U);
    EXPECT_EQ(up.uploadBytesPerSecond, 0);
    sendFrames("left", 1'000, 30);
    EXPECT_DOUBLE_EQ(sampleAt(30).uploadBytesPerSecond, 3'000);
}

TEST_F(NetworkNamespace, AnInterfaceThatAppearsHasNoRatesForOneSample) {
    sampleAt(0);
    joinedPair();
    sendFrames("left", 1'000, 10);
    const NetworkInfo first = sampleAt(1);
    EXPECT_TRUE(first.hasSample);
    EXPECT_EQ(first.totalSentBytes, 10'000U);
    EXPECT_EQ(first.uploadBytesPerSecond, 0);
    sendFrames("left", 1'000, 10);
    EXPECT_DOUBLE_EQ(sampleAt(2).uploadBytesPerSecond, 10'000);
}

// Kernels before 6.2 rename only what is down.
std::string rename(const std::string& name, const std::string& newName) {
    return "link set " + name + " down\nlink set " + name + " name " + newName + "\n";
}

TEST_F(NetworkNamespace, AnInterfaceThatIsRenamedGoesOn) {
    joinedPair();
    sampleAt(0);
    sendFrames("left", 1'000, 10);
    ip(rename("left", "outside") + "link set outside up");
    sendFrames("outside", 1'000, 10);
    EXPECT_DOUBLE_EQ(sampleAt(2).uploadBytesPerSecond, 10'000);
}

TEST_F(NetworkNamespace, InterfacesThatSwapTheirNamesKeepTheirCounters) {
    joinedPair();
    sendFrames("left", 1'000, 10);
    const InterfaceTable before = table();
    ip(rename("left", "other") + rename("right", "left") + rename("other", "right") +
       "link set left up\nlink set right up");
    EXPECT_EQ(table(), before);
}

TEST_F(NetworkNamespace, AnInterfaceThatIsRemovedIsForgotten) {
    joinedPair();
    sendFrames("left", 1'000, 10);
    sampleAt(0);
    ip("link del left");
    const NetworkInfo info = sampleAt(1);
    EXPECT_EQ(info.totalSentBytes, 0U);
    EXPECT_EQ(info.uploadBytesPerSecond, 0);
}

TEST_F(NetworkNamespace, AnInterfaceThatComesBackUnderItsNameIsAnotherOne) {
    joinedPair();
    sendFrames("left", 1'000, 10);
    const std::uint32_t gone = indexOf("left");
    sampleAt(0);
    ip("link del left");
    joinedPair();
    ASSERT_NE(indexOf("left"), gone);
    sendFrames("left", 1'000, 30);
    const NetworkInfo info = sampleAt(1);
    EXPECT_EQ(info.totalSentBytes, 30'000U);
    EXPECT_EQ(info.uploadBytesPerSecond, 0);
    EXPECT_EQ(table(), toolsTable());
}

TEST_F(NetworkNamespace, ANameMayHoldOddCharacters) {
    ip(cable("\xC3\xA9|,'+@1~*", "1x\x01\x7F;$"));
    sendFrames("\xC3\xA9|,'+@1~*", 1'000, 10);
    const InterfaceTable found = table();
    EXPECT_EQ(found.at(indexOf("\xC3\xA9|,'+@1~*")).sent, 10'000U);
    EXPECT_EQ(found.at(indexOf("1x\x01\x7F;$")).received, 10'000U);
}

TEST_F(NetworkNamespace, FiveHundredInterfacesAreReadThroughFilesThatStayOpen) {
    const rlim_t most = tarnwick::testing::descriptorLimit().rlim_max;
    if (most < 2'400) {
        GTEST_SKIP() << "no process may have that many files open";
    }
    limitDescriptors(2'400);
    joinedPairs(250);
    const std::size_t before = openDescriptors();
    sampleAt(0);
    const InterfaceTable first = table();
    // The list, the folder, and each interface with the loopback one.
    EXPECT_EQ(openDescriptors() - before, 2U + 501U);
    for (int pair = 0; pair < 250; ++pair) {
        sendFrames("b" + std::to_string(pair), 1'000, pair % 7);
    }
    const InterfaceTable after = table();
    EXPECT_EQ(openDescriptors() - before, 2U + 501U);

    EXPECT_EQ(after, toolsTable());
    ASSERT_EQ(after.size(), 500U);
    std::uint64_t sent = 0;
    for (const auto& [index, counters] : after) {
        sent += counters.sent - first.at(index).sent;
    }
    EXPECT_GT(sent, 0U);
    EXPECT_DOUBLE_EQ(sampleAt(8).uploadBytesPerSecond, static_cast<double>(sent) / 8);
}

TEST_F(NetworkNamespace, ATableIsTrueWhileInterfacesComeAndGo) {
    joinedPairs(60);
    const InterfaceTable steady = table();
    ASSERT_EQ(steady.size(), 120U);

    std::binary_semaphore started(0);
    std::jthread churn([&started](const std::stop_token& stop) {
        bool running = false;
        do {
            ip("link add come type veth peer name go\nlink del come");
            if (!std::exchange(running, true)) {
                started.release();
            }
        } while (!stop.stop_requested());
    });
    started.acquire();
    int whole = 0;
    for (int turn = 0; turn < 1'000; ++turn) {
        // Every other time by a reader that has nothing open yet.
        const auto found = turn % 2 == 0 ? interfaces.interfaceCounters()
                                         : LinuxNetworkInterfaces().interfaceCounters();
        ASSERT_TRUE(found);
        for (const auto& [index, counters] : *found) {
            if (const auto entry = steady.find(index); entry != steady.end()) {
                ASSERT_EQ(counters, entry->second);
            }
        }
        whole += found->size() >= steady.size() ? 1 : 0;
    }
    churn.request_stop();
    churn.join();
    EXPECT_GT(whole, 0);
    EXPECT_EQ(table(), steady);
}

TEST_F(NetworkNamespace, WithoutHardwareABridgeAndItsPortsAllCount) {
    joinedPair();
    // One that looks after groups sends a frame of its own, at a moment of its own.
    ip("link add bridge type bridge mcast_snooping 0\nlink set bridge up\nlink set right master "
       "bridge");
    sendFrames("left", 1'000, 10);
    EXPECT_EQ(table(), toolsTable());
    EXPECT_EQ(table().size(), 3U);
    EXPECT_EQ(table().at(indexOf("right")).received, 10'000U);
}

TEST_F(NetworkNamespace, ATableOfAnotherRootHasNothingOfThisNetwork) {
    joinedPair();
    EXPECT_EQ(LinuxNetworkInterfaces("/nonexistent").interfaceCounters(), std::nullopt);
}

}  // namespace
}  // namespace tarnwick::platform
