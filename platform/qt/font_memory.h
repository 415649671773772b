// What the toolkit keeps of fonts.
#pragma once

namespace tarnwick::qt {

/// Lets go of the fonts that are in no use: the toolkit keeps some 200 kB for each for minutes.
/// What is drawn next loads its fonts again. Main thread.
void freeUnusedFonts();

}  // namespace tarnwick::qt
