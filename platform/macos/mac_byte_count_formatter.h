// Byte counts as the system writes them.
#pragma once

#include "platform/byte_count_formatter.h"

namespace tarnwick::platform {

class MacByteCountFormatter final : public ByteCountFormatter {
 public:
    std::string stringFromByteCount(std::int64_t byteCount, CountStyle style) const override;
};

}  // namespace tarnwick::platform
