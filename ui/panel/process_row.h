// One process: name at the left, a figure at the right.
#pragma once

#include <string>

#include "core/metric_records.h"

namespace tarnwick {

/// What a list says about each process. A plain function, so that lists compare.
using ProcessValueText = std::string (*)(const AppProcessInfo&);

/// Caption: the name is primary, the value secondary.
struct ProcessRow {
    AppProcessInfo process;
    ProcessValueText valueText = nullptr;

    bool operator==(const ProcessRow&) const = default;
};

}  // namespace tarnwick
