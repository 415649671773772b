// 32-bit byte counters of network interfaces from their link-layer addresses.
#pragma once

#include <optional>

#include "platform/network_interfaces.h"

struct ifaddrs;

namespace tarnwick::platform {

/// Keeps nothing between calls. Any thread.
class InterfaceAddresses final : public NetworkInterfaces {
 public:
    /// Absent when there are no addresses at all.
    std::optional<InterfaceTable> interfaceCounters() override;
};

/// The counters in a list of `getifaddrs`.
InterfaceTable countersOf(const ifaddrs* list);

}  // namespace tarnwick::platform
