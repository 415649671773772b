// SPDX-License-Identifier: MIT
// The processes that use the most CPU or memory, as rows.
#pragma once

#include <vector>

#include "core/records/metric_records.h"

namespace tarnwick {

/// The rows of one pass over all processes, each list in falling order.
struct TopProcessLists {
    std::vector<AppProcessInfo> cpu;
    std::vector<AppProcessInfo> memory;
};

}  // namespace tarnwick
