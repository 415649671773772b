#include "app/tarnwick_app.h"

#include <gtest/gtest.h>
#include <memory>

#include "platform/testing/manual_dispatch.h"
#include "platform/testing/memory_user_defaults.h"
#include "platform/testing/scripted_login_service.h"
#include "platform/testing/scripted_status_item.h"
#include "tests/services/no_battery.h"

namespace tarnwick {
namespace {

using platform::testing::ManualDispatch;
using platform::testing::MemoryUserDefaults;
using platform::testing::ScriptedLoginService;
using platform::testing::ScriptedStatusItem;

class TarnwickAppTest : public testing::Test {
 protected:
    TarnwickAppTest() { cpu.coreCount = 4; }

    MetricSources sources() {
        return {.readCPUInfo = [this] { return cpu; },
                .readGPUInfo = [] { return GPUInfo{}; },
                .readMemoryInfo = [] { return MemoryInfo{.total = 100, .used = 30}; },
                .readNetworkInfo = [] { return NetworkInfo{}; },
                .readTopProcesses = [](int) { return TopProcesses{}; },
                .pruneStaleProcesses = [] {},
                .releaseProcessCaches = [] {},
                .readStorageInfo =
                    [] {
                        StorageInfo volume;
                        volume.totalSpace = 100;
                        volume.usedSpace = 50;
                        return volume;
                    },
                .readUptime = [] { return 5.0; }};
    }

    std::unique_ptr<TarnwickApp> makeApp() {
        return std::make_unique<TarnwickApp>(
            item, TarnwickAppEnvironment{
                      settings, noBattery(store),
                      StatsManagerEnvironment{dispatch, sources(), [this] { return time; },
                                              platform::Logger()}});
    }

    ManualDispatch dispatch;
    MemoryUserDefaults store;
    ScriptedLoginService loginService;
    UserSettings settings{store, loginService};
    ScriptedStatusItem item;
    CPUInfo cpu;
    /// Minute 0 of an hour, or 15, 30 or 45: in every time zone a multiple of the three metrics
    /// that are shown in turn.
    double time = 0;
};

TEST_F(TarnwickAppTest, ShowsALoadingLabelBeforeTheFirstMeasurement) {
    const auto app = makeApp();
    ASSERT_EQ(item.contents.size(), 1U);
    EXPECT_EQ(item.contents[0].symbol, "checkmark.circle.fill");
    EXPECT_EQ(item.contents[0].tint, Tint::green);
    EXPECT_EQ(item.contents[0].text, "Loading...");
    EXPECT_EQ(item.contents[0].accessibilityLabel, "Tarnwick status: Loading...");
}

TEST_F(TarnwickAppTest, ManyWritesInOneTurnRebuildTheLabelOnce) {
    const auto app = makeApp();
    dispatch.runMain();
    item.contents.clear();
    app->statsManager().cpuInfo.set(cpu);
    app->statsManager().memoryInfo.set({});
    settings.setCPUHigh(91);
    EXPECT_TRUE(item.contents.empty());
    dispatch.runMain();
    EXPECT_EQ(item.contents.size(), 1U);
}

TEST_F(TarnwickAppTest, TheLabelFollowsEveryMeasurement) {
    const auto app = makeApp();
    dispatch.runMain();
    cpu.usagePercentage = 93.4;
    dispatch.advance(12);
    EXPECT_EQ(item.contents.back().text, "CPU 93%");
    EXPECT_EQ(item.contents.back().tint, Tint::red);
    EXPECT_EQ(item.contents.back().symbol, "exclamationmark.triangle.fill");
}

TEST_F(TarnwickAppTest, TheLabelTurnsWithTheMinuteAtTheNextFastRefreshAtTheLatest) {
    const auto app = makeApp();
    dispatch.runMain();
    EXPECT_EQ(item.contents.back().text, "CPU 0%");
    time = 60;
    dispatch.advance(12);
    EXPECT_EQ(item.contents.back().text, "RAM 30%");
    time = 120;
    dispatch.advance(12);
    EXPECT_EQ(item.contents.back().text, "Disk 50%");
}

TEST_F(TarnwickAppTest, TheLabelFollowsTheDisplayModeAtOnce) {
    const auto app = makeApp();
    dispatch.runMain();
    settings.setMenuBarDisplayMode(MenuBarDisplayMode::iconOnly);
    dispatch.runMain();
    EXPECT_FALSE(item.contents.back().text.has_value());
    EXPECT_NE(item.contents.back().accessibilityLabel, "Tarnwick status: ");
    settings.setMenuBarDisplayMode(MenuBarDisplayMode::advanced);
    dispatch.runMain();
    EXPECT_TRUE(item.contents.back().text.has_value());
}

TEST_F(TarnwickAppTest, TheLabelFollowsTheThresholdsAtOnce) {
    cpu.usagePercentage = 50;
    const auto app = makeApp();
    dispatch.runMain();
    EXPECT_EQ(item.contents.back().tint, Tint::green);
    settings.setCPUNormal(40);
    dispatch.runMain();
    EXPECT_EQ(item.contents.back().tint, Tint::yellow);
    EXPECT_EQ(item.contents.back().text, "CPU 50%");
}

TEST_F(TarnwickAppTest, ASlowRefreshIsDueEveryTwoMinutesWhileHiddenAndEveryHalfMinuteWhileVisible) {
    const auto app = makeApp();
    dispatch.runMain();
    int slow = 0;
    const auto counted = app->statsManager().storageInfo.willChange([&slow] { ++slow; });
    dispatch.advance(140);
    EXPECT_EQ(slow, 1);
    app->statsManager().popoverDidAppear();
    slow = 0;
    dispatch.advance(65);
    EXPECT_EQ(slow, 2);
}

TEST_F(TarnwickAppTest, NothingIsShownAfterTheApplicationHasGone) {
    auto app = makeApp();
    dispatch.runMain();
    app->statsManager().refreshFast();
    settings.setCPUHigh(92);
    app.reset();
    item.contents.clear();
    dispatch.advance(500);
    EXPECT_TRUE(item.contents.empty());
}

}  // namespace
}  // namespace tarnwick
