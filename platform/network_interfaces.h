// Byte counters of the network interfaces, and the calls of macOS from which they come there.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <unordered_map>
#include <vector>

namespace tarnwick::platform {

/// What one interface has moved since its counters started.
struct Counters {
    /// Bytes received.
    std::uint64_t received = 0;
    /// Bytes sent.
    std::uint64_t sent = 0;
    /// The values come from the 32-bit statistics and wrap at 2^32.
    bool uses32BitCounters = false;

    bool operator==(const Counters&) const = default;
};

/// Interface index to counters.
using InterfaceTable = std::unordered_map<std::uint32_t, Counters>;

class NetworkInterfaces {
 public:
    virtual ~NetworkInterfaces() = default;

    /// Every interface that is up and is not a loopback; empty when there is none. All entries
    /// belong to one reading. Absent when no source worked. Any thread.
    virtual std::optional<InterfaceTable> interfaceCounters() = 0;
};

/// Bits of an interface's flags, the same on every system.
inline constexpr std::uint32_t kInterfaceUp = 1;
inline constexpr std::uint32_t kInterfaceLoopback = 8;

/// Whether an interface with these flags is counted: up, and no loopback.
constexpr bool isCounted(std::uint32_t flags) {
    return (flags & (kInterfaceUp | kInterfaceLoopback)) == kInterfaceUp;
}

/// `sysctl` by name.
struct SysctlAnswer {
    /// 0 on success, else `errno`.
    std::int32_t error = 0;
    /// Without a buffer the bytes that one would need, else the bytes written to it.
    std::size_t size = 0;
};

/// The part of `if_data` that the program reads; both wrap at 2^32.
struct InterfaceStatistics {
    std::uint32_t inputBytes = 0;
    std::uint32_t outputBytes = 0;
};

/// One entry of `getifaddrs`.
struct InterfaceAddress {
    std::string name;
    std::uint32_t flags = 0;
    /// Family of the address; absent for an entry without one.
    std::optional<std::uint8_t> family{};
    /// Only link-layer addresses have statistics.
    std::optional<InterfaceStatistics> statistics{};
};

/// The calls under their own names. Any thread.
class InterfaceCalls {
 public:
    virtual ~InterfaceCalls() = default;

    /// An empty buffer asks for the size.
    virtual SysctlAnswer sysctl(std::span<const std::int32_t> name,
                                std::span<std::byte> buffer) = 0;
    /// In the order of the system's list, which is freed. Absent when the call fails.
    virtual std::optional<std::vector<InterfaceAddress>> getifaddrs() = 0;
    /// 0 when there is no interface of this name.
    virtual std::uint32_t if_nametoindex(const std::string& name) = 0;
};

}  // namespace tarnwick::platform
