// SPDX-License-Identifier: MIT
#include "benchmarks/turned_panel.h"

#include <QApplication>
#include <QEvent>
#include <QWidget>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

#include "core/stats_manager.h"
#include "platform/byte_count_text.h"
#include "platform/testing/manual_dispatch.h"
#include "platform/testing/memory_user_defaults.h"
#include "platform/testing/scripted_login_service.h"
#include "ui/panel/motion.h"
#include "ui/qt/panel_window.h"

namespace tarnwick::benchmarks {
namespace {

constexpr std::int64_t kGB = 1'000'000'000;
constexpr QRect kAnchor(300, 2, 22, 22);
/// An upper limit: far more turns of the event loop than any operation needs.
constexpr int kMostTurns = 1000;
/// Turns of the event loop from a widget's request to be painted until it is painted.
constexpr int kTurnsOfAFrame = 3;
/// Seconds.
constexpr double kSlowInterval = 30;
constexpr double kBatteryInterval = 120;
/// Longer than any timer waits.
constexpr double kLongestInterval = 2 * kBatteryInterval;

class FixedBattery final : public BatteryReader {
 public:
    BatteryInfo currentBatteryInfo(bool) override { return battery(); }
    BatteryInfo batteryInfoWithHealth(bool) override { return battery(); }

 private:
    static BatteryInfo battery() {
        BatteryInfo info;
        info.hasBattery = true;
        info.percentage = 80;
        info.health = 93;
        info.healthSource = BatteryHealthSource::systemProfiler;
        info.cycleCount = 120;
        info.healthCondition = "Normal";
        return info;
    }
};

/// Produces figures that differ from one refresh to the next.
class Figures {
 public:
    void turn() { ++round_; }
    /// A value that goes up and down between two bounds.
    double between(double least, double most) const {
        constexpr unsigned period = 17;
        return least + (most - least) * (round_ * 7 % period) / (period - 1);
    }
    std::uint64_t bytes(double least, double most) const {
        return static_cast<std::uint64_t>(between(least, most) * static_cast<double>(kGB));
    }

 private:
    unsigned round_ = 0;
};

}  // namespace

struct TurnedPanel::Machine {
    Figures figures;
    platform::testing::ManualDispatch dispatch;
    platform::testing::MemoryUserDefaults store;
    platform::testing::ScriptedLoginService loginService;
    platform::PlainByteCountFormatter formatter;
    UserSettings settings{store, loginService};
    StatsManager manager{
        &settings,
        std::make_shared<FixedBattery>(),
        kSlowInterval,
        kBatteryInterval,
        {dispatch, sources(), [this] { return dispatch.now(); }, platform::Logger()}};
    qt::Theme theme;
    MenuBarView view{manager,
                     {.showSettings = [] {}, .openActivityMonitor = [] {}, .quit = [] {}},
                     {dispatch, formatter}};
    qt::PanelWindow window{view, theme, dispatch};

    MetricSources sources();
    TopProcessLists processes() const;
};

TopProcessLists TurnedPanel::Machine::processes() const {
    TopProcessLists lists;
    for (int row = 0; row < StatsManager::kTopProcessLimit; ++row) {
        const AppProcessInfo process{.id = row + 1,
                                     .name = "Application number " + std::to_string(row + 1),
                                     .cpuUsage = figures.between(10, 90) / (row + 1),
                                     .memoryUsage = figures.bytes(1, 2)};
        lists.cpu.push_back(process);
        lists.memory.push_back(process);
    }
    return lists;
}

MetricSources TurnedPanel::Machine::sources() {
    return {.readCPUInfo =
                [this] {
                    figures.turn();
                    CPUInfo cpu;
                    cpu.usagePercentage = figures.between(90, 99);
                    cpu.coreCount = 8;
                    return cpu;
                },
            .readGPUInfo =
                [this] {
                    GPUInfo gpu;
                    gpu.isAvailable = true;
                    gpu.usagePercentage = figures.between(5, 95);
                    gpu.rendererUtilizationPercentage = figures.between(5, 90);
                    gpu.tilerUtilizationPercentage = figures.between(5, 80);
                    return gpu;
                },
            .readMemoryInfo =
                [this] {
                    return MemoryInfo{.total = 32 * kGB,
                                      .used = figures.bytes(4, 30),
                                      .free = figures.bytes(1, 2),
                                      .app = figures.bytes(2, 9),
                                      .wired = figures.bytes(2, 8),
                                      .compressed = figures.bytes(0.1, 5),
                                      .cached = figures.bytes(1, 5),
                                      .swapUsed = figures.bytes(0.1, 1),
                                      .swapTotal = 2 * kGB};
                },
            .readNetworkInfo =
                [this] {
                    return NetworkInfo{.downloadBytesPerSecond = figures.between(1e3, 9e6),
                                       .uploadBytesPerSecond = figures.between(1e3, 2e6),
                                       .hasSample = true};
                },
            .readTopProcesses = [this](int) { return processes(); },
            .pruneStaleProcesses = [] {},
            .releaseProcessCaches = [] {},
            .readStorageInfo =
                [this] {
                    const auto used = static_cast<std::int64_t>(figures.bytes(100, 480));
                    StorageInfo storage;
                    storage.name = "Disk";
                    storage.totalSpace = 500 * kGB;
                    storage.usedSpace = used;
                    storage.availableSpace = 500 * kGB - used;
                    return storage;
                },
            .readThermalState = [] { return std::int64_t{0}; },
            .readUptime = [this] { return 60 * dispatch.now(); }};
}

TurnedPanel::TurnedPanel() : machine_(std::make_unique<Machine>()) {
    machine_->dispatch.runMain();
    QApplication::instance()->installEventFilter(this);
}

TurnedPanel::~TurnedPanel() {
    close();
}

bool TurnedPanel::eventFilter(QObject* object, QEvent* event) {
    // A window paints its changes when it receives this event.
    isPainted_ = isPainted_ || (event->type() == QEvent::UpdateRequest && object->isWidgetType());
    return false;
}

void TurnedPanel::waitUntilPainted() {
    isPainted_ = false;
    for (int turn = 0; turn < kMostTurns && !isPainted_; ++turn) {
        QApplication::processEvents();
    }
    if (!isPainted_) {
        std::abort();
    }
    // Handles what the painting has queued.
    QApplication::processEvents();
}

void TurnedPanel::open() {
    machine_->window.open(kAnchor);
    machine_->dispatch.runMain();
    waitUntilPainted();
}

void TurnedPanel::close() {
    machine_->window.close();
    machine_->dispatch.runMain();
    QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QApplication::processEvents();
}

void TurnedPanel::press(PanelAction action) {
    machine_->view.perform(action);
    waitUntilPainted();
}

// Each frame has its own turns of the event loop, as it has for a user.
void TurnedPanel::showFrames() {
    // One frame more than a movement has.
    constexpr int frames = static_cast<int>(Motion::kDuration / Motion::kFrame) + 2;
    for (int frame = 0; frame < frames; ++frame) {
        isPainted_ = false;
        machine_->dispatch.advance(Motion::kFrame);
        for (int turn = 0; turn < kTurnsOfAFrame; ++turn) {
            QApplication::processEvents();
        }
        frames_ += isPainted_ ? 1 : 0;
    }
}

void TurnedPanel::tick() {
    // Every timer is due, and fires once.
    machine_->dispatch.sleep(kLongestInterval);
    machine_->dispatch.advance(0);
    waitUntilPainted();
    showFrames();
}

}  // namespace tarnwick::benchmarks
