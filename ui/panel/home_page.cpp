// SPDX-License-Identifier: MIT
#include "ui/panel/home_page.h"

#include <string>
#include <utility>

#include "core/records/percentage.h"
#include "core/records/text.h"
#include "evaluation/battery_condition.h"
#include "services/system_uptime.h"
#include "ui/panel/page_builder.h"
#include "ui/panel/panel_figures.h"
#include "ui/panel/tool_tips.h"

namespace tarnwick {

namespace {

/// Seconds after which a restart is recommended: seven days.
constexpr double kRestartReminderUptime = 604800;
/// Storage counts as low at or below this many available bytes: 20 × 1024³.
constexpr std::int64_t kLowStorageBytes = 21474836480;
/// It also counts as low at or below this available share of the volume, percent.
constexpr double kLowStoragePercentage = 10;

constexpr const char* kDriveSymbol = "internaldrive";
constexpr const char* kUnnamedStorageTitle = "Storage (Main Disk)";

class HomePageBuilder {
 public:
    HomePageBuilder(const HomePageInputs& inputs, const platform::ByteCountFormatter& formatter)
        : in_(inputs), formatter_(formatter), page_(inputs.enabledActions) {}

    Page build() && {
        addHeader();
        addStatusRows();
        addProcessorBars();
        addMemoryBar();
        addStorage();
        addBattery();
        addNavigation();
        addTopCPUApps();
        addFooter();
        return page_.take();
    }

 private:
    void addHeader() {
        page_.add("header", 0,
                  PanelHeader{"Tarnwick",
                              {page_.button("Settings", PanelAction::showSettings, "gearshape"),
                               page_.button("Refresh", PanelAction::refresh, "arrow.clockwise")},
                              in_.displaySummary.popoverText});
    }

    void addStatusRows() {
        const double uptime = in_.systemInfo.uptime;
        page_.add(
            "uptime", kBlockSpacing,
            StatusRow{"Uptime", "clock", uptime > 0 ? uptimeText(uptime) : "Loading...", false});
        page_.add("thermals", kRowSpacing,
                  StatusRow{"Thermals", "thermometer", thermalStateWord(in_.thermalState), true});
        if (in_.remindRestartAfterWeek && uptime >= kRestartReminderUptime) {
            page_.add("restart", kRowSpacing,
                      NoticeRow{"arrow.clockwise.circle.fill", Tint::orange,
                                "Restart recommended (over 7 days)"});
        }
    }

    void addProcessorBars() {
        addPercentageBar("bar.cpu", kBlockSpacing, "CPU", "cpu", in_.cpuInfo.usagePercentage,
                         cpuTint(in_.cpuInfo, in_.thresholds), cpuToolTip(in_.cpuInfo));
        if (in_.gpuInfo.isAvailable) {
            addPercentageBar("bar.gpu", kBarSpacing, "GPU", "display.2",
                             in_.gpuInfo.usagePercentage, gpuTint(in_.gpuInfo, in_.thresholds), {});
        }
    }

    void addPercentageBar(std::string id, int spaceAbove, std::string title, std::string icon,
                          double usage, Tint tint, std::string toolTip) {
        const double value = clampedPercentage(usage);
        page_.add(std::move(id), spaceAbove,
                  UsageBar{std::move(title), std::move(icon), value, percentText(value, 1), tint},
                  std::move(toolTip));
    }

    void addMemoryBar() {
        const MemoryInfo& memory = in_.memoryInfo;
        const double usage = memory.usagePercentage();
        page_.add(
            "bar.memory", kBarSpacing,
            UsageBar{"Memory", "memorychip", usage,
                     memoryText(memory.used, formatter_) + " / " +
                         memoryText(memory.total, formatter_) + " (" + percentText(usage, 0) + ")",
                     memoryTint(memory, in_.thresholds)},
            memoryToolTip(memory, formatter_));
    }

