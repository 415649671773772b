// The program as screen readers see it.
#pragma once

namespace tarnwick::qt {

/// Lists open pop-ups among the program's windows for screen readers, which the toolkit leaves out:
/// it takes each for the menu of some widget, and the panel is no such thing. To be called before
/// the application object is made.
void listPopUpsForScreenReaders();

}  // namespace tarnwick::qt
