// SPDX-License-Identifier: MIT
#include "platform/linux/desktop/keyboard/wayland_keyboard_layout.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <wayland-client-core.h>
#include <xkbcommon/xkbcommon-keysyms.h>

#include "tests/platform/linux/desktop/keyboard/scripted_compositor.h"
#include "tests/platform/linux/desktop/keyboard/virtual_keys.h"

namespace tarnwick::platform {
namespace {

using testing::ScriptedCompositor;
using Seat = ScriptedCompositor::Seat;

/// As the toolkit does when something has come: reads it, for all queues.
void readEvents(const ScriptedCompositor& compositor) {
    wl_display_roundtrip(compositor.client());
}

std::ptrdiff_t openFiles() {
    const std::filesystem::directory_iterator files("/proc/self/fd");
    return std::distance(begin(files), end(files));
}

TEST(WaylandKeyboardLayout, NamesKeysFromTheBeginning) {
    ScriptedCompositor compositor(Seat::withKeyboard);
    compositor.setLayouts("de");
    WaylandKeyboardLayout layout(compositor.client());
    EXPECT_EQ(layout.displayText(kY), "Z");
    EXPECT_EQ(layout.displayText(kF13), std::nullopt);
}

TEST(WaylandKeyboardLayout, FollowsAnotherKeymap) {
    ScriptedCompositor compositor(Seat::withKeyboard);
    compositor.setLayouts("us");
    WaylandKeyboardLayout layout(compositor.client());
    EXPECT_EQ(layout.displayText(kQ), "Q");
    compositor.setLayouts("fr");
    readEvents(compositor);
    EXPECT_EQ(layout.displayText(kQ), "A");
}

TEST(WaylandKeyboardLayout, FollowsTheLayoutInUse) {
    ScriptedCompositor compositor(Seat::withKeyboard);
    compositor.setLayouts("us,ru");
    WaylandKeyboardLayout layout(compositor.client());
    EXPECT_EQ(layout.displayText(kL), "L");
    compositor.setLayout(1);
    readEvents(compositor);
    EXPECT_EQ(layout.displayText(kL), "Д");
    EXPECT_EQ(layout.keysym(kL), xkb_keysym_t{XKB_KEY_l});
    compositor.setLayout(0);
    readEvents(compositor);
    EXPECT_EQ(layout.displayText(kL), "L");
}

TEST(WaylandKeyboardLayout, WorksWithCompositorsOfAnyAge) {
    for (const int version : {3, 5, 8}) {
        ScriptedCompositor compositor(Seat::withKeyboard, version);
        compositor.setLayouts("de");
        {
            WaylandKeyboardLayout layout(compositor.client());
            EXPECT_EQ(layout.displayText(kY), "Z") << version;
        }
        readEvents(compositor);
        EXPECT_EQ(wl_display_get_error(compositor.client()), 0) << version;
    }
}

TEST(WaylandKeyboardLayout, SeesAKeyboardThatComesLater) {
    ScriptedCompositor compositor(Seat::withoutKeyboard);
    compositor.setLayouts("de");
    WaylandKeyboardLayout layout(compositor.client());
    EXPECT_EQ(layout.displayText(kY), std::nullopt);
    compositor.plugKeyboard(true);
    readEvents(compositor);
    layout.takeEvents();
    readEvents(compositor);
    EXPECT_EQ(layout.displayText(kY), "Z");
}

TEST(WaylandKeyboardLayout, ForgetsAKeyboardThatGoes) {
    ScriptedCompositor compositor(Seat::withKeyboard);
    compositor.setLayouts("us,ru");
    WaylandKeyboardLayout layout(compositor.client());
    compositor.setLayout(1);
    readEvents(compositor);
    EXPECT_EQ(layout.displayText(kL), "Д");
    compositor.plugKeyboard(false);
    readEvents(compositor);
    EXPECT_EQ(layout.displayText(kL), std::nullopt);
    readEvents(compositor);
    EXPECT_EQ(compositor.keyboards(), 0);
    compositor.plugKeyboard(true);
    readEvents(compositor);
    layout.takeEvents();
    readEvents(compositor);
    EXPECT_EQ(layout.displayText(kL), "L");
}

TEST(WaylandKeyboardLayout, AsksForOneKeyboardOnly) {
    ScriptedCompositor compositor(Seat::withKeyboard);
    compositor.setLayouts("us");
    compositor.addSeat();
    WaylandKeyboardLayout layout(compositor.client());
    compositor.plugKeyboard(true);
    readEvents(compositor);
    layout.takeEvents();
    readEvents(compositor);
    EXPECT_EQ(compositor.keyboards(), 1);
}

TEST(WaylandKeyboardLayout, KnowsNothingWithoutASeatOrACompositor) {
    ScriptedCompositor compositor(Seat::none);
    EXPECT_EQ(WaylandKeyboardLayout(compositor.client()).displayText(kL), std::nullopt);
    // One from before keyboards could be given back.
    ScriptedCompositor old(Seat::withKeyboard, 2);
    old.setLayouts("us");
    EXPECT_EQ(WaylandKeyboardLayout(old.client()).displayText(kL), std::nullopt);
    WaylandKeyboardLayout none(nullptr);
    none.takeEvents();
    EXPECT_EQ(none.displayText(kL), std::nullopt);
}

TEST(WaylandKeyboardLayout, KnowsNothingFromAKeymapThatItCannotRead) {
    ScriptedCompositor compositor(Seat::withKeyboard);
    compositor.setLayouts("us");
    WaylandKeyboardLayout layout(compositor.client());
    EXPECT_EQ(layout.displayText(kL), "L");
    compositor.setNoKeymap();
    readEvents(compositor);
    EXPECT_EQ(layout.displayText(kL), std::nullopt);
    compositor.setKeymap("this is no keymap", 17);
    readEvents(compositor);
    EXPECT_EQ(layout.displayText(kL), std::nullopt);
    compositor.setKeymap("", 0);
    readEvents(compositor);
    EXPECT_EQ(layout.displayText(kL), std::nullopt);
}

TEST(WaylandKeyboardLayout, ReadsNothingPastTheEndOfAShortFile) {
    ScriptedCompositor compositor(Seat::withKeyboard);
    // Whole pages: the next one is not there.
    compositor.setKeymap(std::string(65'536, ' '), 1'000'000);
    WaylandKeyboardLayout layout(compositor.client());
    EXPECT_EQ(layout.displayText(kL), std::nullopt);
}

TEST(WaylandKeyboardLayout, KeepsOneFileWhateverComes) {
    ScriptedCompositor compositor(Seat::withKeyboard);
    compositor.setLayouts("us");
    WaylandKeyboardLayout layout(compositor.client());
    EXPECT_EQ(layout.displayText(kY), "Y");
    const auto before = openFiles();
    for (int i = 0; i < 10; ++i) {
        compositor.setLayouts(i % 2 == 0 ? "de" : "us");
        readEvents(compositor);
        layout.takeEvents();
    }
    EXPECT_EQ(layout.displayText(kY), "Y");
    // The compositor, a thread of this process, may not have closed its own last file yet.
    EXPECT_LE(openFiles(), before + 1);
}

}  // namespace
}  // namespace tarnwick::platform
