// SPDX-License-Identifier: MIT
// The settings window's content: what it shows, and what each control does.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "core/records/published.h"
#include "platform/dispatch.h"
#include "platform/keyboard_layout.h"
#include "platform/next_turn.h"
#include "platform/status_item_notice.h"
#include "settings/shortcut_recorder_view.h"
#include "settings/user_settings.h"
#include "ui/settings/settings_page.h"
#include "ui/settings/tab.h"

namespace tarnwick {

/// What a view runs on. All of it must outlive the view.
struct SettingsViewEnvironment {
    platform::Dispatch& dispatch;
    platform::KeyboardLayout& keyboardLayout;
    ProgramInformation program{};
    /// Shows an address in the user's browser.
    std::function<void(const std::string& address)> openAddress{};
    /// Whether the thumbs of the sliders take the keyboard's focus.
    bool keyboardNavigationEnabled = true;
    /// Shown above all else; null on systems where the item is always there.
    platform::StatusItemNotice* itemNotice = nullptr;
    /// What the keys of a shortcut are on this system, and which combinations are free, a sentence
    /// a line; empty for nothing.
    std::string shortcutTip{};
    /// Whether the status item is shown without its text now; empty where it always has room.
    std::function<bool()> itemIsIconOnly{};
    /// What the desktop calls the shortcut's keys, where its user has chosen others than those
    /// stored; empty elsewhere. May be empty itself.
    std::function<std::string()> otherShortcutKeys{};
};

/// Edits the settings directly: each change is stored before the control's function returns, so
/// nothing has to be saved. Lives as long as the window shows it. Main thread only.
class SettingsView {
 public:
    /// What is on screen.
    struct Content {
        Tab tab = Tab::general;
        SettingsPage page;

        bool operator==(const Content&) const = default;
    };

    SettingsView(UserSettings& settings, SettingsViewEnvironment environment);
    SettingsView(const SettingsView&) = delete;
    SettingsView& operator=(const SettingsView&) = delete;
    ~SettingsView();

    UserSettings& settings() const { return settings_; }
    const std::optional<std::string>& shortcutValidationMessage() const {
        return shortcutValidationMessage_;
    }

    Content content() const;
    SettingsPage page(Tab tab) const;
    /// Calls `observer` when the content differs from the last one, on a later turn of the main
    /// queue: once for any number of changes, whatever caused them.
    void setObserver(std::function<void(const Content&)> observer);

    Tab selectedTab() const { return selectedTab_; }
    void selectTab(Tab tab);

    /// Does nothing if the mode is already selected.
    void selectDisplayMode(MenuBarDisplayMode mode);
    void setSwitch(SettingsSwitch setting, bool on);
    /// Switches to the opposite of the stored value, which may differ from the one shown.
    void toggleSwitch(SettingsSwitch setting);
    /// The recorder's field, for the control that passes events to it.
    ShortcutField& shortcutField() { return recorder_.field(); }
    void clearShortcut();
    DualThresholdSlider& slider(JudgedMetric metric);
    void resetThresholds() { settings_.resetThresholdsToDefaults(); }
    void openMakerSite();

 private:
    SettingsPage generalPage() const;
    SettingsPage customizePage() const;
    SettingsPage aboutPage() const;
    void setValidationMessage(std::optional<std::string> message);
    void followLaunchOnLogin();
    void rebuild();

    UserSettings& settings_;
    SettingsViewEnvironment environment_;
    platform::NextTurn nextRebuild_{environment_.dispatch, [this] { rebuild(); }};
    Tab selectedTab_ = Tab::general;
    std::optional<std::string> shortcutValidationMessage_;
    ShortcutRecorderView recorder_;
    std::vector<DualThresholdSlider> sliders_;
    /// The preference when it was last checked.
    bool launchOnLogin_;
    Content lastContent_;
    std::function<void(const Content&)> observer_;
    Subscription settingsSubscription_;
    Subscription noticeSubscription_;
};

}  // namespace tarnwick
