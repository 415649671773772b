// What happens once the program has been launched.
#pragma once

#include <functional>
#include <memory>

#include "platform/dispatch.h"
#include "settings/user_settings.h"

namespace tarnwick {

/// Greets a new user once: settings window, then panel. Main thread only.
class AppDelegate {
 public:
    /// Opening the panel is tried this often at most; at launch the status item may not be there
    /// yet.
    static constexpr int kMaximumAttempts = 6;
    /// Seconds between two attempts.
    static constexpr double kRetryDelay = 0.12;

    /// `toggleMenuBarPanel` says whether there was an item to click. `settings` and `dispatch` must
    /// outlive what is queued on the main queue.
    AppDelegate(UserSettings& settings, platform::Dispatch& dispatch,
                std::function<void()> showSettingsWindow, std::function<bool()> toggleMenuBarPanel);

    /// Queues the first-launch presentation, so that it runs after the item is up.
    void applicationDidFinishLaunching();

    /// The user asked for the panel in some other way: the presentation does not toggle it any
    /// more, which could close it.
    void panelWasAskedFor() { presentation_->leavesPanelAlone = true; }

 private:
    /// Outlives the delegate while something is queued.
    struct Presentation {
        UserSettings& settings;
        platform::Dispatch& dispatch;
        std::function<void()> showSettingsWindow;
        std::function<bool()> toggleMenuBarPanel;
        bool leavesPanelAlone = false;
    };

    static void present(const std::shared_ptr<Presentation>& presentation);
    static void openPanel(const std::shared_ptr<Presentation>& presentation, int attempt);

    std::shared_ptr<Presentation> presentation_;
};

}  // namespace tarnwick
