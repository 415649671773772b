// SPDX-License-Identifier: MIT
// What screen readers learn about the panel and its blocks in addition to their names.
#pragma once

namespace tarnwick::qt {

class BlockWidget;

/// From now on the panel and every building block has a role, and a block that shows a share has a
/// value. Call it once for the process.
void describeBlocksForScreenReaders();

/// Tells screen readers the new value of a block. Costs nothing while no screen reader listens.
void announceValue(BlockWidget& block, double percent);
/// Tells screen readers that the description of a block has changed. Only a block that shows a
/// share has one: its name.
void announceDescription(BlockWidget& block);

}  // namespace tarnwick::qt
