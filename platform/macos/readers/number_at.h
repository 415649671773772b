// SPDX-License-Identifier: MIT
// Numbers inside the binary records of a kernel.
#pragma once

#include <cstddef>
#include <cstring>
#include <span>

namespace tarnwick {

/// The number at `offset`, in the byte order of the machine; it needs no alignment. Requires: the
/// number lies within the bytes.
template <class T>
T numberAt(std::span<const std::byte> bytes, std::size_t offset) {
    T number{};
    std::memcpy(&number, bytes.subspan(offset, sizeof number).data(), sizeof number);
    return number;
}

}  // namespace tarnwick
