// What screen readers are told of the panel and its blocks beyond their names.
#pragma once

namespace tarnwick::qt {

class BlockWidget;

/// From now on the panel and every building block has its role and, where it shows a share, its
/// value. Once for the process.
void describeBlocksForScreenReaders();

/// Tells them of another value of a block. Costs nothing while nobody listens.
void announceValue(BlockWidget& block, double percent);
/// Tells them that a block is described otherwise, which it is with its name where it shows a
/// share.
void announceDescription(BlockWidget& block);

}  // namespace tarnwick::qt
