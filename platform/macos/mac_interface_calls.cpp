// SPDX-License-Identifier: MIT
#include <cerrno>
#include <cstring>
#include <ifaddrs.h>
#include <memory>
#include <net/if.h>
#include <net/if_var.h>
#include <sys/socket.h>
#include <sys/sysctl.h>

#include "platform/macos/mac_machine.h"

namespace tarnwick::platform {
namespace {

struct FreeAddresses {
    void operator()(ifaddrs* list) const { ::freeifaddrs(list); }
};

InterfaceAddress addressOf(const ifaddrs& entry) {
    InterfaceAddress address{.name = entry.ifa_name, .flags = entry.ifa_flags};
    if (entry.ifa_addr == nullptr) {
        return address;
    }
    address.family = entry.ifa_addr->sa_family;
    // Other families have data of other kinds, or none.
    if (entry.ifa_addr->sa_family == AF_LINK && entry.ifa_data != nullptr) {
        if_data data{};
        std::memcpy(&data, entry.ifa_data, sizeof data);
        address.statistics =
            InterfaceStatistics{.inputBytes = data.ifi_ibytes, .outputBytes = data.ifi_obytes};
    }
    return address;
}

}  // namespace

SysctlAnswer MacInterfaceCalls::sysctl(std::span<const std::int32_t> name,
                                       std::span<std::byte> buffer) {
    // A copy, because the declaration asks for a name that may be changed; the call does not change
    // it.
    std::vector<int> integers(name.begin(), name.end());
    std::size_t size = buffer.size();
    const int result = ::sysctl(integers.data(), static_cast<u_int>(integers.size()),
                                buffer.empty() ? nullptr : buffer.data(), &size, nullptr, 0);
    if (result != 0) {
        return {.error = errno};
    }
    return {.error = 0, .size = size};
}

std::optional<std::vector<InterfaceAddress>> MacInterfaceCalls::getifaddrs() {
    ifaddrs* first = nullptr;
    if (::getifaddrs(&first) != 0) {
        return std::nullopt;
    }
    const std::unique_ptr<ifaddrs, FreeAddresses> list(first);
    std::vector<InterfaceAddress> addresses;
    for (const ifaddrs* entry = first; entry != nullptr; entry = entry->ifa_next) {
        addresses.push_back(addressOf(*entry));
    }
    return addresses;
}

std::uint32_t MacInterfaceCalls::if_nametoindex(const std::string& name) {
    return ::if_nametoindex(name.c_str());
}

}  // namespace tarnwick::platform
