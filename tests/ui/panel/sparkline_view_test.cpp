// SPDX-License-Identifier: MIT
#include "ui/panel/sparkline_view.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ui/panel/blocks.h"

namespace tarnwick {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

std::vector<SparklinePoint> points(std::vector<double> values) {
    return SparklineView{std::move(values), Tint::green}.points(120, 28);
}

TEST(SparklineView, SpreadsItsPointsOverTheFrame) {
    EXPECT_THAT(points({10, 30, 20}),
                ElementsAre(SparklinePoint{0, 28}, SparklinePoint{60, 0}, SparklinePoint{120, 14}));
}

TEST(SparklineView, DrawsAFlatSeriesAtTheBottom) {
    EXPECT_THAT(points({50, 50, 50}), ElementsAre(SparklinePoint{0, 28}, SparklinePoint{60, 28},
                                                  SparklinePoint{120, 28}));
}

TEST(SparklineView, DrawsSmallChangesAgainstOnePercentagePoint) {
    EXPECT_THAT(points({50, 50.25}), ElementsAre(SparklinePoint{0, 28}, SparklinePoint{120, 21}));
    EXPECT_THAT(points({50, 51}), ElementsAre(SparklinePoint{0, 28}, SparklinePoint{120, 0}));
    EXPECT_THAT(points({50, 52}), ElementsAre(SparklinePoint{0, 28}, SparklinePoint{120, 0}));
}

TEST(SparklineView, ALineTakesTwoValues) {
    EXPECT_THAT(points({}), IsEmpty());
    EXPECT_THAT(points({42}), IsEmpty());
    EXPECT_EQ(points({42, 43}).size(), 2U);
}

TEST(SparklineView, IsDrawnWithTheseMeasures) {
    EXPECT_EQ(SparklineView::kLineWidth, 1.8);
    EXPECT_EQ(SparklineView::kMiterLimit, 10);
    EXPECT_EQ(SparklineView::kPlaceholderHeight, 2);
    EXPECT_EQ(SparklineView::kPlaceholderCorner, 3);
    EXPECT_EQ(SparklineView::kPlaceholderOpacity, 0.2);
}

TEST(TrendRow, HasASparklineOfItsValuesInItsColour) {
    const TrendRow row{"CPU", "42%", {1, 2, 3}, Tint::red};
    EXPECT_EQ(row.sparkline(), (SparklineView{{1, 2, 3}, Tint::red}));
    EXPECT_EQ(TrendRow::kSparklineWidth, 120);
    EXPECT_EQ(TrendRow::kSparklineHeight, 28);
    EXPECT_EQ(TrendRow::kSpacing, 10);
    EXPECT_EQ(TrendRow::kTextSpacing, 2);
}

}  // namespace
}  // namespace tarnwick
