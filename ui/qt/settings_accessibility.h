// SPDX-License-Identifier: MIT
// What assistive technology learns about the settings window in addition to what the toolkit's own
// controls report.
#pragma once

namespace tarnwick::qt {

/// Does nothing the second time. Main thread.
void installSettingsAccessibility();

}  // namespace tarnwick::qt
