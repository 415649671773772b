// SPDX-License-Identifier: MIT
// The whole program without a toolkit, under a clock turned by hand, for as long as is wanted:
// panels and settings windows come and go, as do hosts, batteries and cards, and now and then a
// question to the machine fails. It holds as much at the end of each cycle as at the end of any.
#include <cstdint>
#include <cstdio>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <utility>

#include "app/tarnwick_app.h"
#include "platform/byte_count_text.h"
#include "platform/status_item_notice.h"
#include "platform/testing/scripted_hot_keys.h"
#include "platform/testing/scripted_keyboard_layout.h"
#include "platform/testing/scripted_status_item.h"
#include "platform/testing/scripted_windows.h"
#include "tests/core/machine_faults.h"
#include "tests/core/scripted_machine.h"
#include "tests/soak/held.h"
#include "ui/panel/menu_bar_view.h"
#include "ui/settings/settings_view.h"

namespace tarnwick::testing {
namespace {

using namespace platform::testing;

// Seconds from one fast refresh to the next, with all the time that a timer may be late.
constexpr double kOpenStep = 2.5;
constexpr double kHiddenStep = 12;
// Steps of a round with the panel open and with none.
constexpr int kOpenSteps = 20;
constexpr int kHiddenSteps = 10;
/// In each round one question fails, and in the last one none.
const int kRounds = static_cast<int>(kFaults.size()) + 1;

/// The content of the settings window: the model, with an observer as a toolkit has one.
class SettingsContent final : public platform::View {
 public:
    SettingsContent(UserSettings& settings, SettingsViewEnvironment environment)
        : view(settings, std::move(environment)) {
        view.setObserver([this](const SettingsView::Content& content) { shown = content; });
    }

    SettingsView view;
    SettingsView::Content shown;
};

class SoakedProgram {
 public:
    SoakedProgram() {
        machine.settings.setShortcutKeyCode(37);
        machine.settings.setShortcutModifiers(0x100000);
        item.actions = {.toggle = [this] { ++toggles; }};
        panel.setPageObserver([this](const Page& page) { pages += page.empty() ? 0 : 1; });
    }

    /// Every round once. What the scripts have recorded is forgotten at its end.
    void cycle() {
        for (int number = 0; number < kRounds; ++number) {
            round(number);
        }
        machine.clearCalls();
        item.contents.clear();
        hotKeys.calls.clear();
        windows.calls.clear();
        windows.options.clear();
        windows.delegates.clear();
        layout.asked.clear();
    }

    // How often it happened.
    std::int64_t refreshes = 0;
    std::int64_t pages = 0;
    std::int64_t panels = 0;
    std::int64_t settingsWindows = 0;
    std::int64_t hostsLost = 0;
    std::int64_t toggles = 0;
    std::int64_t refusals = 0;
    std::int64_t batteriesSeen = 0;
    std::int64_t cardsMissed = 0;

 private:
    void round(int number) {
        machine.plugBattery(number % 3 != 2);
        machine.plugCard(number % 4 != 3);
        changeHost(number % 5 != 4);
        changeShortcut(number % 7 != 6);
        panel.appear();
        ++panels;
        for (int turn = 0; turn < kOpenSteps; ++turn) {
            step(kOpenStep, number, turn);
            if (turn == 5) {
                panel.perform(PanelAction::showMemoryDetail);
            } else if (turn == 10) {
                panel.cancel();
                panel.perform(PanelAction::showPerformanceDetail);
            } else if (turn == 15) {
                panel.perform(PanelAction::goBack);
                panel.perform(PanelAction::refresh);
            }
        }
        if (number % 2 == 0) {
            editSettings(number);
        }
        panel.disappear();
        for (int turn = 0; turn < kHiddenSteps; ++turn) {
            step(kHiddenStep, number, kOpenSteps + turn);
        }
        closeSettings();
        cardsMissed += app.statsManager().gpuInfo->isAvailable ? 0 : 1;
        batteriesSeen += app.statsManager().batteryInfo->hasBattery ? 1 : 0;
    }

    /// Every third moment the question of this round fails.
    void step(double seconds, int number, int turn) {
        machine.turn(seconds);
        if (turn % 3 == 1 && number < kRounds - 1) {
            kFaults[static_cast<std::size_t>(number)].fail(machine);
            app.statsManager().refreshNow();
        }
        machine.dispatch.advance(seconds);
    }

