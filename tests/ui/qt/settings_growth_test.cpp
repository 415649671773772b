// SPDX-License-Identifier: MIT
// What is left of a settings window that was closed.
#include <cstdint>
#include <gtest/gtest.h>
#include <malloc.h>

#include "platform/qt/toolkit_memory.h"
#include "platform/testing/manual_dispatch.h"
#include "platform/testing/memory_user_defaults.h"
#include "platform/testing/scripted_keyboard_layout.h"
#include "platform/testing/scripted_login_service.h"
#include "tests/ui/qt/settle.h"
#include "ui/qt/settings_content.h"
#include "ui/qt/settings_widget.h"
#include "ui/qt/titled_window.h"
#include "ui/qt/widget_view.h"

namespace tarnwick::qt {
namespace {

class SettingsGrowth : public ::testing::Test {
 protected:
    void openAndClose() {
        auto content =
            makeSettingsContent(settings, theme, {SettingsViewEnvironment{dispatch, layout}, {}});
        auto* widget = qobject_cast<SettingsWidget*>(dynamic_cast<WidgetView&>(*content).widget());
        auto window = windows.makeWindow({.width = 520, .height = 500});
        window->setContentView(std::move(content));
        window->makeKeyAndOrderFront();
        for (const TabItem& item : kTabs) {
            widget->view().selectTab(item.tab);
            dispatch.runMain();
            settle();
        }
        window.reset();
        settle();
    }
    /// Bytes that the program has asked for and not given back.
    static std::int64_t held() {
        const auto memory = ::mallinfo2();
        return static_cast<std::int64_t>(memory.uordblks + memory.hblkhd);
    }

    int told = 0;
    platform::testing::MemoryUserDefaults store;
    platform::testing::ScriptedLoginService loginService;
    platform::testing::ManualDispatch dispatch;
    platform::testing::ScriptedKeyboardLayout layout{{{37, "L"}}};
    UserSettings settings{store, loginService};
    Theme theme{false};
    TitledWindows windows{[this] {
        ++told;
        freeUnusedFonts();
    }};
};

TEST_F(SettingsGrowth, AWindowThatClosesLeavesNothing) {
    ASSERT_GT(held(), 0);
    // The toolkit's tables grow for a while.
    constexpr int warmUp = 150;
    constexpr int rounds = 200;
    // Less than the smallest object of a window each time.
    constexpr std::int64_t most = rounds * 40;
    for (int round = 0; round < warmUp; ++round) {
        openAndClose();
    }
    const std::int64_t before = held();
    for (int round = 0; round < rounds; ++round) {
        openAndClose();
    }
    EXPECT_EQ(told, warmUp + rounds);
    EXPECT_LE(held() - before, most);
}

}  // namespace
}  // namespace tarnwick::qt
