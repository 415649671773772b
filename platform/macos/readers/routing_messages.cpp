// SPDX-License-Identifier: MIT
#include "platform/macos/readers/routing_messages.h"

#include "platform/macos/readers/number_at.h"

namespace tarnwick {

std::optional<platform::InterfaceTable> decodeInterfaceList(std::span<const std::byte> bytes) {
    platform::InterfaceTable interfaces;
    while (!bytes.empty()) {
        if (bytes.size() < kMessageHeaderSize) {
            return std::nullopt;
        }
        const auto length = numberAt<std::uint16_t>(bytes, kMessageLengthOffset);
        if (length < kMessageHeaderSize || length > bytes.size()) {
            return std::nullopt;
        }
        const std::span<const std::byte> message = bytes.first(length);
        bytes = bytes.subspan(length);
        if (numberAt<std::uint8_t>(message, kMessageVersionOffset) != kMessageVersion) {
            return std::nullopt;
        }
        if (numberAt<std::uint8_t>(message, kMessageTypeOffset) != kInterfaceInfo2Type) {
            continue;
        }
        if (message.size() < kInterfaceInfo2Size) {
            return std::nullopt;
        }
        if (platform::isCounted(numberAt<std::uint32_t>(message, kInterfaceFlagsOffset))) {
            const auto index = numberAt<std::uint16_t>(message, kInterfaceIndexOffset);
            interfaces[index] = {.received = numberAt<std::uint64_t>(message, kInputBytesOffset),
                                 .sent = numberAt<std::uint64_t>(message, kOutputBytesOffset),
                                 .uses32BitCounters = false};
        }
    }
    return interfaces;
}

}  // namespace tarnwick
