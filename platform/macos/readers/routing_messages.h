// SPDX-License-Identifier: MIT
// The interface list in which macOS delivers 64-bit byte counters: a sequence of routing messages,
// decoded from plain bytes.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

#include "platform/network_interfaces.h"

namespace tarnwick {

/// `sysctl` name of the interface list: network, routing, all families, list version 2.
inline constexpr std::array<std::int32_t, 6> kInterfaceListName{4, 17, 0, 0, 6, 0};

/// Where the fields of every message lie, bytes: its 16-bit length, its version and its type.
inline constexpr std::size_t kMessageLengthOffset = 0;
inline constexpr std::size_t kMessageVersionOffset = 2;
inline constexpr std::size_t kMessageTypeOffset = 3;
/// Smallest size of a message, bytes.
inline constexpr std::size_t kMessageHeaderSize = 4;
inline constexpr std::uint8_t kMessageVersion = 5;

/// Type of an extended interface-information message, and its smallest size, bytes.
inline constexpr std::uint8_t kInterfaceInfo2Type = 18;
inline constexpr std::size_t kInterfaceInfo2Size = 160;
/// Where its fields lie, bytes: 32-bit flags, 16-bit index, and in the 64-bit statistics, which
/// begin at 32, the two byte counters.
inline constexpr std::size_t kInterfaceFlagsOffset = 8;
inline constexpr std::size_t kInterfaceIndexOffset = 12;
inline constexpr std::size_t kInputBytesOffset = 96;
inline constexpr std::size_t kOutputBytesOffset = 104;

/// The 64-bit counters of the interfaces that are counted; of several messages about one interface
/// the last one holds. Messages of other types are skipped. Absent when the bytes are not a
/// sequence of whole messages of the known version.
std::optional<platform::InterfaceTable> decodeInterfaceList(std::span<const std::byte> bytes);

}  // namespace tarnwick
