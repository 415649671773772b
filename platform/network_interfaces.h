// SPDX-License-Identifier: MIT
// Byte counters of the network interfaces, and the macOS calls that supply them there.
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
    /// Whether the values come from the 32-bit statistics, which wrap at 2^32.
    bool uses32BitCounters = false;

    bool operator==(const Counters&) const = default;
};

/// Interface index to counters.
using InterfaceTable = std::unordered_map<std::uint32_t, Counters>;

class NetworkInterfaces {
 public:
    virtual ~NetworkInterfaces() = default;

    /// Every interface that is up and is not a loopback; empty when there is none. Linux leaves out
    /// those whose bytes go through another one. All entries belong to one reading. Absent when no
    /// source worked. Any thread.
    virtual std::optional<InterfaceTable> interfaceCounters() = 0;
    /// Whether interfaceCounters() may wait for something else than the kernel, perhaps for ever.
    /// Does not wait itself. Any thread.
    virtual bool mayHang() const { return false; }
};

/// Bits of an interface's flags, the same on every system.
inline constexpr std::uint32_t kInterfaceUp = 1;
inline constexpr std::uint32_t kInterfaceLoopback = 8;

/// Whether an interface with these flags is counted: up, and no loopback.
constexpr bool isCounted(std::uint32_t flags) {
    return (flags & (kInterfaceUp | kInterfaceLoopback)) == kInterfaceUp;
}

/// The answer of `sysctl`.
struct SysctlAnswer {
    /// 0 on success, else `errno`.
    std::int32_t error = 0;
    /// For a call without a buffer: the bytes that a buffer needs. Otherwise: the bytes written.
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
    /// Present for link-layer addresses only.
    std::optional<InterfaceStatistics> statistics{};
};

/// The calls under their own names. Any thread.
class InterfaceCalls {
 public:
    virtual ~InterfaceCalls() = default;

    /// An empty buffer asks for the size.
    virtual SysctlAnswer sysctl(std::span<const std::int32_t> name,
                                std::span<std::byte> buffer) = 0;
    /// The entries in the order of the system's list. Absent if the call fails. The system's list
    /// is freed.
    virtual std::optional<std::vector<InterfaceAddress>> getifaddrs() = 0;
    /// 0 when there is no interface of this name.
    virtual std::uint32_t if_nametoindex(const std::string& name) = 0;
};

}  // namespace tarnwick::platform
