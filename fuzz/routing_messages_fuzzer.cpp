// SPDX-License-Identifier: MIT
// Any bytes as the interface list of macOS: the decoder returns a table exactly when the bytes are
// complete messages of the known version. The table holds what the last message about each
// interface says.
#include <cstring>
#include <optional>
#include <span>

#include "fuzz/fuzzer.h"
#include "platform/macos/readers/routing_messages.h"

namespace {

using tarnwick::platform::Counters;
using tarnwick::platform::InterfaceTable;

template <class T>
T at(const std::uint8_t* bytes) {
    T number{};
    std::memcpy(&number, bytes, sizeof number);
    return number;
}

// The same list, read once more in another way.
std::optional<InterfaceTable> readAgain(const std::uint8_t* data, std::size_t size) {
    InterfaceTable table;
    std::size_t offset = 0;
    while (offset != size) {
        const std::size_t left = size - offset;
        const std::uint8_t* const message = data + offset;
        const std::size_t length = left < 4 ? 0 : at<std::uint16_t>(message);
        const bool isInterface = left >= 4 && message[3] == 18;
        if (length < 4 || length > left || message[2] != 5 || (isInterface && length < 160)) {
            return std::nullopt;
        }
        if (isInterface && (at<std::int32_t>(message + 8) & 9) == 1) {
            table[at<std::uint16_t>(message + 12)] =
                Counters{at<std::uint64_t>(message + 96), at<std::uint64_t>(message + 104), false};
        }
        offset += length;
    }
    return table;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto table = tarnwick::decodeInterfaceList(std::as_bytes(std::span(data, size)));
    tarnwick::fuzz::require(table == readAgain(data, size));
    return 0;
}
