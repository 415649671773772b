// SPDX-License-Identifier: MIT
// A sample as waybar's custom modules take it.
#pragma once

#include <string>

#include "tools/machine_sample.h"

namespace tarnwick::probe {

/// One JSON object without a line break: `text`, what the status item says, empty while nothing is
/// above a threshold; `alt` and `class`, "ok", "info" or "warning"; `percentage`, the largest share
/// in use among the metrics of that severity, absent where none is known; `tooltip`, the figures as
/// Pango markup.
std::string waybarLine(const MachineSample& sample);

}  // namespace tarnwick::probe
