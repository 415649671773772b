// SPDX-License-Identifier: MIT
// What the toolkit reads from disks, which may hang, while it is used. Main thread.
#pragma once

namespace tarnwick::qt {

/// Keeps the fonts that were found at the start. By itself the font library looks for changes of
/// its folders when a font is asked for, also below the home; the toolkit makes no use of what it
/// finds.
void stopLookingForFonts();

/// Reads the pictures of the pointer that windows show; on X11 the toolkit then keeps them. Their
/// theme is looked for below the home, too. Takes a millisecond or two.
void loadPointers();

}  // namespace tarnwick::qt
