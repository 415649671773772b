// SPDX-License-Identifier: MIT
// How screen readers see the program.
#pragma once

namespace tarnwick::qt {

/// Lists open pop-ups among the program's windows for screen readers. The toolkit leaves pop-ups
/// out, because it takes each for the menu of some widget; the panel is not one. Call it before the
/// application object is made.
void listPopUpsForScreenReaders();

}  // namespace tarnwick::qt
