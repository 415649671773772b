// SPDX-License-Identifier: MIT
#include "platform/linux/network/counted_links.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <string>
#include <string_view>
#include <vector>

#include "platform/linux/network/linux_network_interfaces.h"
#include "tests/platform/linux/machine_tree.h"

namespace tarnwick::platform {
namespace {

using testing::MachineTree;
using testing::recordedFile;
using testing::recordedMachine;
using testing::recordedMachines;

/// The interfaces that count, and the bytes that went over the wire.
struct Network {
    std::string name;
    std::vector<std::uint32_t> interfaces;
    std::uint64_t received;
    std::uint64_t sent;
};

const std::vector<Network>& networks() {
    static const std::vector<Network> all = {
        {"bond", {2, 3}, 96'110'568'050, 181'935'388'408},
        {"bridge-with-guests", {2}, 5'120'448'812, 6'310'227'441},
        {"bridge-with-port", {2}, 9'120'448'812, 310'227'441},
        {"containers", {2}, 3'812'044'817, 712'044'813},
        {"inside-a-container", {4}, 480'112'004, 29'448'119},
        {"loopback-only", {}, 0, 0},
        {"macvlan", {2}, 5'873'409'288, 590'644'721},
        {"modem", {2, 4}, 122'133'324, 17'057'253},
        {"plain", {2}, 734'119'208, 88'120'533},
        {"pppoe", {2}, 6'422'071'934, 301'922'846},
        {"switch", {2}, 6'733'120'881, 680'233'102},
        {"virtual-function", {2}, 9'733'120'881, 880'233'102},
        {"vlan", {2}, 4'873'409'288, 490'644'721},
        {"vlan-on-bond", {2, 3}, 16'110'568'050, 18'935'388'408},
        {"vpn", {2}, 1'873'409'288, 190'644'721},
        {"vpn-over-ppp", {2}, 973'409'288, 90'644'721},
        {"wifi-beside-cable", {2, 3}, 5'028'089'393, 592'237'433},
        {"wifi-monitor", {2}, 2'294'968'512, 212'004'331},
        {"wireguard", {2}, 2'873'409'288, 290'644'721},
        {"xen-host", {2}, 7'120'448'812, 1'310'227'441},
    };
    return all;
}

TEST(RecordedNetworks, AreAllInTheTableAndTheNote) {
    std::vector<std::string> names;
    const std::string note = recordedFile("networks", "README.md");
    for (const Network& network : networks()) {
        names.push_back(network.name);
        EXPECT_NE(note.find("| `" + network.name + "` |"), std::string::npos) << network.name;
    }
    EXPECT_EQ(names, recordedMachines("networks"));
}

TEST(RecordedNetworks, MoveWhatGoesOverTheWire) {
    for (const Network& expected : networks()) {
        const auto table = LinuxNetworkInterfaces(recordedMachine("networks/" + expected.name))
                               .interfaceCounters();
        ASSERT_TRUE(table) << expected.name;
        std::uint64_t received = 0;
        std::uint64_t sent = 0;
        for (const auto& [index, counters] : *table) {
            received += counters.received;
            sent += counters.sent;
        }
        EXPECT_EQ(received, expected.received) << expected.name;
        EXPECT_EQ(sent, expected.sent) << expected.name;
        EXPECT_EQ(table->size(), expected.interfaces.size()) << expected.name;
        for (const std::uint32_t index : expected.interfaces) {
            EXPECT_TRUE(table->contains(index)) << expected.name << index;
        }
    }
}

constexpr const char* wired = "sys/class/net/eth0/";
constexpr const char* routes = "proc/net/route";

/// A network whose links change. Time does not pass by itself.
class ChangingNetwork : public ::testing::Test {
 protected:
    bool counts(std::uint32_t index) { return interfaces.interfaceCounters()->contains(index); }

    double now = 500;
    MachineTree tree{"networks/modem"};
    LinuxNetworkInterfaces interfaces{tree.root(), [this] { return now; }};
};

TEST_F(ChangingNetwork, LinksAreChosenAnewEveryHalfMinuteOrWhenTheClockWentBack) {
    ASSERT_TRUE(counts(4));
    // A default route by the cable: what runs over it may be a tunnel.
    tree.write(routes, "eth0\t00000000\t0102A8C0\t0003\t0\t0\t0\t00000000\t0\t0\t0\n");
    now += 29.9;
    EXPECT_TRUE(counts(4));
    now += 0.2;
    EXPECT_FALSE(counts(4));
    tree.write(routes, "");
    EXPECT_FALSE(counts(4));
    now -= 1;
    EXPECT_TRUE(counts(4));
}

TEST_F(ChangingNetwork, LinksAreChosenAnewWhenFlagsChange) {
    ASSERT_TRUE(counts(2));
    ASSERT_FALSE(counts(5));
    tree.write("sys/class/net/ppp0/flags", "0x10d0\n");
    EXPECT_FALSE(counts(4));
    EXPECT_TRUE(counts(2));
    tree.write(std::string(wired) + "flags", "0x1002\n");
    // Nothing but the tunnel is up.
    EXPECT_FALSE(counts(2));
    EXPECT_TRUE(counts(5));
    tree.write(std::string(wired) + "flags", "0x1003\n");
    EXPECT_TRUE(counts(2));
    EXPECT_FALSE(counts(5));
}

TEST_F(ChangingNetwork, LinksAreChosenAnewWhenOneComes) {
    ASSERT_TRUE(counts(4));
    tree.write("proc/net/dev", recordedFile("networks/modem", "proc/net/dev") +
                                   "eth1: 1 0 0 0 0 0 0 0 2 0 0 0 0 0 0 0\n");
    tree.write("sys/class/net/eth1/ifindex", "9\n");
    tree.write("sys/class/net/eth1/flags", "0x1003\n");
    tree.write(routes, "eth1\t00000000\t0102A8C0\t0003\t0\t0\t0\t00000000\t0\t0\t0\n");
    EXPECT_FALSE(counts(4));
    EXPECT_TRUE(counts(2));
    EXPECT_FALSE(counts(9));
}

TEST_F(ChangingNetwork, AnotherInterfaceUnderTheSameNameIsChosenAnew) {
    ASSERT_TRUE(counts(2));
    // The open file of an interface that is gone says nothing any more.
    tree.truncate(std::string(wired) + "flags", 0);
    tree.remove("sys/class/net/eth0");
    tree.write(std::string(wired) + "ifindex", "12\n");
    tree.write(std::string(wired) + "flags", "0x1003\n");
    EXPECT_FALSE(counts(12));
    EXPECT_FALSE(counts(2));
    tree.write(std::string(wired) + "device", "");
    now += 31;
    EXPECT_TRUE(counts(12));
}

LinkNature ppp(std::uint32_t index) {
    return {.name = "ppp0", .index = index, .below = index, .isPointToPoint = true, .isPPP = true};
}

LinkNature card(const std::string& name, std::uint32_t index) {
    return {.name = name, .index = index, .below = index, .hasDevice = true};
}

TEST(LinksThatCount, OfPPPAreThoseThatCannotRunOverAnotherLink) {
    const std::vector<LinkNature> links = {card("eth0", 2), ppp(3)};
    const auto isSerial = [&links](std::string_view route, std::string_view pppoe) -> bool {
        return linksThatCount(links, route, pppoe)[1];
    };
    EXPECT_TRUE(isSerial("", ""));
    EXPECT_TRUE(isSerial("", "Id       Address              Device\n"));
    EXPECT_FALSE(isSerial("", "Id Address Device\n0000b2f4 00:25:9e:1d:20:a7     eth0\n"));
    EXPECT_FALSE(isSerial("eth0\t00000000\t0102A8C0\t0003\t0\n", ""));
    EXPECT_FALSE(isSerial("eth0\t0A0B0C0D\t0102A8C0\t0007\t0\n", ""));
    // No gateway, another link, cut short, damaged.
    for (const std::string_view route :
         {"eth0\t000AA8C0\t00000000\t0001\t0\n", "eth1\t00000000\t0102A8C0\t0003\t0\n",
          "ppp0\t00000000\t0102A8C0\t0003\t0\n", "eth0\t00000000\t0102A8C0\t0003\t0",
          "eth0\t00000000\t0102A8C0\n", "eth0\t00000000\t0102A8C0\tx\t0\n", "eth0\n", "\n",
          "eth0\t\t\t\t\n"}) {
        EXPECT_TRUE(isSerial(route, "")) << route;
    }
}

TEST(LinksThatCount, InsideAContainerAreAllEvenWithATunnelOfPPP) {
    const LinkNature inside{.name = "eth0", .index = 4, .below = 5};
    EXPECT_EQ(linksThatCount({inside, ppp(6)}, "eth0\t00000000\t010011AC\t0003\t0\n", ""),
              (std::vector{true, true}));
    EXPECT_EQ(linksThatCount({inside}, "", ""), std::vector{true});
    EXPECT_EQ(linksThatCount({}, "", ""), std::vector<bool>{});
}

TEST(LinksThatCount, ALinkBelowInAnotherNamespaceDoesNotMatter) {
    LinkNature moved = card("eth1", 7);
    moved.below = 3;
    EXPECT_EQ(linksThatCount({card("eth0", 2), moved}, "", ""), (std::vector{true, true}));
    EXPECT_EQ(linksThatCount({card("eth0", 3), moved}, "", ""), (std::vector{true, false}));
}

}  // namespace
}  // namespace tarnwick::platform
