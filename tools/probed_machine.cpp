// SPDX-License-Identifier: MIT
#include "tools/probed_machine.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <variant>
#include <vector>

#include "platform/accelerators.h"
#include "platform/linux/events/background_work.h"
#include "platform/linux/graphics/linux_accelerators.h"
#include "platform/linux/kernel/linux_kernel.h"
#include "platform/linux/network/linux_network_interfaces.h"
#include "platform/linux/power/linux_power_sources.h"
#include "platform/linux/power/linux_process_info.h"
#include "platform/linux/processes/linux_process_table.h"
#include "platform/linux/volumes/linux_volumes.h"
#include "platform/timed_source.h"
#include "platform/user_defaults.h"
#include "platform/workers.h"
#include "services/battery_service.h"
#include "services/cpu_service.h"
#include "services/gpu_candidate.h"
#include "services/gpu_service.h"
#include "services/memory_service.h"
#include "services/network_service.h"
#include "services/power_source_reader.h"
#include "services/process_service.h"
#include "services/storage_service.h"
#include "services/system_uptime.h"
#include "tools/recorded_volumes.h"

namespace tarnwick::probe {
namespace {

using platform::TimedSource;

constexpr double kSecondsBetweenVolumes = 10;

/// Keeps the last answer, because one question to the cards serves two records. One thread at a
/// time.
class KeptAccelerators final : public platform::Accelerators {
 public:
    explicit KeptAccelerators(platform::Accelerators& accelerators) : accelerators_(accelerators) {}

    platform::MatchingServices matchingServices() override {
        last_ = accelerators_.matchingServices();
        return last_;
    }
    const std::vector<platform::PropertyDictionary>& last() const { return last_.services; }

 private:
    platform::Accelerators& accelerators_;
    platform::MatchingServices last_;
};

template <class Value>
std::optional<Value> valueOf(const platform::PropertyDictionary& card, std::string_view key) {
    const platform::PropertyValue* found = platform::propertyValue(card, key);
    const auto* value = found ? std::get_if<Value>(found) : nullptr;
    return value ? std::optional(*value) : std::nullopt;
}

GraphicsCardSample cardSample(const platform::PropertyDictionary& card) {
    GraphicsCardSample sample{.id = valueOf<std::string>(card, "card").value_or(""),
                              .model = gpuModelName(platform::propertyValue(card, "model")),
                              .driver = valueOf<std::string>(card, "driver").value_or("")};
    if (const auto asleep = valueOf<std::int64_t>(card, "asleep")) {
        sample.isAsleep = *asleep != 0;
    }
    if (const std::optional<GPUInfo> figures = gpuCandidate(card)) {
        sample.usagePercentage = figures->usagePercentage;
    }
    return sample;
}

std::vector<ApplicationSample> applicationsOf(const std::vector<AppProcessInfo>& processes) {
    std::unordered_map<std::string, ApplicationSample> applications;
    for (const AppProcessInfo& process : processes) {
        ApplicationSample& one = applications[process.name];
        one.cpuUsage += process.cpuUsage;
        one.memoryUsage += process.memoryUsage;
    }
    std::vector<ApplicationSample> result;
    for (auto& [name, application] : applications) {
        application.name = name;
        result.push_back(std::move(application));
    }
    return result;
}

/// Takes away the shares, which no single reading has.
void forgetShares(MachineSample& sample) {
    constexpr double kUnknown = std::numeric_limits<double>::quiet_NaN();
    CPUInfo& cpu = sample.cpu;
    cpu.usagePercentage = cpu.userPercentage = cpu.systemPercentage = cpu.idlePercentage = kUnknown;
    cpu.coreUsages.clear();
    sample.topCPUProcesses.clear();
    for (AppProcessInfo& process : sample.topMemoryProcesses) {
        process.cpuUsage = kUnknown;
    }
    for (ApplicationSample& application : sample.applications) {
        application.cpuUsage = kUnknown;
    }
}

bool showsApplications(Format format) {
    return format == Format::prometheus || format == Format::openMetrics;
}

/// An empty store: the probe reads no stored values and leaves nothing behind.
class NoUserDefaults final : public platform::UserDefaults {
 public:
    std::optional<platform::DefaultsValue> object(std::string_view) override {
        return std::nullopt;
    }
    void set(std::string_view, const platform::DefaultsValue&) override {}
};

}  // namespace

struct ProbedMachine::Samplers {
    explicit Samplers(const Options& options)
        : kernel(options.root),
          volumes(options.root, options.home),
          accelerators(options.root, workers),
          processInfo(options.root),
          networkInterfaces(options.root),
          powerSources(options.root),
          processTable(options.root),
          storage(options.root == "/" ? static_cast<platform::Volumes&>(volumes)
                                      : recordedVolumes) {}

