// SPDX-License-Identifier: MIT
// Builds routing messages for tests.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <initializer_list>
#include <vector>

namespace tarnwick::routing {

using Bytes = std::vector<std::byte>;

template <class T>
void putNumber(Bytes& bytes, std::size_t offset, T number) {
    std::memcpy(bytes.data() + offset, &number, sizeof number);
}

/// A message of any type with `size` bytes, every byte behind its header 0xEE.
inline Bytes routingMessage(std::uint8_t type, std::size_t size, std::uint8_t version = 5) {
    Bytes bytes(size, std::byte{0xEE});
    putNumber(bytes, 0, static_cast<std::uint16_t>(size));
    putNumber(bytes, 2, version);
    putNumber(bytes, 3, type);
    return bytes;
}

struct InterfaceMessage {
    std::uint16_t index = 1;
    std::uint64_t received = 0;
    std::uint64_t sent = 0;
    /// Up, broadcast, running, multicast.
    std::uint32_t flags = 0x8043;
    std::size_t size = 160;
};

/// An extended interface-information message.
inline Bytes interfaceMessage(const InterfaceMessage& message) {
    Bytes bytes = routingMessage(18, message.size);
    putNumber(bytes, 8, message.flags);
    putNumber(bytes, 12, message.index);
    putNumber(bytes, 96, message.received);
    putNumber(bytes, 104, message.sent);
    return bytes;
}

inline Bytes joined(std::initializer_list<Bytes> parts) {
    Bytes all;
    for (const Bytes& part : parts) {
        all.insert(all.end(), part.begin(), part.end());
    }
    return all;
}

}  // namespace tarnwick::routing
