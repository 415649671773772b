// SPDX-License-Identifier: MIT
// The page behind "What's Using Memory?".
#pragma once

#include <set>
#include <vector>

#include "core/records/metric_records.h"
#include "platform/byte_count_formatter.h"
#include "ui/panel/page.h"

namespace tarnwick {

/// Everything that the page shows, as it is when the page is built.
struct MemoryDetailInputs {
    MemoryInfo memoryInfo;
    std::vector<AppProcessInfo> topMemoryProcesses;
    /// The actions that can be performed; buttons for all others are disabled.
    std::set<PanelAction> enabledActions;
};

/// `formatter` must outlive the page.
Page memoryDetailPage(const MemoryDetailInputs& inputs,
                      const platform::ByteCountFormatter& formatter);

}  // namespace tarnwick
