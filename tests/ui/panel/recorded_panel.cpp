// SPDX-License-Identifier: MIT
#include "tests/ui/panel/recorded_panel.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "core/stats_manager.h"
#include "platform/byte_count_text.h"
#include "platform/linux/graphics/linux_accelerators.h"
#include "platform/linux/kernel/linux_kernel.h"
#include "platform/linux/network/linux_network_interfaces.h"
#include "platform/linux/power/linux_power_sources.h"
#include "platform/linux/power/linux_process_info.h"
#include "platform/linux/processes/linux_process_table.h"
#include "platform/linux/volumes/linux_volumes.h"
#include "platform/testing/manual_dispatch.h"
#include "platform/testing/memory_user_defaults.h"
#include "platform/testing/scripted_login_service.h"
#include "services/battery_service.h"
#include "services/cpu_service.h"
#include "services/gpu_service.h"
#include "services/memory_service.h"
#include "services/network_service.h"
#include "services/power_source_reader.h"
#include "services/process_service.h"
#include "services/storage_service.h"
#include "services/system_uptime.h"
#include "tests/platform/linux/machine_tree.h"
#include "ui/panel/menu_bar_view.h"

namespace tarnwick::testing {
namespace {

using Fields = std::vector<std::string>;

/// Ticks a second in the kernel's files.
constexpr double kTicks = 100;

std::string wholeFile(const std::string& path) {
    std::ifstream file(path);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

Fields split(const std::string& line) {
    std::istringstream words(line);
    return {std::istream_iterator<std::string>(words), std::istream_iterator<std::string>()};
}

std::string joined(const Fields& fields) {
    std::string line;
    for (const std::string& field : fields) {
        line += (line.empty() ? "" : " ") + field;
    }
    return line;
}

void add(std::string& number, double ticks) {
    number = std::to_string(std::stoull(number) + static_cast<std::uint64_t>(std::llround(ticks)));
}

/// `proc/stat` after this many seconds, with every processor busy for the share `busy` of them.
std::string statAfter(const std::string& stat, double seconds, double busy) {
    std::istringstream lines(stat);
    std::string result;
    for (std::string line; std::getline(lines, line);) {
        Fields fields = split(line);
        // The first line, with the sums, is never read. A damaged line stays as it is.
        if (line.rfind("cpu", 0) == 0 && line.rfind("cpu ", 0) != 0 && fields.size() > 4) {
            add(fields[1], seconds * kTicks * busy);
            add(fields[4], seconds * kTicks * (1 - busy));
            line = joined(fields);
        }
        result += line + '\n';
    }
    return result;
}

/// `proc/PID/stat` after this many seconds of processor time.
std::string processAfter(const std::string& stat, double processorSeconds) {
    const std::size_t command = stat.rfind(')') + 1;
    Fields fields = split(stat.substr(command));
    add(fields.at(11), processorSeconds * kTicks);
    return stat.substr(0, command) + ' ' + joined(fields) + '\n';
}

/// The home folder of the one user that a recorded machine has.
std::string homeFolder(const std::string& root) {
    for (const auto& entry : std::filesystem::directory_iterator(root + "/home")) {
        return "/home/" + entry.path().filename().string();
    }
    return "/";
}

/// Where the machine keeps its applications. Independent of the session that runs the test.
platform::ApplicationSources applications(const std::string& root) {
    return {.dataFolders = {homeFolder(root) + "/.local/share", "/usr/share",
                            "/var/lib/flatpak/exports/share", "/var/lib/snapd/desktop"},
            .localeSuffixes = {}};
}

constexpr std::int64_t kDisk = 494'380'000'000;
constexpr std::int64_t kHalfOfIt = 267'120'000'000;
constexpr std::int64_t kMostOfIt = 481'750'000'000;

/// The volume under its recorded name. Its used space cannot be recorded, because no file contains
/// it.
StorageInfo withUsedSpace(StorageInfo volume, std::int64_t usedSpace) {
    volume.totalSpace = kDisk;
    volume.usedSpace = usedSpace;
    volume.availableSpace = volume.totalSpace - volume.usedSpace;
    return volume;
}

/// `proc/meminfo` with a twentieth of what was free or could be freed.
std::string meminfoWhenFull(const std::string& meminfo) {
    constexpr std::array<std::string_view, 7> scarce = {
        "MemFree:", "MemAvailable:", "Buffers:", "Cached:", "SReclaimable:", "Shmem:", "SwapFree:"};
    std::istringstream lines(meminfo);
    std::string result;
    for (std::string line; std::getline(lines, line);) {
        Fields fields = split(line);
        if (fields.size() > 1 && std::ranges::find(scarce, fields[0]) != scarce.end()) {
            fields[1] = std::to_string(std::stoull(fields[1]) / 20);
            line = joined(fields);
        }
        result += line + '\n';
    }
    return result;
}

/// The recorded kernel with a clock that is turned.
class TurnedKernel final : public platform::Kernel {
 public:
    TurnedKernel(platform::Kernel& kernel, const platform::Dispatch& clock)
        : kernel_(kernel), clock_(clock) {}

    std::optional<std::int32_t> logicalCPUCount() override { return kernel_.logicalCPUCount(); }
    std::optional<std::uint64_t> memorySize() override { return kernel_.memorySize(); }
    std::optional<platform::SwapUsage> swapUsage() override { return kernel_.swapUsage(); }
    platform::HostProcessorInfo hostProcessorInfo() override { return kernel_.hostProcessorInfo(); }
    platform::HostStatistics hostStatistics64() override { return kernel_.hostStatistics64(); }
    std::optional<platform::TimeValue> bootTime() override { return kernel_.bootTime(); }
    std::uint64_t pageSize() override { return kernel_.pageSize(); }
    double monotonicSeconds() override { return clock_.now(); }
    double wallClockSeconds() override { return kernel_.wallClockSeconds(); }

 private:
    platform::Kernel& kernel_;
    const platform::Dispatch& clock_;
};

}  // namespace

struct RecordedPanel::Machine {
    explicit Machine(std::string_view name) : tree(name) {}

