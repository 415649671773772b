// SPDX-License-Identifier: MIT
#include "services/gpu_candidate.h"

#include <cstddef>
#include <gtest/gtest.h>
#include <limits>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace tarnwick {
namespace {

using platform::PropertyDictionary;
using platform::PropertyValue;

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

PropertyValue text(std::string value) {
    return value;
}

PropertyValue bytes(std::string_view value) {
    const auto span = std::as_bytes(std::span(value));
    return std::vector<std::byte>(span.begin(), span.end());
}

GPUInfo candidateOf(PropertyDictionary statistics) {
    const auto candidate = gpuCandidate({{"PerformanceStatistics", std::move(statistics)}});
    EXPECT_TRUE(candidate);
    return candidate.value_or(GPUInfo{});
}

void expectUsages(PropertyDictionary statistics, double usage, double renderer, double tiler) {
    const GPUInfo info = candidateOf(std::move(statistics));
    EXPECT_EQ(info.usagePercentage, usage);
    EXPECT_EQ(info.rendererUtilizationPercentage, renderer);
    EXPECT_EQ(info.tilerUtilizationPercentage, tiler);
    EXPECT_TRUE(info.isAvailable);
}

TEST(GPUCandidate, NeedsADictionaryOfStatistics) {
    EXPECT_FALSE(gpuCandidate({}));
    EXPECT_FALSE(gpuCandidate({{"model", text("Graphics")}}));
    EXPECT_FALSE(gpuCandidate({{"PerformanceStatistics", PropertyValue{}}}));
    EXPECT_FALSE(gpuCandidate({{"PerformanceStatistics", text("37")}}));
    EXPECT_FALSE(gpuCandidate({{"PerformanceStatistics", 37.0}}));
    EXPECT_FALSE(gpuCandidate({{"Device Utilization %", 37.0}}));
}

TEST(GPUCandidate, WithoutAnyKeyIsIdle) {
    expectUsages({}, 0, 0, 0);
    expectUsages({{"Temperature(C)", 61.0}}, 0, 0, 0);
}

TEST(GPUCandidate, EveryQuantityHasItsKey) {
    expectUsages({{"Device Utilization %", 50.0},
                  {"Renderer Utilization %", 40.0},
                  {"Tiler Utilization %", 30.0}},
                 50, 40, 30);
}

TEST(GPUCandidate, GPUActivityStandsForAllThree) {
    expectUsages({{"GPU Activity(%)", std::int64_t{37}}}, 37, 37, 37);
}

TEST(GPUCandidate, GPUActivityComesAfterTheOtherKeys) {
    expectUsages({{"GPU Activity(%)", 70.0}, {"Device Utilization %", 50.0}}, 50, 70, 50);
    expectUsages({{"GPU Activity(%)", 70.0}, {"Renderer Utilization %", 20.0}}, 70, 20, 70);
    expectUsages({{"GPU Activity(%)", 70.0}, {"Tiler Utilization %", 10.0}}, 70, 70, 10);
}

TEST(GPUCandidate, WithoutADeviceKeyTheLargerOfTheOthersIsTheUsage) {
    expectUsages({{"Renderer Utilization %", 20.0}, {"Tiler Utilization %", 35.0}}, 35, 20, 35);
    expectUsages({{"Renderer Utilization %", 45.0}, {"Tiler Utilization %", 35.0}}, 45, 45, 35);
    expectUsages({{"Renderer Utilization %", 45.0}}, 45, 45, 45);
    expectUsages({{"Tiler Utilization %", 35.0}}, 35, 35, 35);
}

TEST(GPUCandidate, AMissingRendererOrTilerTakesTheUsage) {
    expectUsages({{"Device Utilization %", 60.0}, {"Tiler Utilization %", 35.0}}, 60, 60, 35);
    expectUsages({{"Device Utilization %", 60.0}, {"Renderer Utilization %", 35.0}}, 60, 35, 60);
}

TEST(GPUCandidate, ZeroIsAValue) {
    expectUsages({{"Device Utilization %", std::int64_t{0}}, {"GPU Activity(%)", 90.0}}, 0, 90, 0);
}

TEST(GPUCandidate, PercentagesStayWithinBounds) {
    expectUsages({{"Device Utilization %", 140.0}}, 100, 100, 100);
    expectUsages({{"Device Utilization %", std::int64_t{-5}}}, 0, 0, 0);
    expectUsages({{"Device Utilization %", 50.0},
                  {"Renderer Utilization %", 100.5},
                  {"Tiler Utilization %", -0.5}},
                 50, 100, 0);
    // The larger of the two is taken before anything is clamped.
    expectUsages({{"Renderer Utilization %", -20.0}, {"Tiler Utilization %", -35.0}}, 0, 0, 0);
}

TEST(GPUCandidate, WhatIsNotFiniteIsZero) {
    expectUsages({{"Device Utilization %", infinity}}, 0, 0, 0);
    expectUsages({{"Device Utilization %", notANumber}, {"Renderer Utilization %", -infinity}}, 0,
                 0, 0);
    expectUsages({{"Renderer Utilization %", infinity}, {"Tiler Utilization %", 35.0}}, 0, 0, 35);
}

TEST(GPUCandidate, ATextIsTheNumberAtItsStart) {
    expectUsages({{"Device Utilization %", text("42.5")}}, 42.5, 42.5, 42.5);
    expectUsages({{"Device Utilization %", text("  12 %")}}, 12, 12, 12);
    expectUsages({{"Device Utilization %", text("140")}}, 100, 100, 100);
}

TEST(GPUCandidate, ATextThatIsNoNumberIsZeroAndNoFurtherKeyIsTried) {
    expectUsages({{"Device Utilization %", text("busy")}, {"GPU Activity(%)", 70.0}}, 0, 70, 0);
    expectUsages({{"Renderer Utilization %", text("")}, {"GPU Activity(%)", 70.0}}, 70, 0, 70);
}

TEST(GPUCandidate, AValueOfAnotherTypeMovesOnToTheNextKey) {
    for (const PropertyValue& other :
         {PropertyValue{}, bytes("50"), PropertyValue{PropertyDictionary{}}}) {
        expectUsages({{"Device Utilization %", other}, {"GPU Activity(%)", 70.0}}, 70, 70, 70);
        expectUsages({{"Renderer Utilization %", other}, {"GPU Activity(%)", 70.0}}, 70, 70, 70);
        expectUsages({{"Tiler Utilization %", other}, {"Device Utilization %", 70.0}}, 70, 70, 70);
    }
}

TEST(GPUCandidate, CarriesNameAndCores) {
    const auto info = gpuCandidate({{"model", text("Graphics M2")},
                                    {"gpu-core-count", std::int64_t{10}},
                                    {"PerformanceStatistics", PropertyDictionary{}}});
    ASSERT_TRUE(info);
    EXPECT_EQ(info->modelName, "Graphics M2");
    EXPECT_EQ(info->coreCount, 10);
    EXPECT_EQ(candidateOf({}).modelName, "");
    EXPECT_EQ(candidateOf({}).coreCount, 0);
}

std::string modelOf(const PropertyValue& model) {
    return gpuModelName(&model);
}

TEST(GPUModelName, OfATextIsTheTextAsItIs) {
    EXPECT_EQ(modelOf(text("  Graphics ")), "  Graphics ");
    EXPECT_EQ(modelOf(text(std::string("a\0b", 3))), std::string("a\0b", 3));
    EXPECT_EQ(modelOf(text("")), "");
}

TEST(GPUModelName, OfBytesHasNoNulCharacters) {
    EXPECT_EQ(modelOf(bytes(std::string_view("Graphics\0", 9))), "Graphics");
    EXPECT_EQ(modelOf(bytes(std::string_view("\0Gra\0\0phics\0\0", 13))), "Graphics");
    EXPECT_EQ(modelOf(bytes("Grafikl\xC3\xB6sung")), "Grafikl\xC3\xB6sung");
    EXPECT_EQ(modelOf(bytes("")), "");
}

TEST(GPUModelName, OfBytesThatAreNoTextIsMissing) {
    EXPECT_EQ(modelOf(bytes("Graphics \xFF")), "");
    EXPECT_EQ(modelOf(bytes(std::string_view("Graphics \xC3\0", 11))), "");
}

TEST(GPUModelName, OfAnythingElseIsEmpty) {
    EXPECT_EQ(gpuModelName(nullptr), "");
    EXPECT_EQ(modelOf(PropertyValue{}), "");
    EXPECT_EQ(modelOf(5.0), "");
    EXPECT_EQ(modelOf(std::int64_t{5}), "");
    EXPECT_EQ(modelOf(PropertyDictionary{}), "");
}

std::int64_t coresOf(const PropertyValue& count) {
    return gpuCoreCount(&count);
}

TEST(GPUCoreCount, OfANumberIsItsIntegerValue) {
    EXPECT_EQ(coresOf(std::int64_t{10}), 10);
    EXPECT_EQ(coresOf(std::int64_t{-3}), -3);
    EXPECT_EQ(coresOf(9.9), 9);
    EXPECT_EQ(coresOf(-9.9), -9);
    EXPECT_EQ(coresOf(notANumber), 0);
    EXPECT_EQ(coresOf(infinity), 0);
    EXPECT_EQ(coresOf(0x1p63), 0);
}

TEST(GPUCoreCount, OfATextIsTheWholeDecimalInteger) {
    EXPECT_EQ(coresOf(text("38")), 38);
    EXPECT_EQ(coresOf(text("+38")), 38);
    EXPECT_EQ(coresOf(text("-38")), -38);
    for (const char* invalid : {"", " 38", "38 ", "38 cores", "3.8", "many"}) {
        EXPECT_EQ(coresOf(text(invalid)), 0) << invalid;
    }
}

TEST(GPUCoreCount, OfAnythingElseIsZero) {
    EXPECT_EQ(gpuCoreCount(nullptr), 0);
    EXPECT_EQ(coresOf(PropertyValue{}), 0);
    EXPECT_EQ(coresOf(bytes("38")), 0);
    EXPECT_EQ(coresOf(PropertyDictionary{}), 0);
}

}  // namespace
}  // namespace tarnwick
