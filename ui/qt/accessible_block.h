// What screen readers are told of the panel's blocks beyond their names.
#pragma once

namespace tarnwick::qt {

/// From now on every building block has its role and, where it shows a share, its value. Once for
/// the process.
void describeBlocksForScreenReaders();

}  // namespace tarnwick::qt
