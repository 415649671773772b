// SPDX-License-Identifier: MIT
#include "app/app_delegate.h"

#include <utility>

namespace tarnwick {

AppDelegate::AppDelegate(UserSettings& settings, platform::Dispatch& dispatch,
                         std::function<void()> showSettingsWindow,
                         std::function<bool()> toggleMenuBarPanel)
    : presentation_(std::make_shared<Presentation>(Presentation{
          settings, dispatch, std::move(showSettingsWindow), std::move(toggleMenuBarPanel)})) {}

void AppDelegate::applicationDidFinishLaunching() {
    presentation_->dispatch.async([presentation = presentation_] { present(presentation); });
}

void AppDelegate::present(const std::shared_ptr<Presentation>& presentation) {
    if (!presentation->settings.isLoaded()) {
        presentation->untilLoaded =
            presentation->settings.objectWillChange([weak = std::weak_ptr(presentation)] {
                const auto self = weak.lock();
                if (self && self->settings.isLoaded()) {
                    self->dispatch.async([self] { present(self); });
                }
            });
        return;
    }
    presentation->untilLoaded.cancel();
    if (!presentation->settings.presentInitialSettingsIfNeeded()) {
        return;
    }
    presentation->showSettingsWindow();
    openPanel(presentation, 0);
}

void AppDelegate::openPanel(const std::shared_ptr<Presentation>& presentation, int attempt) {
    if (presentation->leavesPanelAlone) {
        return;
    }
    if (!presentation->toggleMenuBarPanel() && attempt + 1 < kMaximumAttempts) {
        presentation->dispatch.asyncAfter(
            kRetryDelay, [presentation, attempt] { openPanel(presentation, attempt + 1); });
    }
}

}  // namespace tarnwick
