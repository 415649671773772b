// SPDX-License-Identifier: MIT
// What happens once the program has been launched.
#pragma once

#include <functional>
#include <memory>

#include "core/records/published.h"
#include "platform/dispatch.h"
#include "settings/user_settings.h"

namespace tarnwick {

/// Greets a new user once: settings window, then panel. Main thread only.
class AppDelegate {
 public:
    /// Attempts to open the panel. At launch the status item may not be in its tray yet.
    static constexpr int kMaximumAttempts = 6;
    /// Seconds between two attempts.
    static constexpr double kRetryDelay = 0.12;

    /// `toggleMenuBarPanel` returns whether there was an item to click. Requires: `settings` and
    /// `dispatch` outlive all work that is queued on the main queue.
    AppDelegate(UserSettings& settings, platform::Dispatch& dispatch,
                std::function<void()> showSettingsWindow, std::function<bool()> toggleMenuBarPanel);

    /// Queues the first-launch presentation, so that it runs after the item is up. It waits for
    /// settings that are not loaded yet: a user who is known would be greeted as a new one.
    void applicationDidFinishLaunching();

    /// Call this when the user opened the panel in another way. The greeting then no longer toggles
    /// the panel, because that could close it.
    void panelWasAskedFor() { presentation_->leavesPanelAlone = true; }

 private:
    /// Queued work shares ownership, so this may outlive the delegate.
    struct Presentation {
        UserSettings& settings;
        platform::Dispatch& dispatch;
        std::function<void()> showSettingsWindow;
        std::function<bool()> toggleMenuBarPanel;
        bool leavesPanelAlone = false;
        /// While the settings are waited for.
        Subscription untilLoaded{};
    };

    static void present(const std::shared_ptr<Presentation>& presentation);
    static void openPanel(const std::shared_ptr<Presentation>& presentation, int attempt);

    std::shared_ptr<Presentation> presentation_;
};

}  // namespace tarnwick
