// SPDX-License-Identifier: MIT
#include "platform/macos/mac_platform.h"

#include "platform/macos/mac_machine.h"
#include "platform/macos/posix/posix_child_processes.h"
#include "platform/macos/readers/interface_counter_reader.h"
#include "platform/macos/readers/process_table_reader.h"
#include "platform/macos/readers/profiler_health.h"
#include "services/process_runner.h"

namespace tarnwick::platform {

Platform makeMacPlatform() {
    auto* kernel = new MacKernel();
    auto* dispatch = new MacDispatch();
    return {
        .kernel = kernel,
        .volumes = new MacVolumes(),
        .networkInterfaces = new InterfaceCounterReader(*new MacInterfaceCalls()),
        .accelerators = new MacAccelerators(),
        .processInfo = new MacProcessInfo(),
        .powerSources = new MacPowerSources(),
        .batteryHealth = new ProfilerHealth(ProcessRunner(
            *new PosixChildProcesses(), [kernel] { return kernel->monotonicSeconds(); })),
        .processTable = new ProcessTableReader(*new MacRawProcessTable()),
        .userDefaults = new MacUserDefaults(),
        .loginService = new MacLoginService(),
        .hotKeys = new MacHotKeys(),
        .keyboardLayout = new MacKeyboardLayout(),
        .byteCountFormatter = new MacByteCountFormatter(),
        .dispatch = dispatch,
        .workers = new ThreadWorkers(
            [dispatch](auto work) { return dispatch->detached(std::move(work)); }),
    };
}

}  // namespace tarnwick::platform
