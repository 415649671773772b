// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "platform/linux/desktop/session/appearance.h"
#include "tests/platform/linux/desktop/private_bus.h"
#include "tests/platform/linux/desktop/session/scripted_settings_portal.h"

namespace tarnwick::platform {
namespace {

using ::testing::ElementsAre;
using testing::PrivateBus;
using testing::ScriptedSettingsPortal;
using testing::waitUntil;

struct ContrastSetting {
    const char* space;
    const char* key;
    QVariant more;
    QVariant usual;
};

TEST(HighContrast, FollowsEachOfTheSettings) {
    for (const ContrastSetting& setting :
         {ContrastSetting{"org.freedesktop.appearance", "contrast", 1U, 0U},
          ContrastSetting{"org.gnome.desktop.a11y.interface", "high-contrast", true, false}}) {
        PrivateBus bus;
        ScriptedSettingsPortal portal{bus.connect()};
        portal.values[QString("%1 %2").arg(setting.space, setting.key)] = setting.more;
        portal.begin();
        std::vector<bool> changes;
        const HighContrast contrast(bus.connect(), [&](bool isHigh) { changes.push_back(isHigh); });
        EXPECT_FALSE(contrast.isHigh());
        EXPECT_TRUE(waitUntil([&] { return contrast.isHigh(); })) << setting.key;
        // Of another type: no wish.
        portal.change(setting.space, setting.key, "high");
        EXPECT_TRUE(waitUntil([&] { return !contrast.isHigh(); })) << setting.key;
        portal.change(setting.space, setting.key, setting.more);
        portal.change(setting.space, setting.key, setting.more);
        portal.change(setting.space, setting.key, setting.usual);
        EXPECT_TRUE(waitUntil([&] { return changes.size() == 4; })) << setting.key;
        EXPECT_THAT(changes, ElementsAre(true, false, true, false));
    }
}

}  // namespace
}  // namespace tarnwick::platform
