// Facts about the machine from NSProcessInfo.
#pragma once

#include "platform/process_info.h"

namespace tarnwick::platform {

class MacProcessInfo final : public ProcessInfo {
 public:
    std::int64_t activeProcessorCount() override;
    std::int64_t thermalState() override;
};

}  // namespace tarnwick::platform
