// The order of a list that somebody is pointing at.
#pragma once

#include <optional>
#include <vector>

#include "core/records/metric_records.h"

namespace tarnwick {

/// A pointer that has come to rest holds what it points at for one page and so many more, which
/// takes some seconds: nothing that the panel has to say may wait for ever.
inline constexpr int kPagesAtRest = 4;

/// The rows of a list from top to bottom; an empty one has nobody in it.
using ProcessSlots = std::vector<std::optional<AppProcessInfo>>;

/// The latest processes, each with its latest figures, in the rows where they are shown: whoever is
/// still among them keeps its row, whoever is new takes the first free one, and those that find
/// none wait. A row that nobody takes is left empty. So there are as many rows as were shown, and
/// none moves; where none was shown there is nothing to hold.
ProcessSlots heldOrder(const ProcessSlots& shown, const std::vector<AppProcessInfo>& latest);

}  // namespace tarnwick
