// SPDX-License-Identifier: MIT
// A settings view over a store in memory.
#pragma once

#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

#include "platform/testing/manual_dispatch.h"
#include "platform/testing/memory_user_defaults.h"
#include "platform/testing/recording_log.h"
#include "platform/testing/scripted_keyboard_layout.h"
#include "platform/testing/scripted_login_service.h"
#include "ui/settings/settings_view.h"

namespace tarnwick::testing {

inline constexpr std::int64_t kCommandFlag = 0x100000;
inline constexpr std::int64_t kShiftFlag = 0x20000;

class SettingsViewFixture : public ::testing::Test {
 protected:
    SettingsViewEnvironment environment() {
        return {dispatch, layout, {"1.4", "212"}, [this](const std::string& address) {
                    opened.push_back(address);
                }};
    }
    void storeShortcut(std::int64_t keyCode, std::int64_t modifiers) {
        settings.setShortcutKeyCode(keyCode);
        settings.setShortcutModifiers(modifiers);
    }
    /// Starts to record the contents that the view announces.
    void watch() {
        view->setObserver(
            [this](const SettingsView::Content& content) { announced.push_back(content); });
    }

    platform::testing::MemoryUserDefaults store;
    platform::testing::ScriptedLoginService loginService;
    platform::testing::ManualDispatch dispatch;
    platform::testing::ScriptedKeyboardLayout layout{{{37, "L"}, {40, "K"}}};
    UserSettings settings{store, loginService};
    std::vector<std::string> opened;
    std::vector<SettingsView::Content> announced;
    std::unique_ptr<SettingsView> view = std::make_unique<SettingsView>(settings, environment());
};

}  // namespace tarnwick::testing
