// SPDX-License-Identifier: MIT
#include "platform/linux/desktop/keyboard/x11_modifiers.h"

#include <gtest/gtest.h>
#include <xkbcommon/xkbcommon-keysyms.h>

#include "platform/hot_keys.h"

namespace tarnwick::platform {
namespace {

namespace key = hot_key_modifier;

/// Shift, Lock, Control, Mod1 to Mod5 as most keyboards have them.
ModifierKeysyms usual() {
    return {{{XKB_KEY_Shift_L, XKB_KEY_Shift_R},
             {XKB_KEY_Caps_Lock},
             {XKB_KEY_Control_L, XKB_KEY_Control_R},
             {XKB_KEY_Alt_L, XKB_KEY_Meta_L},
             {XKB_KEY_Num_Lock},
             {},
             {XKB_KEY_Super_L, XKB_KEY_Hyper_L},
             {XKB_KEY_ISO_Level3_Shift}}};
}

TEST(X11Modifiers, AreFoundWhereMostKeyboardsHaveThem) {
    const X11Modifiers modifiers = modifiersOf(usual());
    EXPECT_EQ(modifiers.option, XCB_MOD_MASK_1);
    EXPECT_EQ(modifiers.numLock, XCB_MOD_MASK_2);
    EXPECT_EQ(modifiers.scrollLock, 0);
    EXPECT_EQ(modifiers.command, XCB_MOD_MASK_4);
    EXPECT_EQ(modifiers.locks(), XCB_MOD_MASK_LOCK | XCB_MOD_MASK_2);
}

TEST(X11Modifiers, AreFoundElsewhere) {
    ModifierKeysyms keysyms;
    keysyms[3] = {XKB_KEY_Super_R};
    keysyms[4] = {XKB_KEY_Scroll_Lock};
    keysyms[5] = {XKB_KEY_Alt_R};
    keysyms[7] = {XKB_KEY_Num_Lock};
    const X11Modifiers modifiers = modifiersOf(keysyms);
    EXPECT_EQ(modifiers.command, XCB_MOD_MASK_1);
    EXPECT_EQ(modifiers.scrollLock, XCB_MOD_MASK_2);
    EXPECT_EQ(modifiers.option, XCB_MOD_MASK_3);
    EXPECT_EQ(modifiers.numLock, XCB_MOD_MASK_5);
    EXPECT_EQ(modifiers.locks(), XCB_MOD_MASK_LOCK | XCB_MOD_MASK_2 | XCB_MOD_MASK_5);
}

TEST(X11Modifiers, OfSeveralTakeTheFirst) {
    ModifierKeysyms keysyms;
    keysyms[5] = {XKB_KEY_Super_L};
    keysyms[6] = {XKB_KEY_Super_L};
    EXPECT_EQ(modifiersOf(keysyms).command, XCB_MOD_MASK_3);
}

TEST(X11Modifiers, DoNotMistakeShiftLockAndControlForOthers) {
    ModifierKeysyms keysyms;
    keysyms[0] = {XKB_KEY_Super_L};
    keysyms[1] = {XKB_KEY_Num_Lock};
    keysyms[2] = {XKB_KEY_Alt_L};
    EXPECT_EQ(modifiersOf(keysyms), X11Modifiers());
}

TEST(X11Modifiers, AddUpForASumOfFlags) {
    const X11Modifiers modifiers = modifiersOf(usual());
    EXPECT_EQ(modifiers.bits(0), 0);
    EXPECT_EQ(modifiers.bits(key::kCommand), XCB_MOD_MASK_4);
    EXPECT_EQ(modifiers.bits(key::kCommand | key::kShift), XCB_MOD_MASK_4 | XCB_MOD_MASK_SHIFT);
    EXPECT_EQ(modifiers.bits(key::kCommand | key::kOption), XCB_MOD_MASK_4 | XCB_MOD_MASK_1);
    EXPECT_EQ(modifiers.bits(key::kCommand | key::kControl), XCB_MOD_MASK_4 | XCB_MOD_MASK_CONTROL);
}

TEST(X11Modifiers, AreAbsentWhereOneHasNoKey) {
    ModifierKeysyms keysyms = usual();
    keysyms[6] = {};
    EXPECT_EQ(modifiersOf(keysyms).bits(key::kCommand), std::nullopt);
    EXPECT_EQ(modifiersOf(keysyms).bits(key::kOption), XCB_MOD_MASK_1);
    EXPECT_EQ(X11Modifiers().bits(key::kOption), std::nullopt);
    // These need no mapping.
    EXPECT_EQ(X11Modifiers().bits(key::kShift | key::kControl),
              XCB_MOD_MASK_SHIFT | XCB_MOD_MASK_CONTROL);
}

}  // namespace
}  // namespace tarnwick::platform
