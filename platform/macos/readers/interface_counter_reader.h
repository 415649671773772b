// SPDX-License-Identifier: MIT
// Reads the byte counters of the network interfaces through the calls of macOS.
#pragma once

#include <cstdint>
#include <optional>

#include "platform/network_interfaces.h"

namespace tarnwick {

/// `errno` of a `sysctl` with a buffer that is too small.
inline constexpr std::int32_t kOutOfMemory = 12;
/// Family of a link-layer address.
inline constexpr std::uint8_t kLinkLayerFamily = 18;

/// Reads the 64-bit counters of the interface list; if the list cannot be read or decoded, the
/// 32-bit counters of the link-layer addresses. Keeps nothing between calls. Any thread.
class InterfaceCounterReader final : public platform::NetworkInterfaces {
 public:
    explicit InterfaceCounterReader(platform::InterfaceCalls& calls) : calls_(calls) {}

    std::optional<platform::InterfaceTable> interfaceCounters() override;

 private:
    /// Absent if the list cannot be read or is malformed.
    std::optional<platform::InterfaceTable> readInterfaceList();
    /// Absent when there are no addresses at all.
    std::optional<platform::InterfaceTable> readInterfaceAddresses();

    platform::InterfaceCalls& calls_;
};

}  // namespace tarnwick
