// What the system says about the machine as a whole.
#pragma once

#include <cstdint>

namespace tarnwick::platform {

class ProcessInfo {
 public:
    virtual ~ProcessInfo() = default;

    /// Number of processors that run work now; at least 1. Any thread.
    virtual std::int64_t activeProcessorCount() = 0;
    /// 0 nominal, 1 fair, 2 serious, 3 critical. Must be cheap and must not block, because it is
    /// called while a row is drawn. Main thread.
    virtual std::int64_t thermalState() = 0;
};

}  // namespace tarnwick::platform
