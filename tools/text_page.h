// SPDX-License-Identifier: MIT
// A sample as a page for a terminal.
#pragma once

#include <string>

#include "tools/machine_sample.h"

namespace tarnwick::probe {

/// Aligned lines of at most 80 characters, the verdict first. What is at or above a threshold
/// is marked by "!" or "!!", with `hasColor` also by the colours of the terminal.
std::string textPage(const MachineSample& sample, bool hasColor);

}  // namespace tarnwick::probe
