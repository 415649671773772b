// SPDX-License-Identifier: MIT
// Byte counts as people read them, the same in every locale.
#pragma once

#include <cstdint>
#include <string>

#include "platform/byte_count_formatter.h"

namespace tarnwick::platform {

/// "Zero KB", "1 byte", "512 bytes", "12 KB", "3.4 MB", "1.25 GB", and TB, PB and EB like GB. Bytes
/// and KB have no decimals, MB at most one, larger units at most two; zeros at the end are left
/// out. Halves are rounded up, and what reads a whole next unit is given in that unit: 999,999
/// bytes of a file are "1 MB". The decimal mark is a point; commas part thousands.
class PlainByteCountFormatter final : public ByteCountFormatter {
 public:
    /// A negative count breaks the contract; its text starts with a minus sign.
    std::string stringFromByteCount(std::int64_t byteCount, CountStyle style) const override;
};

}  // namespace tarnwick::platform
