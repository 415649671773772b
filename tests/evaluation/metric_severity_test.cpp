// SPDX-License-Identifier: MIT
#include "evaluation/metric_severity.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <limits>
#include <unordered_set>

namespace tarnwick {
namespace {

TEST(MetricSeverity, RawValuesZeroToTwoMakeASeverity) {
    EXPECT_EQ(metricSeverityFromRawValue(0), MetricSeverity::ok);
    EXPECT_EQ(metricSeverityFromRawValue(1), MetricSeverity::info);
    EXPECT_EQ(metricSeverityFromRawValue(2), MetricSeverity::warning);
}

TEST(MetricSeverity, EveryOtherRawValueMakesNone) {
    for (const std::int64_t raw :
         {std::int64_t{-1}, std::int64_t{3}, std::int64_t{1} << 32,
          std::numeric_limits<std::int64_t>::min(), std::numeric_limits<std::int64_t>::max()}) {
        EXPECT_FALSE(metricSeverityFromRawValue(raw)) << raw;
    }
}

TEST(MetricSeverity, ComparesByRawValue) {
    EXPECT_LT(MetricSeverity::ok, MetricSeverity::info);
    EXPECT_LT(MetricSeverity::info, MetricSeverity::warning);
    EXPECT_EQ(static_cast<std::int32_t>(MetricSeverity::warning), 2);
}

TEST(MetricSeverity, Hashes) {
    const std::unordered_set<MetricSeverity> set = {MetricSeverity::ok, MetricSeverity::warning,
                                                    MetricSeverity::ok};
    EXPECT_EQ(set.size(), 2u);
    EXPECT_TRUE(set.contains(MetricSeverity::warning));
}

TEST(MetricSeverity, HasASymbolAndATint) {
    EXPECT_EQ(symbolName(MetricSeverity::ok), "checkmark.circle.fill");
    EXPECT_EQ(symbolName(MetricSeverity::info), "info.circle.fill");
    EXPECT_EQ(symbolName(MetricSeverity::warning), "exclamationmark.triangle.fill");
    EXPECT_EQ(tint(MetricSeverity::ok), Tint::green);
    EXPECT_EQ(tint(MetricSeverity::info), Tint::yellow);
    EXPECT_EQ(tint(MetricSeverity::warning), Tint::red);
}

}  // namespace
}  // namespace tarnwick
