// SPDX-License-Identifier: MIT
// The content of the settings window.
#pragma once

#include <memory>

#include "platform/dispatch.h"
#include "platform/keyboard_layout.h"
#include "platform/windows.h"
#include "settings/user_settings.h"

namespace tarnwick::appkit {

/// Edits `settings`. All three must outlive the view. Main thread.
std::unique_ptr<platform::View> makeSettingsView(UserSettings& settings,
                                                 platform::Dispatch& dispatch,
                                                 platform::KeyboardLayout& keyboardLayout);

}  // namespace tarnwick::appkit
