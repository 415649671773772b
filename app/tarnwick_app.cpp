// SPDX-License-Identifier: MIT
#include "app/tarnwick_app.h"

#include <utility>

#include "evaluation/menu_bar_label.h"
#include "platform/platform.h"
#include "services/battery_service.h"

namespace tarnwick {

TarnwickAppEnvironment TarnwickAppEnvironment::shared() {
    return {UserSettings::shared(), BatteryService::shared(), StatsManagerEnvironment::shared(),
            *platform::current().hotKeys};
}

TarnwickApp::TarnwickApp(TarnwickAppDesktop desktop, TarnwickAppEnvironment environment)
    : statusItem_(desktop.statusItem),
      environment_(std::move(environment)),
      appDelegate_(
          environment_.settings, environment_.stats.dispatch,
          [weak = std::weak_ptr(self_)] {
              if (const auto self = weak.lock()) {
                  (*self)->showSettingsWindow();
              }
          },
          [&item = statusItem_, logger = environment_.logger] {
              return HotKeyService::toggleMenuBarPanel(item, logger);
          }),
      statsManager_(&environment_.settings, environment_.batteryService, kSlowVisibleInterval,
                    kSlowIdleInterval, environment_.stats),
      settingsWindow_(desktop.windows,
                      [make = std::move(desktop.makeSettingsView),
                       &settings = environment_.settings] { return make(settings); }),
      shortcutKeyCode_(environment_.settings.shortcutKeyCode()),
      shortcutModifiers_(environment_.settings.shortcutModifiers()),
      statsSubscription_(statsManager_.objectWillChange([this] { nextLabel_.schedule(); })),
      settingsSubscription_(environment_.settings.objectWillChange([this] {
          nextLabel_.schedule();
          nextShortcut_.schedule();
      })) {
    showLabel();
    labelDidAppear();
}

TarnwickApp::~TarnwickApp() {
    environment_.hotKeys.setRegistrationChanged(nullptr);
}

void TarnwickApp::showLabel() {
    const MetricDisplaySummary summary =
        statsManager_.menuBarSummary(environment_.stats.wallClock());
    MenuBarLabel label = menuBarLabel(summary, environment_.settings.menuBarDisplayModeRawValue());
    statusItem_.setContent({std::move(label.symbol), label.tint, std::move(label.text),
                            std::move(label.accessibilityLabel)});
}

void TarnwickApp::labelDidAppear() {
    if (hotKeyService_) {
        return;
    }
    hotKeyService_ = std::make_unique<HotKeyService>(
        [this] {
            if (!HotKeyService::toggleMenuBarPanel(statusItem_, environment_.logger)) {
                statusItem_.toggleWithoutTray();
            }
        },
        HotKeyServiceEnvironment{environment_.hotKeys, environment_.stats.dispatch,
                                 environment_.logger});
    environment_.hotKeys.setRegistrationChanged([this] { nextRegistration_.schedule(); });
    hotKeyService_->applyShortcut(environment_.settings);
}

void TarnwickApp::noticeShortcut() {
    const std::int64_t keyCode = environment_.settings.shortcutKeyCode();
    const std::int64_t modifiers = environment_.settings.shortcutModifiers();
    const bool isOtherKey = std::exchange(shortcutKeyCode_, keyCode) != keyCode;
    const bool areOtherModifiers = std::exchange(shortcutModifiers_, modifiers) != modifiers;
    const bool isRecording = environment_.settings.isRecordingShortcut();
    const bool wasRecording = std::exchange(isRecordingShortcut_, isRecording);
    if (isRecording) {
        hotKeyService_->unregister();
        return;
    }
    if (wasRecording && !isOtherKey && !areOtherModifiers) {
        applyShortcut();
    }
    // A change of either setting applies the shortcut. Applying it twice in a row does no harm.
    if (isOtherKey) {
        applyShortcut();
    }
    if (areOtherModifiers) {
        applyShortcut();
    }
}

void TarnwickApp::applyShortcut() {
    if (isRecordingShortcut_) {
        return;
    }
    hotKeyService_->applyShortcut(environment_.settings);
}

}  // namespace tarnwick
