// SPDX-License-Identifier: MIT
#include "ui/settings/display_mode_card.h"

#include <gtest/gtest.h>

namespace tarnwick {
namespace {

constexpr auto kIconOnly = MenuBarDisplayMode::iconOnly;
constexpr auto kAdvanced = MenuBarDisplayMode::advanced;

TEST(DisplayModeCard, IconOnlyHasItsTexts) {
    const DisplayModeCard card{kIconOnly, kAdvanced};
    EXPECT_EQ(card.title(), "Icon Only");
    EXPECT_EQ(card.description(), "Show only the status icon in the menu bar.");
}

TEST(DisplayModeCard, AdvancedHasItsTexts) {
    const DisplayModeCard card{kAdvanced, kIconOnly};
    EXPECT_EQ(card.title(), "Advanced");
    EXPECT_EQ(card.description(), "Show the status icon plus one live metric summary.");
}

TEST(DisplayModeCard, IsMarkedWhereItsModeIsSelected) {
    for (const auto selection : {kIconOnly, kAdvanced}) {
        for (const auto mode : {kIconOnly, kAdvanced}) {
            const DisplayModeCard card{mode, selection};
            EXPECT_EQ(card.isSelected(), mode == selection);
            EXPECT_EQ(card.radioIcon(), mode == selection ? "largecircle.fill.circle" : "circle");
        }
    }
}

TEST(DisplayModePreview, LooksLikeTheStatusItem) {
    const DisplayModePreview advanced = DisplayModeCard{kAdvanced, kIconOnly}.preview();
    EXPECT_EQ(advanced.icon(), "info.circle.fill");
    EXPECT_EQ(advanced.tint(), Tint::yellow);
    EXPECT_EQ(advanced.text(), "RAM 80%");
    const DisplayModePreview iconOnly = DisplayModeCard{kIconOnly, kIconOnly}.preview();
    EXPECT_EQ(iconOnly.icon(), "checkmark.circle.fill");
    EXPECT_EQ(iconOnly.tint(), Tint::green);
    EXPECT_EQ(iconOnly.text(), "");
    EXPECT_EQ(DisplayModePreview::kHeight, 56);
}

}  // namespace
}  // namespace tarnwick
