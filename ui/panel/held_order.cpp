// SPDX-License-Identifier: MIT
#include "ui/panel/held_order.h"

#include <algorithm>

namespace tarnwick {

ProcessSlots heldOrder(const ProcessSlots& shown, const std::vector<AppProcessInfo>& latest) {
    if (shown.empty()) {
        return {latest.begin(), latest.end()};
    }
    ProcessSlots rows(shown.size());
    std::vector<AppProcessInfo> newcomers;
    for (const AppProcessInfo& process : latest) {
        // The name must match, too: the system reuses the numbers of ended processes.
        const auto place = std::find_if(shown.begin(), shown.end(), [&process](const auto& row) {
            return row && row->id == process.id && row->name == process.name;
        });
        if (place == shown.end()) {
            newcomers.push_back(process);
        } else {
            rows[static_cast<std::size_t>(place - shown.begin())] = process;
        }
    }
    auto row = rows.begin();
    for (const AppProcessInfo& process : newcomers) {
        row = std::find(row, rows.end(), std::nullopt);
        if (row == rows.end()) {
            break;
        }
        *row = process;
    }
    return rows;
}

}  // namespace tarnwick
