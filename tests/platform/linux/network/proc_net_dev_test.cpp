// SPDX-License-Identifier: MIT
#include "platform/linux/network/proc_net_dev.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <string>
#include <tuple>

namespace tarnwick::platform {
namespace {

using Rows = std::vector<std::tuple<std::string, std::uint64_t, std::uint64_t>>;

const std::string headings =
    "Inter-|   Receive                                                |  Transmit\n"
    " face |bytes    packets errs drop fifo frame compressed multicast|bytes    packets errs drop "
    "fifo colls carrier compressed\n";

std::optional<Rows> rows(const std::string& text) {
    const auto devices = parseNetworkDevices(text);
    if (!devices) {
        return std::nullopt;
    }
    Rows found;
    for (const NetworkDevice& device : *devices) {
        found.emplace_back(device.name, device.received, device.sent);
    }
    return found;
}

TEST(ProcNetDev, EveryInterfaceHasItsReceivedAndSentBytes) {
    EXPECT_EQ(rows(headings +
                   "    lo:  1210      14    0    0    0     0          0         0     1210      "
                   "14    0    0    0     0       0          0\n"
                   "  eth0: 98765432109 2 3 4 5 6 7 8 18446744073709551615 10 11 12 13 14 15 16\n"),
              (Rows{{"lo", 1210, 1210}, {"eth0", 98765432109U, 18446744073709551615U}}));
}

TEST(ProcNetDev, NoInterfacesAreAnEmptyList) {
    EXPECT_EQ(rows(headings), Rows{});
}

TEST(ProcNetDev, OldKernelsPutNoSpaceBehindTheColon) {
    EXPECT_EQ(rows(headings + "eth0:123456789 1 0 0 0 0 0 0 987654321 1 0 0 0 0 0 0\n"),
              (Rows{{"eth0", 123456789, 987654321}}));
}

TEST(ProcNetDev, NamesMayHoldAnythingThatAFileNameMay) {
    EXPECT_EQ(rows(headings + "br-0a1b.100@x: 1 0 0 0 0 0 0 0 2 0 0 0 0 0 0 0\n"
                              "   \xC3\xA9|: 3 0 0 0 0 0 0 0 4 0 0 0 0 0 0 0\n"),
              (Rows{{"br-0a1b.100@x", 1, 2}, {"\xC3\xA9|", 3, 4}}));
}

TEST(ProcNetDev, NamesThatLeadToAnotherFolderAreDamage) {
    for (const std::string name : {"", ".", "..", "../eth0", "a/b", "a b", "a\tb"}) {
        EXPECT_EQ(rows(headings + name + ": 1 0 0 0 0 0 0 0 2 0 0 0 0 0 0 0\n"), std::nullopt)
            << name;
    }
    EXPECT_EQ(rows(headings + std::string("a\0b", 3) + ": 1 0 0 0 0 0 0 0 2 0 0 0 0 0 0 0\n"),
              std::nullopt);
}

TEST(ProcNetDev, ALineWithMoreOrFewerColumnsIsDamage) {
    const std::string good = "  eth0: 1 2 3 4 5 6 7 8 9 10 11 12 13 14 15";
    EXPECT_EQ(rows(headings + good + "\n"), std::nullopt);
    EXPECT_EQ(rows(headings + good + " 16\n"), (Rows{{"eth0", 1, 9}}));
    EXPECT_EQ(rows(headings + good + " 16 \n"), (Rows{{"eth0", 1, 9}}));
    EXPECT_EQ(rows(headings + good + " 16 17\n"), std::nullopt);
}

TEST(ProcNetDev, AColumnThatIsNoCounterIsDamage) {
    for (const std::string word : {"-1", "x", "1x", "0x10", "1.5", "+1", "18446744073709551616"}) {
        EXPECT_EQ(rows(headings + "eth0: " + word + " 0 0 0 0 0 0 0 2 0 0 0 0 0 0 0\n"),
                  std::nullopt)
            << word;
        EXPECT_EQ(rows(headings + "eth0: 1 0 0 0 0 0 0 0 2 0 0 0 0 0 0 " + word + "\n"),
                  std::nullopt)
            << word;
    }
}

TEST(ProcNetDev, ADamagedLineTakesTheWholeListWithIt) {
    EXPECT_EQ(rows(headings + "eth0: 1 0 0 0 0 0 0 0 2 0 0 0 0 0 0 0\n"
                              "eth1\n"
                              "eth2: 1 0 0 0 0 0 0 0 2 0 0 0 0 0 0 0\n"),
              std::nullopt);
    EXPECT_EQ(rows(headings + "\neth0: 1 0 0 0 0 0 0 0 2 0 0 0 0 0 0 0\n"), std::nullopt);
}

TEST(ProcNetDev, WithoutItsHeadingsItIsDamage) {
    EXPECT_EQ(rows(""), std::nullopt);
    EXPECT_EQ(rows(headings.substr(0, headings.find('\n') + 1)), std::nullopt);
    EXPECT_EQ(rows("eth0: 1 0 0 0 0 0 0 0 2 0 0 0 0 0 0 0\n"), std::nullopt);
    EXPECT_EQ(rows("\n\n\n"), std::nullopt);
}

TEST(ProcNetDev, EveryTruncationIsDamageUnlessItEndsWithALine) {
    const std::string whole = headings + "eth0: 1 0 0 0 0 0 0 0 2 0 0 0 0 0 0 0\n" +
                              "eth1: 3 0 0 0 0 0 0 0 4 0 0 0 0 0 0 0\n";
    for (std::size_t size = 0; size < whole.size(); ++size) {
        const bool atALine = size >= headings.size() && whole[size - 1] == '\n';
        EXPECT_EQ(rows(whole.substr(0, size)).has_value(), atALine) << size;
    }
}

TEST(ProcNetDev, AnIndexIsANumberAboveZero) {
    EXPECT_EQ(parseInterfaceNumber("1\n"), 1U);
    EXPECT_EQ(parseInterfaceNumber("2147483647\n"), 2147483647U);
    EXPECT_EQ(parseInterfaceNumber("12"), 12U);
    for (const char* text :
         {"", "\n", "0\n", "-1\n", "x\n", "1x\n", " 1\n", "1\n\n", "1 2\n", "4294967296\n"}) {
        EXPECT_EQ(parseInterfaceNumber(text), std::nullopt) << text;
    }
}

TEST(ProcNetDev, FlagsAreAHexadecimalNumber) {
    EXPECT_EQ(parseInterfaceFlags("0x1003\n"), 0x1003U);
    EXPECT_EQ(parseInterfaceFlags("0x9\n"), 9U);
    EXPECT_EQ(parseInterfaceFlags("0x0"), 0U);
    EXPECT_EQ(parseInterfaceFlags("0xffffffff\n"), 0xFFFFFFFFU);
    for (const char* text :
         {"", "\n", "0x\n", "1003\n", "x1003\n", "0x1003 \n", "0x-1\n", "0x100000000\n", "0xg\n"}) {
        EXPECT_EQ(parseInterfaceFlags(text), std::nullopt) << text;
    }
}

}  // namespace
}  // namespace tarnwick::platform
