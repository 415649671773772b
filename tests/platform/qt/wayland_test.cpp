// SPDX-License-Identifier: MIT
#include "platform/qt/wayland.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <wayland-client-core.h>

#include "tests/platform/linux/desktop/keyboard/scripted_compositor.h"

namespace tarnwick::wayland {
namespace {

using platform::testing::ScriptedCompositor;
using Names = std::vector<std::string>;

bool isFree(const ScriptedCompositor& compositor) {
    return wl_display_roundtrip(compositor.client()) >= 0 &&
           wl_display_get_error(compositor.client()) == 0;
}

TEST(Wayland, NamesTheGlobalsOfTheCompositor) {
    ScriptedCompositor compositor(ScriptedCompositor::Seat::withKeyboard);
    EXPECT_EQ(std::ranges::count(globals(compositor.client()), "gtk_shell1"), 0);
    EXPECT_EQ(std::ranges::count(globals(compositor.client()), "wl_seat"), 1);
    compositor.addGtkShell();
    EXPECT_EQ(std::ranges::count(globals(compositor.client()), "gtk_shell1"), 1);
}

TEST(Wayland, EndsStartupsByTheirTokens) {
    ScriptedCompositor compositor(ScriptedCompositor::Seat::none);
    compositor.addGtkShell();
    endStartup(compositor.client(), "one");
    endStartup(compositor.client(), "another");
    ASSERT_TRUE(isFree(compositor));
    EXPECT_EQ(compositor.endedStartups(), (Names{"one", "another"}));
}

TEST(Wayland, EndsNoStartupWhereNobodyWaitsForOne) {
    ScriptedCompositor compositor(ScriptedCompositor::Seat::none);
    endStartup(compositor.client(), "one");
    EXPECT_TRUE(isFree(compositor));
    EXPECT_EQ(compositor.endedStartups(), Names());
}

TEST(Wayland, IsNothingWithoutACompositor) {
    EXPECT_EQ(globals(nullptr), Names());
    endStartup(nullptr, "one");
}

}  // namespace
}  // namespace tarnwick::wayland
