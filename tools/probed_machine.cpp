#include "tools/probed_machine.h"

#include <utility>

#include "platform/linux/graphics/linux_accelerators.h"
#include "platform/linux/kernel/linux_kernel.h"
#include "platform/linux/network/linux_network_interfaces.h"
#include "platform/linux/power/linux_power_sources.h"
#include "platform/linux/power/linux_process_info.h"
#include "platform/linux/processes/linux_process_table.h"
#include "platform/linux/volumes/linux_volumes.h"
#include "platform/user_defaults.h"
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
          accelerators(options.root),
          processInfo(options.root),
          networkInterfaces(options.root),
          powerSources(options.root),
          processTable(options.root),
          storage(options.root == "/" ? static_cast<platform::Volumes&>(volumes)
                                      : recordedVolumes) {}

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
    BatteryService battery{userDefaults,
                           [this] { return powerSources.readHealth(); },
                           [this] { return readPowerSources(powerSources); },
                           [this] { return platform::Date{kernel.wallClockSeconds()}; },
                           [this] { return kernel.monotonicSeconds(); },
                           [this] { return powerSources.identity(); }};
};

ProbedMachine::ProbedMachine(const Options& options)
    : samplers_(std::make_unique<Samplers>(options)), limit_(options.limit) {}

ProbedMachine::~ProbedMachine() = default;

MachineSample ProbedMachine::read() {
    Samplers& from = *samplers_;
    MachineSample sample;
    sample.cpu = from.cpu.readCPUInfo();
    sample.gpu = from.gpu.readGPUInfo();
    sample.memory = from.memory.readMemoryInfo();
    sample.network = from.network.readNetworkInfo();
    sample.storage = {from.storage.readStorageInfo()};
    from.battery.currentBatteryInfo(true);
    sample.battery = from.battery.batteryInfoWithHealth(true);
    TopProcessLists processes = from.processes.readTopProcesses(limit_);
    sample.topCPUProcesses = std::move(processes.cpu);
    sample.topMemoryProcesses = std::move(processes.memory);
    sample.system.uptime = readUptime(from.kernel);
    sample.thermalState = from.processInfo.thermalState();
    return sample;
}

}  // namespace tarnwick::probe
