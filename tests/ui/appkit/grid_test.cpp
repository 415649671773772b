// SPDX-License-Identifier: MIT
// The measures of the native views of macOS: no compiler and no picture would notice another one.
#include "ui/appkit/grid.h"

#include <gtest/gtest.h>
#include <vector>

#include "app/settings_window.h"
#include "platform/desktop.h"
#include "settings/shortcut_field.h"
#include "ui/panel/blocks.h"
#include "ui/qt/grid.h"
#include "ui/settings/display_mode_card.h"
#include "ui/settings/dual_threshold_slider.h"
#include "ui/settings/settings_page.h"
#include "ui/settings/shortcut_editor.h"
#include "ui/settings/threshold_editor_card.h"

namespace tarnwick::appkit {
namespace {

using platform::StatusItemContent;
using Slider = DualThresholdSlider;

struct Measure {
    const char* of;
    double points;
    double expected;
};

void expectAll(const std::vector<Measure>& measures) {
    for (const Measure& measure : measures) {
        EXPECT_EQ(measure.points, measure.expected) << measure.of;
    }
}

TEST(AppKitGrid, MeasuresTheBlocksOfThePanel) {
    expectAll({
        {"page: width", kPanelWidth, 320},
        {"page: padding", grid::kPagePadding, 16},
        {"page: corner", grid::kPanelCorner, 12},
        {"page: distance from the screen's edges", grid::kScreenMargin, 4},
        {"page: between two blocks", kBlockSpacing, 12},
        {"page: between two bars", kBarSpacing, 11},
        {"page: above the battery", kBatterySpacing, 10},
        {"every block: width", grid::kBlockWidth, 288},
        {"every row: between symbol and text", grid::kSymbolGap, 8},
        {"every row: between mark and figure", grid::kMarkGap, 4},
        {"header: between title and summary", grid::kTitleGap, 4},
        {"header: side of a button", grid::kIconButtonSize, 26},
        {"header: between two buttons", grid::kIconButtonGap, 6},
        {"header of a detail page: between its parts", grid::kColumnGap, 12},
        {"usage bar: height", grid::kBarHeight, 6},
        {"usage bar: corner", grid::kBarCorner, 3},
        {"usage bar: between bar and label", grid::kBarGap, 6},
        {"trend: between texts and line", TrendRow::kSpacing, 10},
        {"trend: between title and value", TrendRow::kTextSpacing, 2},
        {"trend: width of the line", TrendRow::kSparklineWidth, 120},
        {"trend: height of the line", TrendRow::kSparklineHeight, 28},
        {"line: width", SparklineView::kLineWidth, 1.8},
        {"line: beyond its frame", grid::kLineOverhang, 9},
        {"line: height of what stands for it", SparklineView::kPlaceholderHeight, 2},
        {"line: corner of what stands for it", SparklineView::kPlaceholderCorner, 3},
        {"navigation button: height", grid::kNavigationHeight, 28},
        {"list of processes: between two rows", kRowSpacing, 6},
        {"divider: height", grid::kHairline, 1},
        {"footer: between two buttons", FooterRow::kSpacing, 12},
        {"page that is cut off: step of a key", grid::kScrollStep, 40},
    });
}

TEST(AppKitGrid, MeasuresTheItemInTheMenuBar) {
    expectAll({
        {"at both ends", grid::kItemPadding, 4},
        {"between icon and text", StatusItemContent::kSpacing, 4},
        {"greatest width of the text", StatusItemContent::kTextWidth, 72},
        {"font", StatusItemContent::kFontSize, 11},
    });
}

TEST(AppKitGrid, MeasuresTheItemsOfTheSettings) {
    expectAll({
        {"page: padding", grid::kSettingsPadding, 20},
        {"page: between two items", SettingsPage::kItemSpacing, 12},
        {"card: padding", grid::kCardPadding, 12},
        {"card: corner", grid::kCardCorner, 8},
        {"card: between its parts", grid::kPartGap, 8},
        {"card: width of a caption", grid::kCaptionWidth, 408},
        {"switch: between title and caption", grid::kTextGap, 4},
        {"display mode: height of the preview", DisplayModePreview::kHeight, 56},
        {"display mode: corner of the preview", grid::kStripCorner, 8},
        {"shortcut: width of the field", ShortcutEditor::kFieldWidth, 220},
        {"shortcut: height of the field", ShortcutField::kHeight, 24},
        {"thresholds: between the two values", ThresholdEditorCard::kPillSpacing, 10},
        {"thresholds: dot of a value", ThresholdValuePill::kDotSize, 8},
        {"thresholds: between dot and value", grid::kPillGap, 4},
        {"slider: height", Slider::kHitSize, 28},
        {"slider: thumb", Slider::kThumbSize, 20},
        {"slider: dot of a thumb", grid::kThumbDot, 8},
        {"slider: track", Slider::kTrackHeight, 6},
    });
}

TEST(AppKitGrid, HasRoomForTheTextsOfATrend) {
    EXPECT_GE(grid::kBlockWidth - TrendRow::kSparklineWidth - TrendRow::kSpacing, 150);
    // What is drawn beyond the line's frame stays within the panel, and off the block above.
    EXPECT_LE(grid::kLineOverhang, grid::kPagePadding);
    EXPECT_LE(grid::kLineOverhang, kBlockSpacing);
}

TEST(AppKitGrid, HasRoomForACaptionBesideASymbol) {
    // The bar of a user who always wants to see it takes its room from the page.
    constexpr double kScroller = 16;
    constexpr double kSymbol = 16;
    const double card =
        SettingsWindow::kWidth - kScroller - 2 * grid::kSettingsPadding - 2 * grid::kCardPadding;
    EXPECT_LE(grid::kCaptionWidth + grid::kPartGap + kSymbol, card);
    EXPECT_LE(grid::kCaptionWidth, card);
}

TEST(AppKitGrid, HasRoomForTheSlidersParts) {
    EXPECT_LE(Slider::kThumbSize, Slider::kHitSize);
    // The ticks, too, lie within what is drawn.
    EXPECT_LE(Slider::kTrackHeight / 2 + Slider::kTickGap + Slider::kTickHeight,
              Slider::kHitSize / 2);
    EXPECT_LT(grid::kThumbDot, Slider::kThumbSize);
}

TEST(AppKitGrid, IsThatOfTheOtherDesktopWhereBothHaveOne) {
    expectAll({
        {"padding", grid::kPagePadding, qt::grid::kPadding},
        {"corner", grid::kPanelCorner, qt::grid::kPanelCorner},
        {"symbol", grid::kSymbolGap, qt::grid::kSymbolGap},
        {"mark", grid::kMarkGap, qt::grid::kMarkGap},
        {"columns", grid::kColumnGap, qt::grid::kColumnGap},
        {"bar: height", grid::kBarHeight, qt::grid::kBarHeight},
        {"bar: corner", grid::kBarCorner, qt::grid::kBarCorner},
        {"bar: label", grid::kBarGap, qt::grid::kBarGap},
        {"icon button", grid::kIconButtonSize, qt::grid::kIconButtonSize},
        {"between icon buttons", grid::kIconButtonGap, qt::grid::kIconButtonGap},
        {"hairline", grid::kHairline, qt::grid::kHairline},
    });
}

}  // namespace
}  // namespace tarnwick::appkit
