// SPDX-License-Identifier: MIT
// Makes the widget for a building block.
#pragma once

#include <memory>

#include "ui/panel/motion.h"
#include "ui/qt/block_widget.h"

namespace tarnwick::qt {

/// A widget of the block's kind that shows the block. Its bars move with `motion`, which may be
/// null.
BlockWidget* makeBlockWidget(const PanelBlock& block, const Theme& theme,
                             const std::shared_ptr<Motion>& motion, const PressHandler& press,
                             QWidget* parent);

}  // namespace tarnwick::qt
