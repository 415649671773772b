// SPDX-License-Identifier: MIT
// Machines in interesting states, as inputs of the detail pages.
#pragma once

#include <ostream>
#include <string_view>
#include <vector>

#include "ui/panel/memory_detail_page.h"
#include "ui/panel/performance_detail_page.h"

namespace tarnwick::testing {

struct MemoryDetailState {
    /// As in the names of the golden files.
    std::string_view name;
    MemoryDetailInputs inputs;

    friend std::ostream& operator<<(std::ostream& out, const MemoryDetailState& state) {
        return out << state.name;
    }
};

std::vector<MemoryDetailState> memoryDetailStates();

struct PerformanceDetailState {
    /// As in the names of the golden files.
    std::string_view name;
    PerformanceDetailInputs inputs;

    friend std::ostream& operator<<(std::ostream& out, const PerformanceDetailState& state) {
        return out << state.name;
    }
};

std::vector<PerformanceDetailState> performanceDetailStates();

}  // namespace tarnwick::testing
