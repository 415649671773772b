#include "ui/panel/home_page.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <string>
#include <utility>

#include "core/text.h"
#include "evaluation/battery_condition.h"
#include "evaluation/metric_severity.h"
#include "services/system_uptime.h"

namespace tarnwick {

namespace {

/// Seconds after which a restart is recommended: seven days.
constexpr double kRestartReminderUptime = 604800;
/// Bytes available at which storage counts as low: 20 × 1024³.
constexpr std::int64_t kLowStorageBytes = 21474836480;
/// The same as a share of the volume, percent.
constexpr double kLowStoragePercentage = 10;

constexpr const char* kDriveSymbol = "internaldrive";
constexpr const char* kUnnamedStorageTitle = "Storage (Main Disk)";

double clampedPercentage(double value) {
    // Not std::clamp, which lets -0.0 through.
    return std::isfinite(value) && value > 0 ? std::min(value, 100.0) : 0;
}

Tint levelTint(double value, double normal, double high) {
    return tint(value >= high     ? MetricSeverity::warning
                : value >= normal ? MetricSeverity::info
                                  : MetricSeverity::ok);
}

class HomePageBuilder {
 public:
    HomePageBuilder(const HomePageInputs& inputs, const platform::ByteCountFormatter& formatter)
        : in_(inputs), formatter_(formatter) {}

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
        return std::move(page_);
    }

 private:
    void add(std::string id, int spaceAbove, PanelBlock block) {
        page_.push_back({std::move(id), page_.empty() ? 0 : spaceAbove, std::move(block)});
    }

    PanelButton button(std::string title, PanelAction action, std::string icon = {}) const {
        return {std::move(title), std::move(icon), action, in_.enabledActions.contains(action)};
    }

    std::string fileText(std::int64_t bytes) const {
        return formatter_.stringFromByteCount(std::max<std::int64_t>(bytes, 0),
                                              platform::CountStyle::file);
    }

    std::string memoryText(std::uint64_t bytes) const {
        constexpr std::uint64_t most = std::numeric_limits<std::int64_t>::max();
        return formatter_.stringFromByteCount(static_cast<std::int64_t>(std::min(bytes, most)),
                                              platform::CountStyle::memory);
    }

    void addHeader() {
        add("header", 0,
            PanelHeader{"Tarnwick",
                        {button("Settings", PanelAction::showSettings, "gearshape"),
                         button("Refresh", PanelAction::refresh, "arrow.clockwise")},
                        in_.displaySummary.popoverText});
    }

    void addStatusRows() {
        const double uptime = in_.systemInfo.uptime;
        add("uptime", kBlockSpacing,
            StatusRow{"Uptime", "clock", uptime > 0 ? uptimeText(uptime) : "Loading...", false});
        add("thermals", kRowSpacing,
            StatusRow{"Thermals", "thermometer", thermalStateWord(), true});
        if (in_.remindRestartAfterWeek && uptime >= kRestartReminderUptime) {
            add("restart", kRowSpacing,
                NoticeRow{"arrow.clockwise.circle.fill", Tint::orange,
                          "Restart recommended (over 7 days)"});
        }
    }

    std::string thermalStateWord() const {
        switch (in_.thermalState) {
            case 0:
                return "Nominal";
            case 1:
                return "Fair";
            case 2:
                return "Serious";
            case 3:
                return "Critical";
            default:
                return "Unknown";
        }
    }

    void addProcessorBars() {
        const MetricThresholds& thresholds = in_.thresholds;
        addPercentageBar("bar.cpu", kBlockSpacing, "CPU", "cpu", in_.cpuInfo.usagePercentage,
                         thresholds.cpuNormal, thresholds.cpuHigh);
        if (in_.gpuInfo.isAvailable) {
            addPercentageBar("bar.gpu", kBarSpacing, "GPU", "display.2",
                             in_.gpuInfo.usagePercentage, thresholds.gpuNormal, thresholds.gpuHigh);
        }
    }

