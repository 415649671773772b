// SPDX-License-Identifier: MIT
// Windows with a title bar.
#pragma once

#include <QIcon>
#include <QMainWindow>
#include <functional>
#include <memory>
#include <string>
#include <utility>

#include "platform/windows.h"
#include "ui/qt/widget_view.h"

namespace tarnwick::qt {

/// Main thread.
class TitledWindow final : public platform::Window {
 public:
    /// `gone` is called on a later turn, after the window and everything in it are destroyed. May
    /// be empty. Desktops that know the program by its entry show the entry's icon, not `icon`.
    explicit TitledWindow(const platform::WindowOptions& options, std::function<void()> gone = {},
                          const QIcon& icon = {});
    TitledWindow(const TitledWindow&) = delete;
    TitledWindow& operator=(const TitledWindow&) = delete;
    ~TitledWindow() override;

    void setTitle(const std::string& title) override;
    /// Requires: `view` is a WidgetView or null.
    void setContentView(std::unique_ptr<platform::View> view) override;
    void setDelegate(platform::WindowDelegate* delegate) override { delegate_ = delegate; }
    void center() override;
    void makeKeyAndOrderFront() override;

 private:
    class Frame;

    /// Deletes itself later if the window is destroyed while it is closing.
    Frame* frame_;
    platform::WindowDelegate* delegate_ = nullptr;
    std::unique_ptr<WidgetView> view_;
};

class TitledWindows final : public platform::Windows {
 public:
    /// `gone` is passed to each window, and what `icon` makes when it opens.
    explicit TitledWindows(std::function<void()> gone = {}, std::function<QIcon()> icon = {})
        : gone_(std::move(gone)), icon_(std::move(icon)) {}

    std::unique_ptr<platform::Window> makeWindow(const platform::WindowOptions& options) override;
    void activateIgnoringOtherApps() override;

 private:
    std::function<void()> gone_;
    std::function<QIcon()> icon_;
};

}  // namespace tarnwick::qt
