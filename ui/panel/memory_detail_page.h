// The page behind "What's Using Memory?".
#pragma once

#include <set>
#include <vector>

#include "core/records/metric_records.h"
#include "platform/byte_count_formatter.h"
#include "ui/panel/page.h"

namespace tarnwick {

/// Everything that the page is made of, as it is at the moment of building.
struct MemoryDetailInputs {
    MemoryInfo memoryInfo;
    std::vector<AppProcessInfo> topMemoryProcesses;
    /// What pressing can do; buttons for anything else are disabled.
    std::set<PanelAction> enabledActions;
};

/// `formatter` must outlive the page.
Page memoryDetailPage(const MemoryDetailInputs& inputs,
                      const platform::ByteCountFormatter& formatter);

}  // namespace tarnwick