    void addPercentageBar(std::string id, int spaceAbove, std::string title, std::string icon,
                          double usage, double normal, double high) {
        const double value = clampedPercentage(usage);
        add(std::move(id), spaceAbove,
            UsageBar{std::move(title), std::move(icon), value, percentText(value, 1),
                     levelTint(usage, normal, high)});
    }

    void addMemoryBar() {
        const MemoryInfo& memory = in_.memoryInfo;
        const double usage = memory.usagePercentage();
        add("bar.memory", kBarSpacing,
            UsageBar{"Memory", "memorychip", usage,
                     memoryText(memory.used) + " / " + memoryText(memory.total) + " (" +
                         percentText(usage, 0) + ")",
                     levelTint(usage, in_.thresholds.memoryNormal, in_.thresholds.memoryHigh)});
    }

    void addStorage() {
        if (in_.storageInfo.empty()) {
            add("bar.storage", kBarSpacing,
                UsageBar{kUnnamedStorageTitle, kDriveSymbol, 0, "Loading...", Tint::gray});
            return;
        }
        const StorageInfo& volume = in_.storageInfo.front();
        const double usage = volume.usagePercentage();
        add("bar.storage", kBarSpacing,
            UsageBar{"Storage (" + volume.name + ")", kDriveSymbol, usage,
                     fileText(volume.usedSpace) + " / " + fileText(volume.totalSpace),
                     levelTint(usage, in_.thresholds.storageNormal, in_.thresholds.storageHigh)});
        if (isLow(volume)) {
            add("lowStorage", kRowSpacing,
                NoticeRow{"exclamationmark.triangle.fill", Tint::orange,
                          "Low storage: " + fileText(volume.availableSpace) + " free"});
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
        add("battery", kBatterySpacing, SectionHeader{"Battery Health", "battery.100"});
        if (!in_.batteryDetectionComplete) {
            add("battery.state", kRowSpacing, CaptionText{"Checking battery\u2026"});
            return;
        }
        if (!battery.hasBattery) {
            add("battery.state", kRowSpacing, CaptionText{"Battery data not available"});
            return;
        }
        add("battery.capacity", kRowSpacing, InfoRow{"Max Capacity", healthText(battery)});
        if (battery.cycleCount) {
            add("battery.cycles", kRowSpacing,
                InfoRow{"Cycles", std::to_string(*battery.cycleCount)});
        }
        if (!trimmed(battery.healthCondition).empty()) {
            add("battery.condition", kRowSpacing,
                InfoRow{"Condition", batteryConditionDisplayText(battery.healthCondition)});
        }
    }

    /// Only the system's own hardware report is trusted with a figure.
    static std::string healthText(const BatteryInfo& battery) {
        return battery.health && battery.healthSource == BatteryHealthSource::systemProfiler
                   ? std::to_string(*battery.health) + "%"
                   : "Unknown";
    }

    void addNavigation() {
        add("navigation.memory", kBlockSpacing,
            NavigationButton{button("What's Using Memory?", PanelAction::showMemoryDetail)});
        add("navigation.performance", kRowSpacing,
            NavigationButton{button("Performance & Network", PanelAction::showPerformanceDetail)});
    }

    void addTopCPUApps() {
        if (in_.thresholds.cpuHigh <= in_.cpuInfo.usagePercentage) {
            add("topCPU", kBlockSpacing,
                TopAppsSection{"Top CPU Apps", in_.topCPUProcesses,
                               [](const AppProcessInfo& process) {
                                   return percentText(process.cpuUsage, 1);
                               }});
        }
    }

    void addFooter() {
        add("divider", kBlockSpacing, PanelDivider{});
        add("footer", kBlockSpacing,
            FooterRow{{button("Activity Monitor", PanelAction::openActivityMonitor),
                       button("Quit", PanelAction::quit)}});
    }

    const HomePageInputs& in_;
    const platform::ByteCountFormatter& formatter_;
    Page page_;
};

}  // namespace

Page homePage(const HomePageInputs& inputs, const platform::ByteCountFormatter& formatter) {
    return HomePageBuilder(inputs, formatter).build();
}

}  // namespace tarnwick
