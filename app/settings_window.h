// SPDX-License-Identifier: MIT
// The life of the one settings window.
#pragma once

#include <functional>
#include <memory>
#include <optional>

#include "platform/windows.h"

namespace tarnwick {

class SettingsWindow;

/// Tears the settings window down when it closes.
class SettingsWindowCloseDelegate final : public platform::WindowDelegate {
 public:
    explicit SettingsWindowCloseDelegate(SettingsWindow& settingsWindow)
        : settingsWindow_(settingsWindow) {}

    void windowWillClose() override;

 private:
    SettingsWindow& settingsWindow_;
};

/// The settings window exists only while it is on screen. Each show() after a close makes a new
/// window with new content. Main thread only.
class SettingsWindow {
 public:
    static constexpr const char* kTitle = "Tarnwick Settings";
    /// Size of the content, points.
    static constexpr int kWidth = 520;
    static constexpr int kHeight = 500;

    /// `makeView` makes the content of each window. Requires: `windows` outlives this object.
    SettingsWindow(platform::Windows& windows,
                   std::function<std::unique_ptr<platform::View>()> makeView);
    SettingsWindow(const SettingsWindow&) = delete;
    SettingsWindow& operator=(const SettingsWindow&) = delete;

    bool exists() const { return window_ != nullptr; }
    /// Brings the window to the front. Makes it first if it does not exist.
    void show();

 private:
    friend class SettingsWindowCloseDelegate;

    void tearDown();
    void bringToFront(platform::Window& window);

    platform::Windows& windows_;
    std::function<std::unique_ptr<platform::View>()> makeView_;
    /// One delegate serves every window; made with the first.
    std::optional<SettingsWindowCloseDelegate> delegate_;
    std::unique_ptr<platform::Window> window_;
};

}  // namespace tarnwick
