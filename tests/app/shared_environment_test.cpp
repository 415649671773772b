// SPDX-License-Identifier: MIT
// What the application runs on where nothing else is said.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <memory>

#include "app/tarnwick_app.h"
#include "platform/platform.h"
#include "platform/testing/manual_dispatch.h"
#include "platform/testing/memory_user_defaults.h"
#include "platform/testing/scripted_hot_keys.h"
#include "platform/testing/scripted_kernel.h"
#include "platform/testing/scripted_login_service.h"
#include "platform/testing/scripted_network_interfaces.h"
#include "platform/testing/scripted_power_sources.h"
#include "platform/testing/scripted_status_item.h"
#include "platform/testing/scripted_volumes.h"
#include "platform/testing/scripted_windows.h"
#include "services/battery_service.h"

namespace tarnwick {
namespace {

using testing::ElementsAre;

class UnheatedMachine final : public platform::ProcessInfo {
    std::int64_t activeProcessorCount() override { return 1; }
    std::int64_t thermalState() override { return 0; }
};

/// The machine under the process-wide instances, which keep it for good.
struct Machine {
    platform::testing::ScriptedKernel kernel;
    platform::testing::ScriptedVolumes volumes;
    platform::testing::ScriptedNetworkInterfaces networkInterfaces;
    platform::testing::ScriptedPowerSources powerSources;
    platform::testing::MemoryUserDefaults store;
    platform::testing::ScriptedLoginService loginService;
    platform::testing::ScriptedHotKeys hotKeys;
    platform::testing::ManualDispatch dispatch;
    UnheatedMachine processInfo;
};

TEST(SharedTarnwickAppEnvironment, IsTheCurrentPlatformWithTheSharedSettingsAndBattery) {
    auto& machine = *new Machine;
    platform::Platform platform;
    platform.kernel = &machine.kernel;
    platform.volumes = &machine.volumes;
    platform.networkInterfaces = &machine.networkInterfaces;
    platform.powerSources = &machine.powerSources;
    platform.batteryHealth = &machine.powerSources;
    platform.userDefaults = &machine.store;
    platform.loginService = &machine.loginService;
    platform.hotKeys = &machine.hotKeys;
    platform.dispatch = &machine.dispatch;
    platform.processInfo = &machine.processInfo;
    platform.workers = &platform::noWorkers();
    platform::install(platform);

    const TarnwickAppEnvironment environment = TarnwickAppEnvironment::shared();
    EXPECT_EQ(&environment.settings, &UserSettings::shared());
    EXPECT_EQ(environment.batteryService, BatteryService::shared());
    EXPECT_EQ(&environment.hotKeys, &machine.hotKeys);
    EXPECT_EQ(&environment.stats.dispatch, &machine.dispatch);

    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    {
        platform::testing::ScriptedStatusItem item;
        platform::testing::ScriptedWindows windows;
        TarnwickApp app(
            {item, windows, [](UserSettings&) { return std::make_unique<platform::View>(); }});
        EXPECT_EQ(&app.settings(), &UserSettings::shared());
        EXPECT_EQ(item.contents.size(), 1U);
        EXPECT_THAT(machine.hotKeys.calls.all(), ElementsAre("install"));
    }
    // Nothing is logged by default.
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

}  // namespace
}  // namespace tarnwick
