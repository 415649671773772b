// Makes the widget for a building block.
#pragma once

#include "ui/qt/block_widget.h"

namespace tarnwick::qt {

/// A widget of the block's kind that shows the block.
BlockWidget* makeBlockWidget(const PanelBlock& block, const Theme& theme, const PressHandler& press,
                             QWidget* parent);

}  // namespace tarnwick::qt