    // Somebody waits for the sample, on a busy machine most of all.
    std::optional<platform::BackgroundWork> threads{std::in_place,
                                                    platform::BackgroundWork::Priority::inherited};
    platform::ThreadWorkers workers{[this](auto work) { return threads->run(std::move(work)); }};
    platform::LinuxKernel kernel;
    platform::LinuxVolumes volumes;
    RecordedVolumes recordedVolumes{volumes};
    platform::LinuxAccelerators accelerators;
    platform::LinuxProcessInfo processInfo;
    platform::LinuxNetworkInterfaces networkInterfaces;
    platform::LinuxPowerSources powerSources;
    platform::LinuxProcessTable processTable;
    NoUserDefaults userDefaults;

    CPUService cpu{kernel};
    KeptAccelerators cards{accelerators};
    GPUService gpu{cards};
    MemoryService memory{kernel};
    NetworkService network{networkInterfaces, kernel};
    ProcessService processes{processTable, kernel};
    StorageService storage;
    BatteryService battery{
        userDefaults,
        [this] {
            return health.read([this] { return powerSources.readHealth(); }).value_or(std::nullopt);
        },
        [this] { return readBattery(); },
        [this] { return platform::Date{kernel.wallClockSeconds()}; },
        [this] { return kernel.monotonicSeconds(); },
        [this] { return names.read([this] { return powerSources.identity(); }).value_or(""); }};

    // The sources that may hang.
    TimedSource<StorageInfo> volume{workers, platform::kSourcePatience};
    TimedSource<std::optional<BatteryInfo>> supplies{workers, platform::kSourcePatience};
    TimedSource<std::optional<HealthReading>> health{workers, platform::kSourcePatience};
    TimedSource<std::string> names{workers, platform::kSourcePatience};
    TimedSource<ThresholdReading> settings{workers, platform::kSourcePatience};
    TimedSource<std::int64_t> zones{workers, platform::kSensorPatience};
    bool isBatterySilent = false;
    std::optional<StorageInfo> lastVolume{};
    double volumeReadAt = 0;

    /// As in the desktop program, not at each sample: a disk fills slowly.
    std::optional<std::vector<StorageInfo>> readVolume() {
        const double now = kernel.monotonicSeconds();
        if (!lastVolume || now - volumeReadAt >= kSecondsBetweenVolumes) {
            lastVolume = volume.read([this] { return storage.readStorageInfo(); });
            volumeReadAt = now;
        }
        return lastVolume ? std::optional(std::vector{*lastVolume}) : std::nullopt;
    }
    std::optional<BatteryInfo> readBattery() {
        const auto answer = supplies.read([this] { return readPowerSources(powerSources); });
        isBatterySilent = !answer;
        return answer.value_or(std::nullopt);
    }
};

ProbedMachine::ProbedMachine(const Options& options)
    : samplers_(*new Samplers(options)),
      limit_(options.limit),
      hasApplications_(showsApplications(options.format) && options.limit > 0) {}

std::optional<ThresholdReading> ProbedMachine::readThresholds(const std::string& file) {
    return samplers_.settings.read([file] { return probe::readThresholds(file); });
}

void ProbedMachine::end() {
    samplers_.threads.reset();
}

MachineSample ProbedMachine::read() {
    Samplers& from = samplers_;
    MachineSample sample;
    sample.cpu = from.cpu.readCPUInfo();
    sample.gpu = from.gpu.answeredGPUInfo();
    for (const platform::PropertyDictionary& card : from.cards.last()) {
        sample.gpus.push_back(cardSample(card));
    }
    sample.memory = from.memory.readMemoryInfo();
    sample.network = from.network.readNetworkInfo();
    sample.storage = from.readVolume();
    // As in the desktop program: health is asked for rarely, and so is a battery that is not there.
    from.battery.currentBatteryInfo(isFirst_);
    sample.battery = from.battery.batteryInfoWithHealth(isFirst_);
    if (from.isBatterySilent) {
        sample.battery.reset();
    }
    TopProcessLists processes = from.processes.readTopProcesses(
        hasApplications_ ? std::numeric_limits<int>::max() : limit_);
    if (hasApplications_) {
        sample.applications = applicationsOf(processes.memory);
    }
    const auto rows = static_cast<std::size_t>(limit_);
    processes.cpu.resize(std::min(processes.cpu.size(), rows));
    processes.memory.resize(std::min(processes.memory.size(), rows));
    sample.topCPUProcesses = std::move(processes.cpu);
    sample.topMemoryProcesses = std::move(processes.memory);
    sample.system.uptime = readUptime(from.kernel);
    sample.thermalState = from.zones.read([&from] { return from.processInfo.thermalState(); });
    if (sample.thermalState == platform::kUnknownThermalState) {
        sample.thermalState.reset();
    }
    if (std::exchange(isFirst_, false)) {
        forgetShares(sample);
    }
    return sample;
}

}  // namespace tarnwick::probe
