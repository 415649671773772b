// SPDX-License-Identifier: MIT
#include "ui/panel/menu_bar_view.h"

#include <array>
#include <utility>

#include "platform/platform.h"
#include "settings/user_settings.h"
#include "ui/panel/copied_text.h"

namespace tarnwick {

namespace {

constexpr std::array kActions = {PanelAction::refresh,
                                 PanelAction::showSettings,
                                 PanelAction::openActivityMonitor,
                                 PanelAction::quit,
                                 PanelAction::showMemoryDetail,
                                 PanelAction::showPerformanceDetail,
                                 PanelAction::goBack,
                                 PanelAction::copy};

}  // namespace

MenuBarViewEnvironment MenuBarViewEnvironment::shared() {
    const platform::Platform& platform = platform::current();
    return {*platform.dispatch, *platform.byteCountFormatter};
}

MenuBarView::MenuBarView(StatsManager& statsManager, PanelTargets targets,
                         MenuBarViewEnvironment environment)
    : statsManager_(statsManager), targets_(std::move(targets)), environment_(environment) {}

const Page& MenuBarView::appear() {
    if (isVisible_) {
        return lastPage_;
    }
    isVisible_ = true;
    // Forgets presses that came while the panel was not visible.
    activeTab_ = MenuTab::home;
    lastDetail_ = MenuTab::home;
    statsSubscription_ = statsManager_.objectWillChange([this] { nextRebuild_.schedule(); });
    settingsSubscription_ =
        statsManager_.settings().objectWillChange([this] { nextRebuild_.schedule(); });
    statsManager_.popoverDidAppear();
    lastPage_ = page();
    return lastPage_;
}

void MenuBarView::disappear() {
    if (!isVisible_) {
        return;
    }
    isVisible_ = false;
    statsSubscription_.cancel();
    settingsSubscription_.cancel();
    lastPage_.clear();
    activeTab_ = MenuTab::home;
    lastDetail_ = MenuTab::home;
    statsManager_.popoverDidDisappear();
}

Page MenuBarView::page() const {
    switch (activeTab_) {
        case MenuTab::home:
            break;
        case MenuTab::memoryDetail:
            return memoryDetailPage(memoryDetailInputs(), environment_.byteCountFormatter);
        case MenuTab::performanceDetail:
            return performanceDetailPage(performanceDetailInputs(),
                                         environment_.byteCountFormatter);
    }
    return homePage(homePageInputs(), environment_.byteCountFormatter);
}

HomePageInputs MenuBarView::homePageInputs() const {
    return {.displaySummary = statsManager_.displaySummary(),
            .systemInfo = *statsManager_.systemInfo,
            .thermalState = *statsManager_.thermalState,
            .cpuInfo = *statsManager_.cpuInfo,
            .gpuInfo = *statsManager_.gpuInfo,
            .memoryInfo = *statsManager_.memoryInfo,
            .storageInfo = *statsManager_.storageInfo,
            .batteryInfo = *statsManager_.batteryInfo,
            .batteryDetectionComplete = *statsManager_.batteryDetectionComplete,
            .topCPUProcesses = *statsManager_.topCPUProcesses,
            .thresholds = statsManager_.settings().thresholds(),
            .remindRestartAfterWeek = statsManager_.settings().remindRestartAfterWeek(),
            .enabledActions = enabledActions()};
}

MemoryDetailInputs MenuBarView::memoryDetailInputs() const {
    return {.memoryInfo = *statsManager_.memoryInfo,
            .topMemoryProcesses = *statsManager_.topMemoryProcesses,
            .enabledActions = enabledActions()};
}

PerformanceDetailInputs MenuBarView::performanceDetailInputs() const {
    return {.cpuInfo = *statsManager_.cpuInfo,
            .gpuInfo = *statsManager_.gpuInfo,
            .memoryInfo = *statsManager_.memoryInfo,
            .storageInfo = *statsManager_.storageInfo,
            .networkInfo = *statsManager_.networkInfo,
            .cpuUsageHistory = *statsManager_.cpuUsageHistory,
            .gpuUsageHistory = *statsManager_.gpuUsageHistory,
            .memoryUsageHistory = *statsManager_.memoryUsageHistory,
            .storageUsageHistory = *statsManager_.storageUsageHistory,
            .thermalState = *statsManager_.thermalState,
            .thresholds = statsManager_.settings().thresholds(),
            .enabledActions = enabledActions()};
}

std::set<PanelAction> MenuBarView::enabledActions() const {
    std::set<PanelAction> enabled;
    for (const PanelAction action : kActions) {
        if (canPerform(action)) {
            enabled.insert(action);
        }
    }
    return enabled;
}

void MenuBarView::setPageObserver(std::function<void(const Page&)> observer) {
    observer_ = std::move(observer);
}

bool MenuBarView::canPerform(PanelAction action) const {
    switch (action) {
        case PanelAction::showSettings:
            return targets_.showSettings != nullptr;
        case PanelAction::openActivityMonitor:
            return targets_.openActivityMonitor != nullptr;
        case PanelAction::quit:
            return targets_.quit != nullptr;
        case PanelAction::copy:
            return targets_.copyText != nullptr;
        case PanelAction::refresh:
        case PanelAction::showMemoryDetail:
        case PanelAction::showPerformanceDetail:
        case PanelAction::goBack:
            break;
    }
    return true;
}

void MenuBarView::perform(PanelAction action) {
    if (!canPerform(action)) {
        return;
    }
    switch (action) {
        case PanelAction::refresh:
            return statsManager_.refreshNow();
        case PanelAction::showSettings:
            return targets_.showSettings();
        case PanelAction::openActivityMonitor:
            return targets_.openActivityMonitor();
        case PanelAction::quit:
            return targets_.quit();
        case PanelAction::copy:
            return targets_.copyText(copiedText(page()));
        case PanelAction::showMemoryDetail:
            return show(MenuTab::memoryDetail);
        case PanelAction::showPerformanceDetail:
            return show(MenuTab::performanceDetail);
        case PanelAction::goBack:
            return show(MenuTab::home);
    }
}

bool MenuBarView::cancel() {
    if (activeTab_ == MenuTab::home) {
        return false;
    }
    perform(PanelAction::goBack);
    return true;
}

std::optional<PanelAction> MenuBarView::entryAction() const {
    if (activeTab_ != MenuTab::home) {
        return PanelAction::goBack;
    }
    switch (lastDetail_) {
        case MenuTab::home:
            break;
        case MenuTab::memoryDetail:
            return PanelAction::showMemoryDetail;
        case MenuTab::performanceDetail:
            return PanelAction::showPerformanceDetail;
    }
    return std::nullopt;
}

void MenuBarView::show(MenuTab tab) {
    activeTab_ = tab;
    if (tab != MenuTab::home) {
        lastDetail_ = tab;
    }
    rebuild();
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
