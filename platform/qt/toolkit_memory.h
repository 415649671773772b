// SPDX-License-Identifier: MIT
// What the toolkit keeps for later. Main thread.
#pragma once

namespace tarnwick::qt {

/// Frees fonts that are not in use; the toolkit keeps some 200 kB for each for minutes, and longer
/// where a QFont lives on. Later drawing loads its fonts again.
void freeUnusedFonts();

/// Frees the pictures that the toolkit keeps to draw them again: up to 10 MB, and 100 kB for each
/// window with an icon, which no later window asks for.
void freeUnusedPictures();

}  // namespace tarnwick::qt
