// SPDX-License-Identifier: MIT
#include "platform/linux/desktop/keyboard/session_keyboard.h"

#include <QDBusConnection>
#include <gtest/gtest.h>

#include "platform/testing/manual_dispatch.h"

namespace tarnwick::platform {
namespace {

TEST(SessionKeyboard, BelievesWhatTheSessionIsCalled) {
    EXPECT_TRUE(isWaylandSession("wayland", "wayland-0"));
    EXPECT_TRUE(isWaylandSession("wayland", ""));
    EXPECT_FALSE(isWaylandSession("x11", ""));
    // Left over from another session of the same user.
    EXPECT_FALSE(isWaylandSession("x11", "wayland-0"));
}

TEST(SessionKeyboard, LooksForACompositorInASessionOfAnotherType) {
    for (const char* type : {"", "tty", "unspecified", "mir"}) {
        EXPECT_TRUE(isWaylandSession(type, "wayland-0")) << type;
        EXPECT_FALSE(isWaylandSession(type, "")) << type;
    }
}

TEST(SessionKeyboard, RegistersNothingWithoutADisplay) {
    testing::ManualDispatch dispatch;
    const auto layout = makeKeyboardLayout();
    const auto hotKeys = makeHotKeys(QDBusConnection("none"), *layout, dispatch);
    const auto result = hotKeys->registerEventHotKey(37, hot_key_modifier::kCommand, {});
    EXPECT_NE(result.status, hot_key_status::kSuccess);
    EXPECT_NE(result.status, hot_key_status::kExists);
    EXPECT_FALSE(result.handle);
}

TEST(SessionKeyboard, NamesNoKeyWithoutADisplay) {
    EXPECT_EQ(makeKeyboardLayout()->displayText(37), std::nullopt);
}

}  // namespace
}  // namespace tarnwick::platform