    void changeHost(bool isThere) {
        item.isInTray = isThere;
        notice.text.set(isThere ? "" : "No tray shows the item; a sentence that is allocated");
        hostsLost += isThere ? 0 : 1;
    }

    void changeShortcut(bool isGranted) {
        hotKeys.registerStatus.set(isGranted ? platform::hot_key_status::kSuccess
                                             : platform::hot_key_status::kExists);
        hotKeys.changeRegistration();
        machine.dispatch.runMain();
        hotKeys.press();
        machine.dispatch.runMain();
        refusals +=
            machine.settings.shortcutRegistrationState() == RegistrationState::conflict ? 1 : 0;
    }

    void editSettings(int number) {
        app.showSettingsWindow();
        ++settingsWindows;
        SettingsView& view = content->view;
        view.selectTab(Tab::customize);
        machine.dispatch.runMain();
        view.slider(JudgedMetric::cpu).setValue(DualThresholdSlider::Thumb::normal, 30 + number);
        view.selectDisplayMode(number % 4 == 0 ? MenuBarDisplayMode::iconOnly
                                               : MenuBarDisplayMode::advanced);
        view.toggleSwitch(SettingsSwitch::launchOnLogin);
        machine.dispatch.runMain();
        view.selectTab(Tab::about);
        view.resetThresholds();
        app.showSettingsWindow();
    }

    void closeSettings() {
        if (windows.living() > 0) {
            windows.closeByUser(static_cast<int>(windows.options.size()));
        }
    }

    MetricSources countedSources() {
        MetricSources sources = machine.sources();
        sources.readCPUInfo = [this, read = std::move(sources.readCPUInfo)] {
            ++refreshes;
            return read();
        };
        return sources;
    }

    ScriptedMachine machine;
    ScriptedStatusItem item;
    ScriptedWindows windows;
    ScriptedHotKeys hotKeys;
    ScriptedKeyboardLayout layout{{{37, "L"}}};
    platform::PlainByteCountFormatter formatter;
    platform::StatusItemNotice notice;
    /// Of the settings window, while there is one.
    SettingsContent* content = nullptr;
    TarnwickApp app{{item, windows,
                     [this](UserSettings& settings) {
                         auto made = std::make_unique<SettingsContent>(
                             settings, SettingsViewEnvironment{.dispatch = machine.dispatch,
                                                               .keyboardLayout = layout,
                                                               .itemNotice = &notice});
                         content = made.get();
                         return made;
                     }},
                    {machine.settings, machine.battery,
                     StatsManagerEnvironment{machine.dispatch, countedSources(),
                                             [this] { return machine.kernel.wallClockSeconds(); },
                                             platform::Logger()},
                     hotKeys, platform::Logger()}};
    MenuBarView panel{app.statsManager(),
                      {.showSettings = [] {}, .openActivityMonitor = [] {}, .quit = [] {}},
                      {machine.dispatch, formatter}};
};

TEST(ProgramSoak, HoldsNotOneByteMoreHoweverLongItRuns) {
    SoakedProgram program;
    for (int cycle = 0; cycle < kWarmUpCycles; ++cycle) {
        program.cycle();
    }
    const Held before = Held::now();
    const std::size_t heap = heapInUse();
    const std::int64_t start = program.refreshes;
    while (program.refreshes - start < wantedRefreshes()) {
        program.cycle();
        ASSERT_EQ(Held::now(), before) << "after " << program.refreshes << " refreshes";
    }
    // All of it has happened.
    EXPECT_GT(program.pages, program.panels);
    EXPECT_GT(program.toggles, 0);
    EXPECT_GT(program.refusals, 0);
    EXPECT_GT(program.batteriesSeen, 0);
    EXPECT_GT(program.cardsMissed, 0);
    EXPECT_LE(heapInUse(), heap + kHeapRounding);
    const auto number = [](std::int64_t value) { return static_cast<long long>(value); };
    std::printf(
        "%lld fast refreshes, %lld panels with %lld pages, %lld settings windows, %lld hosts lost: "
        "0 bytes, descriptors and threads more than before\n",
        number(program.refreshes), number(program.panels), number(program.pages),
        number(program.settingsWindows), number(program.hostsLost));
}

}  // namespace
}  // namespace tarnwick::testing
