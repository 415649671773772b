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
#include "platform/timed_source.h"
#include "platform/user_defaults.h"
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

/// `number`: place among the cards.
GraphicsCardSample cardSample(const platform::PropertyDictionary& card, std::size_t number) {
    const std::string unnamed = "gpu" + std::to_string(number);
    GraphicsCardSample sample{.id = valueOf<std::string>(card, "card").value_or(unnamed),
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
    explicit Samplers(Sources given) : sources(std::move(given)) {}

    const Sources sources;
    const platform::Platform& machine = sources.machine;
    platform::Kernel& kernel = *machine.kernel;
    platform::PowerSources& powerSources = *machine.powerSources;
    platform::BatteryHealth& batteryHealth = *machine.batteryHealth;
    platform::Workers& workers = *machine.workers;
    NoUserDefaults userDefaults;

    CPUService cpu{kernel};
    KeptAccelerators cards{*machine.accelerators};
    GPUService gpu{cards};
    MemoryService memory{kernel};
    NetworkService network{*machine.networkInterfaces, kernel};
    ProcessService processes{*machine.processTable, kernel};
    StorageService storage{*machine.volumes};
    BatteryService battery{
        userDefaults,
        [this] {
            return health.read([this] { return batteryHealth.readHealth(); })
                .value_or(std::nullopt);
        },
        [this] { return readBattery(); },
        [this] { return platform::Date{kernel.wallClockSeconds()}; },
        [this] { return kernel.monotonicSeconds(); },
        [this] { return names.read([this] { return powerSources.identity(); }).value_or(""); }};

    // The sources that may hang.
    TimedSource<StorageInfo> volume{workers, platform::kSourcePatience};
    TimedSource<std::optional<BatteryInfo>> supplies{workers, platform::kSourcePatience};
    TimedSource<std::optional<HealthReading>> health{workers, batteryHealth.longestReading(), 0};
    TimedSource<std::string> names{workers, platform::kSourcePatience};
    TimedSource<ThresholdReading> settings{workers, platform::kSourcePatience};
    TimedSource<std::int64_t> zones{workers, platform::kSensorPatience};
    TimedSource<NetworkInfo> traffic{workers, platform::kSensorPatience};
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
    NetworkInfo readTraffic() {
        return machine.networkInterfaces->mayHang()
                   ? traffic.read([this] { return network.readNetworkInfo(); })
                         .value_or(NetworkInfo())
                   : network.readNetworkInfo();
    }
    std::optional<BatteryInfo> readBattery() {
        const auto answer = supplies.read([this] { return readPowerSources(powerSources); });
        isBatterySilent = !answer;
        return answer.value_or(std::nullopt);
    }
};

ProbedMachine::ProbedMachine(Sources sources, const Options& options)
    : samplers_(*new Samplers(std::move(sources))),
      limit_(options.limit),
      hasApplications_(showsApplications(options.format) && options.limit > 0) {}

std::optional<ThresholdReading> ProbedMachine::readThresholds(const std::string& file) {
    return samplers_.settings.read([file] { return probe::readThresholds(file); });
}

void ProbedMachine::end() {
    samplers_.sources.end();
}

MachineSample ProbedMachine::read() {
    Samplers& from = samplers_;
    MachineSample sample;
    sample.cpu = from.cpu.readCPUInfo();
    sample.gpu = from.gpu.answeredGPUInfo();
    for (const platform::PropertyDictionary& card : from.cards.last()) {
        sample.gpus.push_back(cardSample(card, sample.gpus.size()));
    }
    sample.memory = from.memory.readMemoryInfo();
    sample.network = from.readTraffic();
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
    sample.thermalState =
        from.zones.read([&from] { return from.machine.processInfo->thermalState(); });
    if (sample.thermalState == platform::kUnknownThermalState) {
        sample.thermalState.reset();
    }
    if (std::exchange(isFirst_, false)) {
        forgetShares(sample);
    }
    return sample;
}

}  // namespace tarnwick::probe
