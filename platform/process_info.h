// What the system says about the machine as a whole.
#pragma once

#include <cstdint>

namespace tarnwick::platform {

class ProcessInfo {
 public:
    virtual ~ProcessInfo() = default;

    /// Number of processors that run work now; at least 1. Any thread.
    virtual std::int64_t activeProcessorCount() = 0;
    /// 0 nominal, 1 fair, 2 serious, 3 critical. Read while a row is drawn, so it must be cheap and
    /// must not block. Main thread.
    virtual std::int64_t thermalState() = 0;
};

}  // namespace tarnwick::platform
