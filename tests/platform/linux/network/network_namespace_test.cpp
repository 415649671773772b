// The sampler in private networks with interfaces of the test's own and real traffic, beside what
// the kernel's table and the tool that people trust say.
#include "tests/platform/linux/network/network_namespace.h"

#include <cerrno>
#include <cstdint>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <memory>
#include <string>

#include "platform/linux/network/interface_addresses.h"
#include "platform/linux/network/link_statistics.h"
#include "platform/linux/network/linux_network_interfaces.h"
#include "services/network_service.h"
#include "tests/platform/linux/child_process.h"
#include "tests/platform/linux/network/network_calls.h"

namespace tarnwick::platform {
namespace {

using namespace testing;
using tarnwick::testing::ChildProcess;
using tarnwick::testing::Pipe;
using ::testing::Optional;

class NetworkNamespace : public ::testing::Test {
 protected:
    void SetUp() override {
        NetworkCalls::reset();
        if (const std::string reason = enterEmptyNetwork(); !reason.empty()) {
            GTEST_SKIP() << reason;
        }
        interfaces = std::make_unique<LinuxNetworkInterfaces>();
    }
    void TearDown() override { NetworkCalls::reset(); }

    InterfaceTable table() {
        auto found = interfaces->interfaceCounters();
        EXPECT_TRUE(found);
        return found.value_or(InterfaceTable{});
    }
    NetworkInfo sampleAt(double seconds) {
        clock = seconds;
        return service.readNetworkInfo();
    }
    /// From now on the kernel's answers about links are lost on their way.
    static void loseAnswers() {
        NetworkCalls::current().receive = [](int, msghdr*, int) {
            errno = ENOBUFS;
            return ssize_t{-1};
        };
    }
    /// Two interfaces that are up and joined.
    void joinedPair() {
        addCable("left", "right");
        testing::setUp("left");
        testing::setUp("right");
    }

