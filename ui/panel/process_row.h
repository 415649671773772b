// One process: name at the left, a figure at the right.
#pragma once

#include <functional>
#include <string>

#include "core/metric_records.h"

namespace tarnwick {

/// What a list says of a process at the trailing side.
using ProcessValueText = std::function<std::string(const AppProcessInfo&)>;

/// Caption: the process's name at the left, `valueText` of it at the right.
struct ProcessRow {
    AppProcessInfo process;
    /// Never empty.
    ProcessValueText valueText;

    /// Equal when they say the same of the same process.
    bool operator==(const ProcessRow& other) const {
        return process == other.process && valueText(process) == other.valueText(other.process);
    }
};

}  // namespace tarnwick
