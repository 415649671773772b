#include "tools/probed_machine.h"

#include "platform/linux/linux_kernel.h"
#include "platform/linux/linux_process_info.h"
#include "platform/linux/linux_volumes.h"
#include "services/cpu_service.h"
#include "services/memory_service.h"
#include "services/storage_service.h"
#include "services/system_uptime.h"

namespace tarnwick::probe {

struct ProbedMachine::Samplers {
    explicit Samplers(const Options& options)
        : kernel(options.root), volumes(options.root, options.home), processInfo(options.root) {}

    platform::LinuxKernel kernel;
    platform::LinuxVolumes volumes;
    platform::LinuxProcessInfo processInfo;

    CPUService cpu{kernel};
    MemoryService memory{kernel};
    StorageService storage{volumes};
};

ProbedMachine::ProbedMachine(const Options& options)
    : samplers_(std::make_unique<Samplers>(options)), limit_(options.limit) {}

ProbedMachine::~ProbedMachine() = default;

MachineSample ProbedMachine::read() {
    MachineSample sample;
    sample.cpu = samplers_->cpu.readCPUInfo();
    sample.memory = samplers_->memory.readMemoryInfo();
    sample.storage = {samplers_->storage.readStorageInfo()};
    sample.system.uptime = readUptime(samplers_->kernel);
    sample.thermalState = samplers_->processInfo.thermalState();
    return sample;
}

}  // namespace tarnwick::probe