    std::unique_ptr<NetworkInterfaces> interfaces;
    double clock = 0;
    NetworkService service{[this] { return interfaces->interfaceCounters(); },
                           [this] { return clock; }};
};

TEST_F(NetworkNamespace, TheLoopbackInterfaceIsNotCountedWhateverItMoves) {
    EXPECT_EQ(table(), InterfaceTable{});
    testing::setUp("lo");
    sendToItself(10'000);
    ASSERT_GE(kernelsTable().at(indexOf("lo")).received, 10'000U);
    EXPECT_EQ(table(), InterfaceTable{});
    EXPECT_THAT(InterfaceAddresses().interfaceCounters(), Optional(InterfaceTable{}));
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
    if (!toolsCounters("left")) {
        GTEST_SKIP() << "ip is not installed";
    }
    const auto tools = [] {
        const Counters left = toolsCounters("left").value();
        const Counters right = toolsCounters("right").value();
        return Counters{left.received + right.received, left.sent + right.sent, false};
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

TEST_F(NetworkNamespace, TheTwoSourcesAgree) {
    joinedPair();
    sendFrames("left", 1'000, 50);
    const auto wide = LinkStatistics().interfaceCounters();
    const auto narrow = InterfaceAddresses().interfaceCounters();
    ASSERT_TRUE(wide && narrow);
    ASSERT_EQ(wide->size(), 2U);
    ASSERT_EQ(narrow->size(), 2U);
    for (const auto& [index, counters] : *wide) {
        EXPECT_EQ(narrow->at(index), (Counters{counters.received, counters.sent, true}));
    }
}

TEST_F(NetworkNamespace, TheAddressesStandInForLinksThatCannotBeRead) {
    joinedPair();
    const std::uint32_t left = indexOf("left");
    const std::uint32_t right = indexOf("right");
    sendFrames("left", 1'000, 50);
    sampleAt(0);
    sendFrames("left", 1'000, 50);
    loseAnswers();
    EXPECT_EQ(table(), (InterfaceTable{{left, {0, 100'000, true}}, {right, {100'000, 0, true}}}));
    const NetworkInfo narrow = sampleAt(1);
    EXPECT_TRUE(narrow.hasSample);
    EXPECT_EQ(narrow.totalSentBytes, 100'000U);
    EXPECT_EQ(narrow.uploadBytesPerSecond, 0);
    sendFrames("left", 1'000, 30);
    EXPECT_DOUBLE_EQ(sampleAt(2).uploadBytesPerSecond, 30'000);

    NetworkCalls::reset();
    EXPECT_EQ(table(), (InterfaceTable{{left, {0, 130'000, false}}, {right, {130'000, 0, false}}}));
}

TEST_F(NetworkNamespace, WithoutLinksAndAddressesThereIsNoTable) {
    joinedPair();
    loseAnswers();
    NetworkCalls::current().addresses = [](ifaddrs** list) {
        // A call that fails says nothing about its list.
        static ifaddrs nothing{};
        *list = &nothing;
        errno = ENOMEM;
        return -1;
    };
    EXPECT_EQ(interfaces->interfaceCounters(), std::nullopt);
    NetworkCalls::current().addresses = [](ifaddrs** list) {
        *list = nullptr;
        return 0;
    };
    EXPECT_EQ(interfaces->interfaceCounters(), std::nullopt);
}

TEST_F(NetworkNamespace, ADummyInterfaceIsCounted) {
    if (!addInterface("silent", "dummy")) {
        GTEST_SKIP() << "the kernel has no dummy interfaces";
    }
    testing::setUp("silent");
    const Counters before = table().at(indexOf("silent"));
    sendFrames("silent", 500, 20);
    EXPECT_EQ(table().at(indexOf("silent")).sent - before.sent, 500U * 20);
}

TEST_F(NetworkNamespace, AnInterfaceThatGoesDownIsNotCounted) {
    joinedPair();
    sendFrames("left", 1'000, 10);
    sampleAt(0);
    sendFrames("left", 1'000, 10);
    testing::setUp("left", false);
    const NetworkInfo down = sampleAt(10);
    // Only the end that stayed up: what it has received.
    EXPECT_EQ(down.totalReceivedBytes, 20'000U);
    EXPECT_EQ(down.totalSentBytes, 0U);
    EXPECT_DOUBLE_EQ(down.downloadBytesPerSecond, 1'000);
    EXPECT_EQ(down.uploadBytesPerSecond, 0);

    testing::setUp("left");
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

TEST_F(NetworkNamespace, AnInterfaceThatIsRenamedGoesOn) {
    joinedPair();
    sampleAt(0);
    sendFrames("left", 1'000, 10);
    renameInterface("left", "outside");
    sendFrames("outside", 1'000, 10);
    EXPECT_DOUBLE_EQ(sampleAt(2).uploadBytesPerSecond, 10'000);
}

TEST_F(NetworkNamespace, AnInterfaceThatIsRemovedIsForgotten) {
    joinedPair();
    sendFrames("left", 1'000, 10);
    sampleAt(0);
    removeInterface("left");
    const NetworkInfo info = sampleAt(1);
    EXPECT_EQ(info.totalSentBytes, 0U);
    EXPECT_EQ(info.uploadBytesPerSecond, 0);
}

TEST_F(NetworkNamespace, FiveHundredInterfacesAreReadWithOneQuestion) {
    for (int pair = 0; pair < 250; ++pair) {
        const std::string number = std::to_string(pair);
        addCable("a" + number, "b" + number);
        testing::setUp("a" + number);
        testing::setUp("b" + number);
        sendFrames("a" + number, static_cast<std::size_t>(100 + pair));
    }
    sampleAt(0);
    const InterfaceTable before = table();
    for (int pair = 0; pair < 250; ++pair) {
        sendFrames("b" + std::to_string(pair), 1'000, pair % 7);
    }
    NetworkCalls::reset();
    const InterfaceTable after = table();
    EXPECT_EQ(NetworkCalls::current().sendto, 1);
    EXPECT_EQ(NetworkCalls::current().socket, 0);

    InterfaceTable expected = kernelsTable();
    expected.erase(indexOf("lo"));
    ASSERT_EQ(expected.size(), 500U);
    EXPECT_EQ(after, expected);
    std::uint64_t sent = 0;
    for (const auto& [index, counters] : after) {
        sent += counters.sent - before.at(index).sent;
    }
    EXPECT_GT(sent, 0U);
    EXPECT_DOUBLE_EQ(sampleAt(8).uploadBytesPerSecond, static_cast<double>(sent) / 8);
}

TEST_F(NetworkNamespace, ATableIsNeverHalfWhileInterfacesComeAndGo) {
    for (int pair = 0; pair < 60; ++pair) {
        const std::string number = std::to_string(pair);
        addCable("a" + number, "b" + number);
        testing::setUp("a" + number);
        testing::setUp("b" + number);
        sendFrames("a" + number, 1'000);
    }
    const InterfaceTable steady = table();
    ASSERT_EQ(steady.size(), 120U);

    Pipe started;
    ChildProcess churn([&started] {
        for (bool first = true;; first = false) {
            addCable("come", "go");
            removeInterface("come");
            if (first) {
                started.send();
            }
        }
    });
    ASSERT_TRUE(started.receive());
    int read = 0;
    for (int turn = 0; turn < 300; ++turn) {
        const auto found = LinkStatistics().interfaceCounters();
        if (!found) {
            continue;
        }
        ++read;
        for (const auto& [index, counters] : steady) {
            const auto entry = found->find(index);
            ASSERT_NE(entry, found->end()) << index;
            ASSERT_EQ(entry->second, counters);
        }
    }
    churn.kill();
    EXPECT_GT(read, 0);
}

TEST_F(NetworkNamespace, ATableOfAnotherRootHasNothingOfThisNetwork) {
    joinedPair();
    EXPECT_EQ(LinuxNetworkInterfaces("/nonexistent").interfaceCounters(), std::nullopt);
}

}  // namespace
}  // namespace tarnwick::platform
