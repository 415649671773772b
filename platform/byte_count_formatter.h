// SPDX-License-Identifier: MIT
// Byte counts as people read them.
#pragma once

#include <cstdint>
#include <string>

namespace tarnwick::platform {

enum class CountStyle {
    /// Decimal units: 1 KB is 1,000 bytes. Files, volumes, rates.
    file,
    /// Binary units: 1 KB is 1,024 bytes. Memory.
    memory,
};

/// Any thread.
class ByteCountFormatter {
 public:
    virtual ~ByteCountFormatter() = default;

    /// `byteCount` must not be negative. 0 reads "Zero KB".
    virtual std::string stringFromByteCount(std::int64_t byteCount, CountStyle style) const = 0;
};

}  // namespace tarnwick::platform
