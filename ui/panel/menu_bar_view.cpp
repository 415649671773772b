#include "ui/panel/menu_bar_view.h"

#include <array>
#include <utility>

#include "platform/platform.h"
#include "settings/user_settings.h"
#include "ui/panel/home_page.h"

namespace tarnwick {

namespace {

constexpr std::array kActions = {
    PanelAction::refresh, PanelAction::showSettings,     PanelAction::openActivityMonitor,
    PanelAction::quit,    PanelAction::showMemoryDetail, PanelAction::showPerformanceDetail};

}  // namespace

MenuBarViewEnvironment MenuBarViewEnvironment::shared() {
    const platform::Platform& platform = platform::current();
    return {*platform.dispatch, *platform.processInfo, *platform.byteCountFormatter};
}

MenuBarView::MenuBarView(StatsManager& statsManager, PanelTargets targets,
                         MenuBarViewEnvironment environment)
    : statsManager_(statsManager), targets_(std::move(targets)), environment_(environment) {}

void MenuBarView::appear() {
    if (isVisible_) {
        return;
    }
    isVisible_ = true;
    lastPage_ = page();
    statsSubscription_ = statsManager_.objectWillChange([this] { scheduleRebuild(); });
    settingsSubscription_ =
        statsManager_.settings().objectWillChange([this] { scheduleRebuild(); });
    statsManager_.popoverDidAppear();
}

void MenuBarView::disappear() {
    if (!isVisible_) {
        return;
    }
    isVisible_ = false;
    statsSubscription_.cancel();
    settingsSubscription_.cancel();
    lastPage_.clear();
    statsManager_.popoverDidDisappear();
}

Page MenuBarView::page() const {
    HomePageInputs inputs;
    inputs.displaySummary = statsManager_.displaySummary();
    inputs.systemInfo = *statsManager_.systemInfo;
    inputs.thermalState = environment_.processInfo.thermalState();
    inputs.cpuInfo = *statsManager_.cpuInfo;
    inputs.gpuInfo = *statsManager_.gpuInfo;
    inputs.memoryInfo = *statsManager_.memoryInfo;
    inputs.storageInfo = *statsManager_.storageInfo;
    inputs.batteryInfo = *statsManager_.batteryInfo;
    inputs.batteryDetectionComplete = *statsManager_.batteryDetectionComplete;
    inputs.topCPUProcesses = *statsManager_.topCPUProcesses;
    inputs.thresholds = statsManager_.settings().thresholds();
    inputs.remindRestartAfterWeek = statsManager_.settings().remindRestartAfterWeek();
    for (const PanelAction action : kActions) {
        if (canPerform(action)) {
            inputs.enabledActions.insert(action);
        }
    }
    return homePage(inputs, environment_.byteCountFormatter);
}

void MenuBarView::setPageObserver(std::function<void(const Page&)> observer) {
    observer_ = std::move(observer);
}

bool MenuBarView::canPerform(PanelAction action) const {
    return target(action) != nullptr;
}

void MenuBarView::perform(PanelAction action) {
    if (const auto run = target(action)) {
        run();
    }
}

std::function<void()> MenuBarView::target(PanelAction action) const {
    switch (action) {
        case PanelAction::refresh:
            return [&manager = statsManager_] { manager.refreshNow(); };
        case PanelAction::showSettings:
            return targets_.showSettings;
        case PanelAction::openActivityMonitor:
            return targets_.openActivityMonitor;
        case PanelAction::quit:
            return targets_.quit;
        case PanelAction::showMemoryDetail:
            return targets_.showMemoryDetail;
        case PanelAction::showPerformanceDetail:
            return targets_.showPerformanceDetail;
    }
    return nullptr;
}

void MenuBarView::scheduleRebuild() {
    if (std::exchange(isRebuildScheduled_, true)) {
        return;
    }
    environment_.dispatch.async([weak = std::weak_ptr(self_)] {
        if (const auto self = weak.lock()) {
            (*self)->isRebuildScheduled_ = false;
            (*self)->rebuild();
        }
    });
}

void MenuBarView::rebuild() {
    if (!isVisible_) {
        return;
    }
    Page next = page();
    if (next == lastPage_) {
        return;
    }
    lastPage_ = std::move(next);
    if (observer_) {
        observer_(lastPage_);
    }
}

}  // namespace tarnwick
