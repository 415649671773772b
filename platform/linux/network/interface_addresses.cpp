#include "platform/linux/network/interface_addresses.h"

#include <cstring>
#include <ifaddrs.h>
#include <linux/if_link.h>
#include <linux/if_packet.h>
#include <memory>
#include <sys/socket.h>

namespace tarnwick::platform {

std::optional<InterfaceTable> InterfaceAddresses::interfaceCounters() {
    ifaddrs* first = nullptr;
    if (::getifaddrs(&first) != 0 || first == nullptr) {
        return std::nullopt;
    }
    const std::unique_ptr<ifaddrs, void (*)(ifaddrs*)> list(first, ::freeifaddrs);
    return countersOf(list.get());
}

InterfaceTable countersOf(const ifaddrs* list) {
    InterfaceTable interfaces;
    for (const ifaddrs* entry = list; entry != nullptr; entry = entry->ifa_next) {
        if (!isCounted(entry->ifa_flags) || entry->ifa_addr == nullptr ||
            entry->ifa_addr->sa_family != AF_PACKET || entry->ifa_data == nullptr) {
            continue;
        }
        // The index of the entry itself: its name may have gone to another interface by now.
        sockaddr_ll address{};
        std::memcpy(&address, entry->ifa_addr, offsetof(sockaddr_ll, sll_hatype));
        if (address.sll_ifindex <= 0) {
            continue;
        }
        const auto* const statistics = static_cast<const rtnl_link_stats*>(entry->ifa_data);
        interfaces[static_cast<std::uint32_t>(address.sll_ifindex)] = {
            .received = statistics->rx_bytes,
            .sent = statistics->tx_bytes,
            .uses32BitCounters = true};
    }
    return interfaces;
}

}  // namespace tarnwick::platform
