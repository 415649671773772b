// What a screen reader says for a building block.
#pragma once

#include <string>

#include "ui/panel/page.h"

namespace tarnwick {

/// Name, value and, for a bar, its level in words: "CPU, 42.0%, normal". Empty for a block that is
/// mere decoration. The buttons in a block and the rows of a list speak for themselves.
std::string spokenText(const PanelBlock& block);

}  // namespace tarnwick
