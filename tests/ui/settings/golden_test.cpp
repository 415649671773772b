// SPDX-License-Identifier: MIT
// Whole tabs against tests/golden/settings_*.txt. After a change that is meant, run the tests with
// TARNWICK_RENEW_GOLDEN=1 to write the files anew, and read the difference before committing it.
#include <cstdlib>
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>

#include "tests/ui/settings/settings_text.h"
#include "tests/ui/settings/settings_view_fixture.h"

namespace tarnwick {
namespace {

class GoldenSettings : public testing::SettingsViewFixture {
 protected:
    void expectGolden(Tab tab, const std::string& name) {
        dispatch.runMain();
        const std::string text = testing::settingsText(view->page(tab));
        const std::string path = std::string(TARNWICK_GOLDEN) + "/settings_" + name + ".txt";
        if (std::getenv("TARNWICK_RENEW_GOLDEN") != nullptr) {
            std::ofstream(path, std::ios::binary) << text;
        }
        std::ostringstream golden;
        golden << std::ifstream(path, std::ios::binary).rdbuf();
        EXPECT_EQ(text, golden.str());
    }
};

TEST_F(GoldenSettings, GeneralOfAFreshStore) {
    expectGolden(Tab::general, "general_fresh");
}

TEST_F(GoldenSettings, GeneralWithAnActiveShortcut) {
    storeShortcut(40, testing::kCommandFlag | testing::kShiftFlag);
    settings.setShortcutRegistrationState(RegistrationState::active);
    settings.setMenuBarDisplayMode(MenuBarDisplayMode::iconOnly);
    loginService.setStatus(platform::LoginServiceStatus::enabled);
    settings.setLaunchOnLogin(true);
    expectGolden(Tab::general, "general_active");
}

TEST_F(GoldenSettings, GeneralWithAConflict) {
    storeShortcut(37, testing::kCommandFlag);
    settings.setShortcutRegistrationState(RegistrationState::conflict);
    expectGolden(Tab::general, "general_conflict");
}

TEST_F(GoldenSettings, GeneralWithAFailure) {
    storeShortcut(37, testing::kCommandFlag);
    settings.setShortcutRegistrationState(RegistrationState::failed);
    expectGolden(Tab::general, "general_failed");
}

TEST_F(GoldenSettings, GeneralWithARejectedKeyAboveTheActiveShortcut) {
    storeShortcut(37, testing::kCommandFlag);
    settings.setShortcutRegistrationState(RegistrationState::active);
    dispatch.runMain();
    view->shortcutField().mouseDown();
    view->shortcutField().keyDown(40, 0);
    expectGolden(Tab::general, "general_rejected");
}

TEST_F(GoldenSettings, CustomizeOfAFreshStore) {
    expectGolden(Tab::customize, "customize_fresh");
}

TEST_F(GoldenSettings, CustomizeAfterChanges) {
    settings.setRemindRestartAfterWeek(true);
    settings.setCPUNormal(10);
    settings.setCPUHigh(11);
    settings.setGPUNormal(42.9);
    settings.setMemoryHigh(100);
    settings.setStorageNormal(50);
    expectGolden(Tab::customize, "customize_changed");
}

TEST_F(GoldenSettings, About) {
    expectGolden(Tab::about, "about");
}

TEST_F(GoldenSettings, AboutWithoutABuild) {
    SettingsViewEnvironment environment = this->environment();
    environment.program.buildVersion.reset();
    view = std::make_unique<SettingsView>(settings, environment);
    expectGolden(Tab::about, "about_unknown_build");
}

}  // namespace
}  // namespace tarnwick
