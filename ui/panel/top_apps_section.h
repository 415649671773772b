// A titled list of processes.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "ui/panel/process_row.h"
#include "ui/panel/top_apps_list.h"

namespace tarnwick {

/// The title (subheadline, medium), then a row for each process in list order.
struct TopAppsSection {
    static constexpr std::string_view kEmptyText = TopAppsList::kEmptyText;

    std::string title;
    std::vector<AppProcessInfo> processes;
    /// Never empty.
    ProcessValueText valueText;

    bool operator==(const TopAppsSection& other) const {
        return title == other.title && rows() == other.rows();
    }

    /// One a process, in the order of the list.
    std::vector<ProcessRow> rows() const { return TopAppsList{processes, 0, valueText}.rows(); }
};

}  // namespace tarnwick
