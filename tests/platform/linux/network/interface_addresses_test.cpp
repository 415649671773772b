#include "platform/linux/network/interface_addresses.h"

#include <cstdint>
#include <cstring>
#include <gtest/gtest.h>
#include <ifaddrs.h>
#include <limits>
#include <linux/if_link.h>
#include <linux/if_packet.h>
#include <list>
#include <sys/socket.h>

namespace tarnwick::platform {
namespace {

/// A list as `getifaddrs` gives it.
class AddressList {
 public:
    struct Entry {
        sockaddr_ll address{};
        rtnl_link_stats statistics{};
        ifaddrs interface {};
    };

    /// Another entry at the end, of an Ethernet that is up.
    Entry& add(int index, std::uint32_t received, std::uint32_t sent) {
        Entry* const last = entries_.empty() ? nullptr : &entries_.back();
        Entry& entry = entries_.emplace_back();
        entry.address.sll_family = AF_PACKET;
        entry.address.sll_ifindex = index;
        std::memset(&entry.statistics, 0xEE, sizeof entry.statistics);
        entry.statistics.rx_bytes = received;
        entry.statistics.tx_bytes = sent;
        entry.interface.ifa_flags = 0x1043;
        entry.interface.ifa_addr = reinterpret_cast<sockaddr*>(&entry.address);
        entry.interface.ifa_data = &entry.statistics;
        if (last != nullptr) {
            last->interface.ifa_next = &entry.interface;
        }
        return entry;
    }
    InterfaceTable counters() const {
        return countersOf(entries_.empty() ? nullptr : &entries_.front().interface);
    }

 private:
    std::list<Entry> entries_;
};

TEST(InterfaceAddressesTest, NoEntriesAreAnEmptyTable) {
    EXPECT_EQ(AddressList().counters(), InterfaceTable{});
}

TEST(InterfaceAddressesTest, LinkAddressesHaveThirtyTwoBitCountersUnderTheirIndex) {
    constexpr auto largest = std::numeric_limits<std::uint32_t>::max();
    AddressList list;
    list.add(2, 10, 11);
    list.add(7, largest, largest - 1);
    EXPECT_EQ(list.counters(),
              (InterfaceTable{{2, {10, 11, true}}, {7, {largest, largest - 1, true}}}));
}

TEST(InterfaceAddressesTest, TheLastEntryOfAnInterfaceHolds) {
    AddressList list;
    list.add(2, 10, 11);
    list.add(2, 5, 6);
    EXPECT_EQ(list.counters(), (InterfaceTable{{2, {5, 6, true}}}));
}

TEST(InterfaceAddressesTest, OnlyEntriesThatAreUpAndNoLoopbackCount) {
    AddressList list;
    list.add(1, 1, 1).interface.ifa_flags = 0x10049;
    list.add(2, 2, 2).interface.ifa_flags = 0x1002;
    list.add(3, 3, 3).interface.ifa_flags = 0x1;
    EXPECT_EQ(list.counters(), (InterfaceTable{{3, {3, 3, true}}}));
}

TEST(InterfaceAddressesTest, EntriesWithoutALinkAddressOrStatisticsAreSkipped) {
    AddressList list;
    list.add(1, 1, 1).interface.ifa_addr = nullptr;
    list.add(2, 2, 2).interface.ifa_data = nullptr;
    list.add(3, 3, 3).address.sll_family = AF_INET;
    list.add(4, 4, 4).address.sll_family = AF_INET6;
    list.add(5, 5, 5);
    EXPECT_EQ(list.counters(), (InterfaceTable{{5, {5, 5, true}}}));
}

TEST(InterfaceAddressesTest, AnEntryWithoutAnIndexIsSkipped) {
    AddressList list;
    list.add(0, 1, 1);
    list.add(-1, 1, 1);
    EXPECT_EQ(list.counters(), InterfaceTable{});
}

}  // namespace
}  // namespace tarnwick::platform