    platform::testing::MachineTree tree;
    platform::testing::ManualDispatch dispatch;
    platform::LinuxKernel files{tree.root(), [this] { return dispatch.now(); }};
    TurnedKernel kernel{files, dispatch};
    platform::LinuxVolumes volumes{tree.root(), homeFolder(tree.root())};
    platform::LinuxAccelerators accelerators{tree.root()};
    platform::LinuxProcessInfo processInfo{tree.root()};
    platform::LinuxNetworkInterfaces networkInterfaces{tree.root()};
    platform::LinuxPowerSources powerSources{tree.root()};
    platform::LinuxProcessTable processTable{tree.root(), applications(tree.root())};
    platform::PlainByteCountFormatter formatter;
    platform::testing::MemoryUserDefaults store;
    platform::testing::ScriptedLoginService loginService;
    UserSettings settings{store, loginService};
    std::int64_t usedSpace = kHalfOfIt;

    CPUService cpu{kernel};
    GPUService gpu{accelerators};
    MemoryService memory{kernel};
    NetworkService network{networkInterfaces, kernel};
    ProcessService processes{processTable, kernel};
    StorageService storage{volumes};
    std::shared_ptr<BatteryService> battery = std::make_shared<BatteryService>(
        store, [this] { return powerSources.readHealth(); },
        [this] { return readPowerSources(powerSources); },
        [this] { return platform::Date{kernel.wallClockSeconds()}; },
        [this] { return dispatch.now(); });

    StatsManager manager{
        &settings,
        battery,
        30,
        120,
        {dispatch,
         {.readCPUInfo = [this] { return cpu.readCPUInfo(); },
          .readGPUInfo = [this] { return gpu.readGPUInfo(); },
          .readMemoryInfo = [this] { return memory.readMemoryInfo(); },
          .readNetworkInfo = [this] { return network.readNetworkInfo(); },
          .readTopProcesses = [this](int limit) { return processes.readTopProcesses(limit); },
          .pruneStaleProcesses = [this] { processes.pruneStaleProcesses(); },
          .releaseProcessCaches = [this] { processes.releaseCaches(); },
          .readStorageInfo = [this] { return withUsedSpace(storage.readStorageInfo(), usedSpace); },
          .readThermalState = [this] { return processInfo.thermalState(); },
          .readUptime = [this] { return readUptime(kernel); }},
         [this] { return kernel.wallClockSeconds(); },
         platform::Logger()}};
    MenuBarView view{manager,
                     {.showSettings = [] {}, .openActivityMonitor = [] {}, .quit = [] {}},
                     {dispatch, formatter}};
};

RecordedPanel::RecordedPanel(std::string_view machine)
    : machine_(std::make_unique<Machine>(machine)) {
    machine_->view.appear();
    machine_->dispatch.runMain();
}

RecordedPanel::~RecordedPanel() = default;

void RecordedPanel::work(double busy, const std::map<int, double>& shares) {
    const double seconds = StatsManager::kFastVisibleInterval;
    const auto rewrite = [this](const std::string& path, const auto& after) {
        machine_->tree.write(path, after(wholeFile(machine_->tree.root() + '/' + path)));
    };
    rewrite("proc/stat", [&](const std::string& stat) { return statAfter(stat, seconds, busy); });
    const double processors = machine_->files.logicalCPUCount().value_or(1);
    for (const auto& [pid, share] : shares) {
        rewrite("proc/" + std::to_string(pid) + "/stat", [&](const std::string& stat) {
            return processAfter(stat, share * processors * seconds);
        });
    }
    // As if the timer were punctual: so the figures in the files and the clock agree.
    machine_->dispatch.sleep(seconds);
    machine_->manager.refreshFast();
    machine_->dispatch.runMain();
}

void RecordedPanel::fill() {
    const std::string path = "proc/meminfo";
    machine_->tree.write(path, meminfoWhenFull(wholeFile(machine_->tree.root() + '/' + path)));
    machine_->usedSpace = kMostOfIt;
    machine_->manager.refreshNow();
    machine_->dispatch.runMain();
}

void RecordedPanel::refresh() {
    machine_->dispatch.sleep(StatsManager::kFastVisibleInterval);
    machine_->manager.refreshNow();
    machine_->dispatch.runMain();
    machine_->store.clearWrites();
}

void RecordedPanel::close() {
    machine_->view.disappear();
    machine_->dispatch.runMain();
}

void RecordedPanel::open() {
    machine_->view.appear();
    machine_->dispatch.runMain();
}

const std::string& RecordedPanel::root() const {
    return machine_->tree.root();
}

void RecordedPanel::show(MenuTab tab) {
    if (tab == MenuTab::home) {
        machine_->view.perform(PanelAction::goBack);
    } else {
        machine_->view.perform(tab == MenuTab::memoryDetail ? PanelAction::showMemoryDetail
                                                            : PanelAction::showPerformanceDetail);
    }
}

Page RecordedPanel::page() const {
    return machine_->view.page();
}

}  // namespace tarnwick::testing
