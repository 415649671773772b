// SPDX-License-Identifier: MIT
#include "app/settings_window.h"

#include <utility>

namespace tarnwick {

void SettingsWindowCloseDelegate::windowWillClose() {
    settingsWindow_.tearDown();
}

SettingsWindow::SettingsWindow(platform::Windows& windows,
                               std::function<std::unique_ptr<platform::View>()> makeView)
    : windows_(windows), makeView_(std::move(makeView)) {}

void SettingsWindow::show() {
    if (window_) {
        bringToFront(*window_);
        return;
    }
    auto view = makeView_();
    auto window = windows_.makeWindow({.width = kWidth, .height = kHeight});
    window->setTitle(kTitle);
    window->setContentView(std::move(view));
    window->center();
    if (!delegate_) {
        delegate_.emplace(*this);
    }
    window->setDelegate(&*delegate_);
    bringToFront(*window);
    window_ = std::move(window);
}

void SettingsWindow::bringToFront(platform::Window& window) {
    window.makeKeyAndOrderFront();
    windows_.activateIgnoringOtherApps();
}

void SettingsWindow::tearDown() {
    if (window_) {
        window_->setContentView(nullptr);
        window_->setDelegate(nullptr);
    }
    window_.reset();
}

}  // namespace tarnwick
