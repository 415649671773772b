// A titled list of processes.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "ui/panel/process_row.h"

namespace tarnwick {

/// The title (subheadline, medium), then a row for each process in list order.
struct TopAppsSection {
    /// In place of the rows while there is no process: caption, secondary.
    static constexpr std::string_view kEmptyText = "Collecting data...";

    std::string title;
    std::vector<AppProcessInfo> processes;
    ProcessValueText valueText = nullptr;

    bool operator==(const TopAppsSection&) const = default;

    std::vector<ProcessRow> rows() const {
        std::vector<ProcessRow> rows;
        for (const AppProcessInfo& process : processes) {
            rows.push_back({process, valueText});
        }
        return rows;
    }
};

}  // namespace tarnwick
