// SPDX-License-Identifier: MIT
// The order of a list while the pointer is over it.
#pragma once

#include <optional>
#include <vector>

#include "core/records/metric_records.h"

namespace tarnwick {

/// Seconds for which a pointer over a list delays layout changes at most, whether it rests or
/// moves. So the panel cannot hold back its news for ever.
inline constexpr double kLongestHold = 5;

/// The rows of a list from top to bottom. An empty row shows no process.
using ProcessSlots = std::vector<std::optional<AppProcessInfo>>;

/// Puts the latest processes, with their latest figures, into the rows where they are shown. The
/// number of rows stays, and no row moves. If no rows are shown, returns the latest processes in
/// their order.
///
/// A process that is already shown keeps its row. A new one takes the first free row; if there is
/// none, it is left out for now. A row without a process stays empty.
ProcessSlots heldOrder(const ProcessSlots& shown, const std::vector<AppProcessInfo>& latest);

}  // namespace tarnwick