    void addStorage() {
        if (in_.storageInfo.empty()) {
            page_.add("bar.storage", kBarSpacing,
                      UsageBar{kUnnamedStorageTitle, kDriveSymbol, 0, "Loading...", Tint::gray});
            return;
        }
        const StorageInfo& volume = in_.storageInfo.front();
        const double usage = volume.usagePercentage();
        page_.add("bar.storage", kBarSpacing,
                  UsageBar{"Storage (" + volume.name + ")", kDriveSymbol, usage,
                           fileText(volume.usedSpace, formatter_) + " / " +
                               fileText(volume.totalSpace, formatter_),
                           storageTint(usage, in_.thresholds)},
                  storageToolTip(volume, formatter_));
        if (isLow(volume)) {
            page_.add(
                "lowStorage", kRowSpacing,
                NoticeRow{"exclamationmark.triangle.fill", Tint::orange,
                          "Low storage: " + fileText(volume.availableSpace, formatter_) + " free"});
        }
    }

    static bool isLow(const StorageInfo& volume) {
        return volume.totalSpace >= 1 && (volume.availableSpace <= kLowStorageBytes ||
                                          static_cast<double>(volume.availableSpace) /
                                                  static_cast<double>(volume.totalSpace) * 100 <=
                                              kLowStoragePercentage);
    }

    void addBattery() {
        const BatteryInfo& battery = in_.batteryInfo;
        const std::string toolTip = in_.batteryDetectionComplete ? batteryToolTip(battery) : "";
        page_.add("battery", kBatterySpacing, SectionHeader{"Battery Health", "battery.100"},
                  toolTip);
        if (!in_.batteryDetectionComplete) {
            page_.add("battery.state", kRowSpacing, CaptionText{"Checking battery\u2026"});
            return;
        }
        if (!battery.hasBattery) {
            page_.add("battery.state", kRowSpacing, CaptionText{"Battery data not available"});
            return;
        }
        page_.add("battery.capacity", kRowSpacing, InfoRow{"Max Capacity", healthText(battery)});
        if (battery.cycleCount) {
            page_.add("battery.cycles", kRowSpacing,
                      InfoRow{"Cycles", std::to_string(*battery.cycleCount)});
        }
        if (!trimmed(battery.healthCondition).empty()) {
            page_.add("battery.condition", kRowSpacing,
                      InfoRow{"Condition", batteryConditionDisplayText(battery.healthCondition)});
        }
    }

    /// The health as a figure only if the system's own hardware report gave it; other sources are
    /// not trusted with one.
    static std::string healthText(const BatteryInfo& battery) {
        return battery.health && battery.healthSource == BatteryHealthSource::systemProfiler
                   ? std::to_string(*battery.health) + "%"
                   : "Unknown";
    }

    void addNavigation() {
        page_.add(
            "navigation.memory", kBlockSpacing,
            NavigationButton{page_.button("What's Using Memory?", PanelAction::showMemoryDetail)});
        page_.add("navigation.performance", kRowSpacing,
                  NavigationButton{
                      page_.button("Performance & Network", PanelAction::showPerformanceDetail)});
    }

    void addTopCPUApps() {
        if (in_.thresholds.cpuHigh <= in_.cpuInfo.usagePercentage) {
            page_.add("topCPU", kBlockSpacing,
                      TopAppsSection{"Top CPU Apps", in_.topCPUProcesses,
                                     [](const AppProcessInfo& process) {
                                         return percentText(process.cpuUsage, 1);
                                     }});
        }
    }

    void addFooter() {
        page_.addDivider("divider");
        page_.add("footer", kBlockSpacing,
                  FooterRow{{page_.button("Activity Monitor", PanelAction::openActivityMonitor),
                             page_.button("Quit", PanelAction::quit)}});
    }

    const HomePageInputs& in_;
    const platform::ByteCountFormatter& formatter_;
    PageBuilder page_;
};

}  // namespace

Page homePage(const HomePageInputs& inputs, const platform::ByteCountFormatter& formatter) {
    return HomePageBuilder(inputs, formatter).build();
}

}  // namespace tarnwick
