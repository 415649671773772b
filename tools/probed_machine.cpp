// SPDX-License-Identifier: MIT
#include "tools/probed_machine.h"

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

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

    std::optional<platform::BackgroundWork> threads{std::in_place};
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
    GPUService gpu{accelerators};
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
    TimedSource<std::int64_t> zones{workers, platform::kSensorPatience};
    bool isBatterySilent = false;

    std::optional<BatteryInfo> readBattery() {
        const auto answer = supplies.read([this] { return readPowerSources(powerSources); });
        isBatterySilent = !answer;
        return answer.value_or(std::nullopt);
    }
};

ProbedMachine::ProbedMachine(const Options& options)
    : samplers_(*new Samplers(options)), limit_(options.limit) {}

void ProbedMachine::end() {
    samplers_.threads.reset();
}

MachineSample ProbedMachine::read() {
    Samplers& from = samplers_;
    MachineSample sample;
    sample.cpu = from.cpu.readCPUInfo();
    sample.gpu = from.gpu.answeredGPUInfo();
    sample.memory = from.memory.readMemoryInfo();
    sample.network = from.network.readNetworkInfo();
    sample.storage.reset();
    if (auto volume = from.volume.read([&from] { return from.storage.readStorageInfo(); })) {
        sample.storage = std::vector{*std::move(volume)};
    }
    from.battery.currentBatteryInfo(true);
    sample.battery = from.battery.batteryInfoWithHealth(true);
    if (from.isBatterySilent) {
        sample.battery.reset();
    }
    TopProcessLists processes = from.processes.readTopProcesses(limit_);
    sample.topCPUProcesses = std::move(processes.cpu);
    sample.topMemoryProcesses = std::move(processes.memory);
    sample.system.uptime = readUptime(from.kernel);
    sample.thermalState = from.zones.read([&from] { return from.processInfo.thermalState(); });
    if (sample.thermalState == platform::kUnknownThermalState) {
        sample.thermalState.reset();
    }
    return sample;
}

}  // namespace tarnwick::probe
