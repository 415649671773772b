// SPDX-License-Identifier: MIT
#include "platform/macos/readers/interface_counter_reader.h"

#include <algorithm>
#include <cstddef>
#include <span>
#include <vector>

#include "platform/macos/readers/routing_messages.h"

namespace tarnwick {
namespace {

// Interfaces may come between the question for the size and the one for the list.
constexpr int kAttempts = 3;

}  // namespace

std::optional<platform::InterfaceTable> InterfaceCounterReader::interfaceCounters() {
    if (auto interfaces = readInterfaceList()) {
        return interfaces;
    }
    return readInterfaceAddresses();
}

std::optional<platform::InterfaceTable> InterfaceCounterReader::readInterfaceList() {
    for (int attempt = 0; attempt < kAttempts; ++attempt) {
        const platform::SysctlAnswer needed = calls_.sysctl(kInterfaceListName, {});
        if (needed.error != 0) {
            return std::nullopt;
        }
        if (needed.size < 1) {
            return platform::InterfaceTable{};
        }
        std::vector<std::byte> buffer(needed.size);
        const platform::SysctlAnswer list = calls_.sysctl(kInterfaceListName, buffer);
        if (list.error == 0) {
            // The system adds room for growth to the size that it reports, so the list may be
            // shorter.
            return decodeInterfaceList(std::span(buffer).first(std::min(list.size, buffer.size())));
        }
        if (list.error != kOutOfMemory) {
            return std::nullopt;
        }
    }
    return std::nullopt;
}

std::optional<platform::InterfaceTable> InterfaceCounterReader::readInterfaceAddresses() {
    const auto addresses = calls_.getifaddrs();
    if (!addresses || addresses->empty()) {
        return std::nullopt;
    }
    platform::InterfaceTable interfaces;
    for (const platform::InterfaceAddress& address : *addresses) {
        if (!platform::isCounted(address.flags) || address.family != kLinkLayerFamily ||
            !address.statistics) {
            continue;
        }
        if (const std::uint32_t index = calls_.if_nametoindex(address.name); index != 0) {
            interfaces[index] = {.received = address.statistics->inputBytes,
                                 .sent = address.statistics->outputBytes,
                                 .uses32BitCounters = true};
        }
    }
    return interfaces;
}

}  // namespace tarnwick
