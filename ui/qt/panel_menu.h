// SPDX-License-Identifier: MIT
// The menu that a right click on the panel shows.
#pragma once

#include "ui/qt/block_widget.h"
#include "ui/qt/theme.h"

class QMenu;
class QWidget;

namespace tarnwick::qt {

/// The entries of kPanelMenu in the program's own look, round where the window of `owner` is
/// translucent. Not shown yet; it is deleted when it closes, and with its owner at the latest.
QMenu* makePanelMenu(QWidget& owner, const Theme& theme, const PressHandler& press);

}  // namespace tarnwick::qt
