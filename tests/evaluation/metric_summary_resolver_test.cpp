// SPDX-License-Identifier: MIT
#include "evaluation/metric_summary_resolver.h"

#include <gtest/gtest.h>
#include <limits>
#include <string>
#include <vector>

namespace tarnwick {
namespace {

using MetricSummaryResolver::best;
using MetricSummaryResolver::candidates;

/// Every pair at 50 and 80.
MetricThresholds even() {
    return {50, 80, 50, 80, 50, 80, 50, 80};
}

TEST(MetricSummaryResolver, NothingBelowItsNormalThresholdIsACandidate) {
    EXPECT_TRUE(candidates(true, even(), 49.99, 0, -3, 49.99).empty());
}

TEST(MetricSummaryResolver, AValueAtTheNormalThresholdIsInfo) {
    const auto list = candidates(true, even(), 50, 0, 0, 0);
    ASSERT_EQ(list.size(), 1u);
    EXPECT_EQ(list[0].severity, MetricSeverity::info);
    EXPECT_EQ(list[0].menuBarText, "CPU 50%");
    EXPECT_EQ(list[0].popoverText, "CPU usage is at 50%, above the normal threshold.");
    EXPECT_EQ(list[0].tieBreakScore, 0);
}

TEST(MetricSummaryResolver, AValueAtTheHighThresholdIsAWarningWithoutScore) {
    const auto list = candidates(true, even(), 80, 0, 0, 0);
    ASSERT_EQ(list.size(), 1u);
    EXPECT_EQ(list[0].severity, MetricSeverity::warning);
    EXPECT_EQ(list[0].popoverText, "CPU usage is at 80%, above the high threshold.");
    EXPECT_EQ(list[0].tieBreakScore, 0);
}

TEST(MetricSummaryResolver, TheSeverityOfAValueIsThatOfItsCandidate) {
    using MetricSummaryResolver::severity;
    EXPECT_EQ(severity(49.99, {50, 80}), MetricSeverity::ok);
    EXPECT_EQ(severity(50, {50, 80}), MetricSeverity::info);
    EXPECT_EQ(severity(80, {50, 80}), MetricSeverity::warning);
    EXPECT_EQ(severity(std::numeric_limits<double>::quiet_NaN(), {50, 80}), MetricSeverity::ok);
    // The pair is normalised: 90 and 91.
    EXPECT_EQ(severity(90.5, {90, 10}), MetricSeverity::info);
}

TEST(MetricSummaryResolver, TheScoreIsTheDistanceFromTheCrossedThreshold) {
    EXPECT_EQ(candidates(true, even(), 79, 0, 0, 0)[0].tieBreakScore, 29);
    EXPECT_EQ(candidates(true, even(), 95.5, 0, 0, 0)[0].tieBreakScore, 15.5);
}

TEST(MetricSummaryResolver, CandidatesComeInTheOrderCPUThenGPUThenMemoryThenStorage) {
    const auto list = candidates(true, even(), 51, 92, 53, 94);
    ASSERT_EQ(list.size(), 4u);
    EXPECT_EQ(list[0].menuBarText, "CPU 51%");
    EXPECT_EQ(list[1].menuBarText, "GPU 92%");
    EXPECT_EQ(list[2].menuBarText, "RAM 53%");
    EXPECT_EQ(list[3].menuBarText, "Disk 94%");
    EXPECT_EQ(list[0].popoverText, "CPU usage is at 51%, above the normal threshold.");
    EXPECT_EQ(list[1].popoverText, "GPU usage is at 92%, above the high threshold.");
    EXPECT_EQ(list[2].popoverText, "Memory usage is at 53%, above the normal threshold.");
    EXPECT_EQ(list[3].popoverText, "Storage usage is at 94%, above the high threshold.");
}

TEST(MetricSummaryResolver, EachMetricIsJudgedAgainstItsOwnPair) {
    const MetricThresholds thresholds{10, 20, 30, 40, 50, 60, 70, 80};
    const auto list = candidates(true, thresholds, 15, 35, 55, 75);
    ASSERT_EQ(list.size(), 4u);
    for (const Candidate& candidate : list) {
        EXPECT_EQ(candidate.severity, MetricSeverity::info) << candidate.menuBarText;
        EXPECT_EQ(candidate.tieBreakScore, 5) << candidate.menuBarText;
    }
    for (const Candidate& candidate : candidates(true, thresholds, 21, 41, 61, 81)) {
        EXPECT_EQ(candidate.severity, MetricSeverity::warning) << candidate.menuBarText;
        EXPECT_EQ(candidate.tieBreakScore, 1) << candidate.menuBarText;
    }
}

TEST(MetricSummaryResolver, AnUnavailableGPUIsIgnoredEvenAtFullUse) {
    EXPECT_TRUE(candidates(false, even(), 0, 100, 0, 0).empty());
}

TEST(MetricSummaryResolver, ThresholdsOfZeroActAsOneAndTwo) {
    MetricThresholds thresholds;
    thresholds.cpuNormal = 0;
    thresholds.cpuHigh = 0;
    EXPECT_TRUE(candidates(false, thresholds, 0.99, 0, 0, 0).empty());
    EXPECT_EQ(candidates(false, thresholds, 1.0, 0, 0, 0).at(0).severity, MetricSeverity::info);
    EXPECT_EQ(candidates(false, thresholds, 2.0, 0, 0, 0).at(0).severity, MetricSeverity::warning);
}

TEST(MetricSummaryResolver, ThresholdsOfAHundredAndFiftyActAsNinetyNineAndAHundred) {
    MetricThresholds thresholds;
    thresholds.storageNormal = 100;
    thresholds.storageHigh = 50;
    EXPECT_TRUE(candidates(false, thresholds, 0, 0, 0, 98.9).empty());
    EXPECT_EQ(candidates(false, thresholds, 0, 0, 0, 99).at(0).severity, MetricSeverity::info);
    EXPECT_EQ(candidates(false, thresholds, 0, 0, 0, 100).at(0).severity, MetricSeverity::warning);
}

TEST(MetricSummaryResolver, EveryPairIsSanitised) {
    const MetricThresholds zero{0, 0, 0, 0, 0, 0, 0, 0};
    EXPECT_EQ(candidates(true, zero, 1, 1, 1, 1).size(), 4u);
    EXPECT_TRUE(candidates(true, zero, 0.5, 0.5, 0.5, 0.5).empty());
}

TEST(MetricSummaryResolver, ValuesAreRoundedToWholePercentAndNotClamped) {
    const MetricThresholds zero{0, 0, 0, 0, 0, 0, 0, 0};
    EXPECT_EQ(candidates(false, zero, 99.6, 0, 0, 0).at(0).menuBarText, "CPU 100%");
    EXPECT_EQ(candidates(false, zero, 99.4, 0, 0, 0).at(0).menuBarText, "CPU 99%");
    EXPECT_EQ(candidates(false, zero, 130, 0, 0, 0).at(0).menuBarText, "CPU 130%");
    EXPECT_EQ(candidates(false, zero, 130, 0, 0, 0).at(0).tieBreakScore, 128);
}

TEST(MetricSummaryResolver, AValueThatIsNotANumberReachesNothing) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    EXPECT_TRUE(candidates(true, even(), nan, nan, nan, nan).empty());
}

TEST(MetricSummaryResolver, AnEqualDistanceGoesToTheEarlierMetric) {
    EXPECT_EQ(best(candidates(true, even(), 85, 0, 85, 0)).menuBarText, "CPU 85%");
    EXPECT_EQ(best(candidates(true, even(), 0, 85, 85, 85)).menuBarText, "GPU 85%");
}

TEST(MetricSummaryResolver, TheGreaterDistanceWinsAmongEqualSeverities) {
    EXPECT_EQ(best(candidates(true, even(), 85, 0, 85.5, 0)).menuBarText, "RAM 86%");
    EXPECT_EQ(best(candidates(true, even(), 60, 0, 59, 0)).menuBarText, "CPU 60%");
}

TEST(MetricSummaryResolver, AWarningBeatsAnInfoHoweverFarThatIsAbove) {
    MetricThresholds thresholds = even();
    thresholds.cpuNormal = 50;
    thresholds.cpuHigh = 100;
    const auto list = candidates(true, thresholds, 90, 0, 0, 80.1);
    EXPECT_EQ(list.at(0).tieBreakScore, 40);
    EXPECT_EQ(best(list).menuBarText, "Disk 80%");
    EXPECT_EQ(best(list).severity, MetricSeverity::warning);
}

TEST(MetricSummaryResolver, AWarningIsKeptAgainstALaterInfo) {
    EXPECT_EQ(best(candidates(true, even(), 80, 0, 79, 0)).menuBarText, "CPU 80%");
}

TEST(MetricSummaryResolver, TheLongestSentencesAreThoseOfAFullMetricBelowItsHighThreshold) {
    std::vector<std::string> said;
    for (const Candidate& candidate :
         candidates(true, {50, 100, 50, 100, 50, 100, 50, 100}, 99.6, 99.6, 99.6, 99.6)) {
        said.push_back(candidate.popoverText);
    }
    ASSERT_EQ(said.size(), 4u);
    EXPECT_EQ(MetricSummaryResolver::longestPopoverTexts(), said);
    EXPECT_EQ(said.back(), "Storage usage is at 100%, above the normal threshold.");
}

TEST(Candidate, IsBuiltInTheOrderOfItsFields) {
    const Candidate candidate{MetricSeverity::warning, "short", "long", 1.5};
    EXPECT_EQ(candidate.severity, MetricSeverity::warning);
    EXPECT_EQ(candidate.menuBarText, "short");
    EXPECT_EQ(candidate.popoverText, "long");
    EXPECT_EQ(candidate.tieBreakScore, 1.5);
}

TEST(MetricDisplaySummary, IsBuiltInTheOrderOfItsFields) {
    const MetricDisplaySummary summary{MetricSeverity::info, "short", "long"};
    EXPECT_EQ(summary.severity, MetricSeverity::info);
    EXPECT_EQ(summary.menuBarText, "short");
    EXPECT_EQ(summary.popoverText, "long");
}

TEST(MetricDisplaySummary, EqualityLooksAtAllFields) {
    const MetricDisplaySummary summary{MetricSeverity::info, "a", "b"};
    EXPECT_EQ(summary, (MetricDisplaySummary{MetricSeverity::info, "a", "b"}));
    EXPECT_NE(summary, (MetricDisplaySummary{MetricSeverity::ok, "a", "b"}));
    EXPECT_NE(summary, (MetricDisplaySummary{MetricSeverity::info, "x", "b"}));
    EXPECT_NE(summary, (MetricDisplaySummary{MetricSeverity::info, "a", "x"}));
}

}  // namespace
}  // namespace tarnwick
