// The steps from the calls of macOS to the byte counters of its network interfaces.
#pragma once

#include <cstdint>
#include <optional>

#include "platform/network_interfaces.h"

namespace tarnwick {

/// `errno` of a `sysctl` whose buffer is too small.
inline constexpr std::int32_t kOutOfMemory = 12;
/// Family of a link-layer address.
inline constexpr std::uint8_t kLinkLayerFamily = 18;

/// Takes the 64-bit counters of the interface list or, when that cannot be had or read, the 32-bit
/// ones of the link-layer addresses. Keeps nothing between calls. Any thread.
class InterfaceCounterReader final : public platform::NetworkInterfaces {
 public:
    explicit InterfaceCounterReader(platform::InterfaceCalls& calls) : calls_(calls) {}

    std::optional<platform::InterfaceTable> interfaceCounters() override;

 private:
    /// Absent when the list cannot be had or is malformed.
    std::optional<platform::InterfaceTable> readInterfaceList();
    /// Absent when there are no addresses at all.
    std::optional<platform::InterfaceTable> readInterfaceAddresses();

    platform::InterfaceCalls& calls_;
};

}  // namespace tarnwick
