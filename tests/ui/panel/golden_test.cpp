// Whole pages against tests/golden/home_*.txt. After a change that is meant, run the tests with
// TARNWICK_RENEW_GOLDEN=1 to write the files anew, and read the difference before committing it.
#include <cstdlib>
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>

#include "tests/ui/panel/home_fixtures.h"
#include "tests/ui/panel/page_text.h"

namespace tarnwick {
namespace {

class GoldenHomePage : public ::testing::TestWithParam<testing::HomeState> {};

TEST_P(GoldenHomePage, IsAsItWas) {
    const testing::PlainByteCountFormatter formatter;
    const std::string text = testing::pageText(homePage(GetParam().inputs, formatter));
    const std::string path =
        std::string(TARNWICK_GOLDEN) + "/home_" + std::string(GetParam().name) + ".txt";
    if (std::getenv("TARNWICK_RENEW_GOLDEN") != nullptr) {
        std::ofstream(path, std::ios::binary) << text;
    }
    std::ostringstream golden;
    golden << std::ifstream(path, std::ios::binary).rdbuf();
    EXPECT_EQ(text, golden.str());
}

INSTANTIATE_TEST_SUITE_P(, GoldenHomePage, ::testing::ValuesIn(testing::homeStates()),
                         [](const auto& row) { return std::string(row.param.name); });

}  // namespace
}  // namespace tarnwick
