// SPDX-License-Identifier: MIT
// What the toolkit keeps of fonts.
#pragma once

namespace tarnwick::qt {

/// Frees fonts that are not in use; the toolkit keeps some 200 kB for each for minutes. Later
/// drawing loads its fonts again. Main thread.
void freeUnusedFonts();

}  // namespace tarnwick::qt
