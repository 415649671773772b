// SPDX-License-Identifier: MIT
// What a screen reader says for a building block.
#pragma once

#include <string>

#include "ui/panel/page.h"

namespace tarnwick {

/// Name, value and, if the block shows a level, the level in words: "CPU, 42.0%, normal". Empty for
/// a block that is only decoration or only holds parts. The buttons in a block and the rows of a
/// list have texts of their own.
std::string spokenText(const PanelBlock& block);

}  // namespace tarnwick
