// SPDX-License-Identifier: MIT
// A page as plain text, for a bug report or a chat.
#pragma once

#include <string>

#include "ui/panel/page.h"

namespace tarnwick {

/// What the page shows, one line for each row, with an empty line before each group. Without its
/// buttons.
std::string copiedText(const Page& page);

}  // namespace tarnwick
