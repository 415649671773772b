// A list of processes without a title.
#pragma once

#include <string_view>
#include <vector>

#include "ui/panel/process_row.h"

namespace tarnwick {

struct TopAppsList {
    /// In place of the rows while there is no process: caption, secondary.
    static constexpr std::string_view kEmptyText = "Collecting data...";

    std::vector<AppProcessInfo> processes;
    /// Points between the list's leading edge and that of its rows.
    double indent = 0;
    /// Never empty.
    ProcessValueText valueText;

    bool operator==(const TopAppsList& other) const {
        return indent == other.indent && rows() == other.rows();
    }

    /// One a process, in the order of the list.
    std::vector<ProcessRow> rows() const {
        std::vector<ProcessRow> rows;
        for (const AppProcessInfo& process : processes) {
            rows.push_back({process, valueText});
        }
        return rows;
    }
};

}  // namespace tarnwick
