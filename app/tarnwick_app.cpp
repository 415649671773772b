#include "app/tarnwick_app.h"

#include <utility>

#include "app/menu_bar_panel.h"
#include "evaluation/menu_bar_label.h"
#include "services/battery_service.h"

namespace tarnwick {

TarnwickAppEnvironment TarnwickAppEnvironment::shared() {
    return {UserSettings::shared(), BatteryService::shared(), StatsManagerEnvironment::shared()};
}

TarnwickApp::TarnwickApp(platform::StatusItem& statusItem, TarnwickAppEnvironment environment)
    : statusItem_(statusItem),
      environment_(std::move(environment)),
      statsManager_(&environment_.settings, environment_.batteryService, kSlowVisibleInterval,
                    kSlowIdleInterval, environment_.stats),
      appDelegate_(environment_.settings, environment_.stats.dispatch, nullptr,
                   [&statusItem] { return toggleMenuBarPanel(statusItem); }),
      statsSubscription_(statsManager_.objectWillChange([this] { labelWillChange(); })),
      settingsSubscription_(environment_.settings.objectWillChange([this] { labelWillChange(); })) {
    showLabel();
}

void TarnwickApp::labelWillChange() {
    // However many fields change in one turn, the label is rebuilt once, after all were written.
    if (std::exchange(isLabelStale_, true)) {
        return;
    }
    environment_.stats.dispatch.async([weak = std::weak_ptr(self_)] {
        if (const auto self = weak.lock()) {
            (*self)->showLabel();
        }
    });
}

void TarnwickApp::showLabel() {
    isLabelStale_ = false;
    const MetricDisplaySummary summary =
        statsManager_.menuBarSummary(environment_.stats.wallClock());
    MenuBarLabel label = menuBarLabel(summary, environment_.settings.menuBarDisplayModeRawValue());
    statusItem_.setContent({std::move(label.symbol), label.tint, std::move(label.text),
                            std::move(label.accessibilityLabel)});
}

}  // namespace tarnwick
