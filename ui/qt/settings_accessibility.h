// What assistive technology learns of the settings window beyond what the toolkit's own controls
// say.
#pragma once

namespace tarnwick::qt {

/// Does nothing the second time. Main thread.
void installSettingsAccessibility();

}  // namespace tarnwick::qt
