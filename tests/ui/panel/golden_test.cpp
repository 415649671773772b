// SPDX-License-Identifier: MIT
// Whole pages against tests/golden/*.txt. After a change that is meant, run script/golden, which
// writes the files anew and shows the difference, and read that before committing it.
#include <cstdlib>
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>

#include "tests/ui/panel/detail_fixtures.h"
#include "tests/ui/panel/home_fixtures.h"
#include "tests/ui/panel/page_text.h"

namespace tarnwick {
namespace {

void expectGolden(const Page& page, const std::string& name) {
    const std::string text = testing::pageText(page);
    const std::string path = std::string(TARNWICK_GOLDEN) + '/' + name + ".txt";
    if (std::getenv("TARNWICK_RENEW_GOLDEN") != nullptr) {
        std::ofstream(path, std::ios::binary) << text;
    }
    std::ostringstream golden;
    golden << std::ifstream(path, std::ios::binary).rdbuf();
    EXPECT_EQ(text, golden.str());
}

const testing::PlainByteCountFormatter kFormatter;

class GoldenHomePage : public ::testing::TestWithParam<testing::HomeState> {};

TEST_P(GoldenHomePage, IsAsItWas) {
    expectGolden(homePage(GetParam().inputs, kFormatter), "home_" + std::string(GetParam().name));
}

INSTANTIATE_TEST_SUITE_P(, GoldenHomePage, ::testing::ValuesIn(testing::homeStates()),
                         [](const auto& row) { return std::string(row.param.name); });

class GoldenMemoryPage : public ::testing::TestWithParam<testing::MemoryDetailState> {};

TEST_P(GoldenMemoryPage, IsAsItWas) {
    expectGolden(memoryDetailPage(GetParam().inputs, kFormatter),
                 "memory_" + std::string(GetParam().name));
}

INSTANTIATE_TEST_SUITE_P(, GoldenMemoryPage, ::testing::ValuesIn(testing::memoryDetailStates()),
                         [](const auto& row) { return std::string(row.param.name); });

class GoldenPerformancePage : public ::testing::TestWithParam<testing::PerformanceDetailState> {};

TEST_P(GoldenPerformancePage, IsAsItWas) {
    expectGolden(performanceDetailPage(GetParam().inputs, kFormatter),
                 "performance_" + std::string(GetParam().name));
}

INSTANTIATE_TEST_SUITE_P(, GoldenPerformancePage,
                         ::testing::ValuesIn(testing::performanceDetailStates()),
                         [](const auto& row) { return std::string(row.param.name); });

}  // namespace
}  // namespace tarnwick
