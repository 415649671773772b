// SPDX-License-Identifier: MIT
// The machine that the program runs on: one object for each family of operations.
#pragma once

#include "platform/accelerators.h"
#include "platform/byte_count_formatter.h"
#include "platform/dispatch.h"
#include "platform/hot_keys.h"
#include "platform/kernel.h"
#include "platform/keyboard_layout.h"
#include "platform/login_service.h"
#include "platform/network_interfaces.h"
#include "platform/power_sources.h"
#include "platform/process_info.h"
#include "platform/process_table.h"
#include "platform/user_defaults.h"
#include "platform/volumes.h"
#include "platform/workers.h"

namespace tarnwick::platform {

/// Requires: every object lives as long as the process.
struct Platform {
    Kernel* kernel = nullptr;
    Volumes* volumes = nullptr;
    NetworkInterfaces* networkInterfaces = nullptr;
    Accelerators* accelerators = nullptr;
    ProcessInfo* processInfo = nullptr;
    PowerSources* powerSources = nullptr;
    BatteryHealth* batteryHealth = nullptr;
    ProcessTable* processTable = nullptr;
    UserDefaults* userDefaults = nullptr;
    LoginService* loginService = nullptr;
    HotKeys* hotKeys = nullptr;
    KeyboardLayout* keyboardLayout = nullptr;
    ByteCountFormatter* byteCountFormatter = nullptr;
    Dispatch* dispatch = nullptr;
    Workers* workers = nullptr;
};

/// The process's platform, as installed by `main`. Only the defaults of process-wide instances and
/// the application shell read it; other code receives what it needs. A fatal error if nothing was
/// installed before.
const Platform& current();

/// `main` calls this once, before any call of current().
void install(const Platform& platform);

}  // namespace tarnwick::platform
