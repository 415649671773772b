// SPDX-License-Identifier: MIT
// A page as text, for people to read and for tests to compare.
#pragma once

#include <string>

#include "ui/panel/page.h"

namespace tarnwick::testing {

/// A line for each item, with everything that its value says, and lines below it for its parts:
///     12 bar.cpu: bar "CPU" (cpu) 42 "42.0%" green
/// The number is the space above, in points.
std::string pageText(const Page& page);

}  // namespace tarnwick::testing
