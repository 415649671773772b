// SPDX-License-Identifier: MIT
#include "platform/linux/kernel/proc_uptime.h"

#include <cstddef>
#include <gtest/gtest.h>
#include <string>

namespace tarnwick::platform {
namespace {

TEST(ProcUptime, IsTheFirstFigure) {
    EXPECT_EQ(parseUptime("190643.27 1502331.80\n"), 190643.27);
    EXPECT_EQ(parseUptime("0.00 0.00\n"), 0);
}

TEST(ProcUptime, IsAbsentWhereverItsFigureIsCutOff) {
    const std::string text = "190643.27";
    for (std::size_t size = 0; size <= text.size(); ++size) {
        EXPECT_EQ(parseUptime(text.substr(0, size)), std::nullopt) << size;
    }
}

TEST(ProcUptime, IsAbsentInGarbage) {
    for (const char* text : {"-1.00 2.00\n", "nan 1\n", "inf 1\n", "1e3 4\n", " 12.00 1\n", "x 1\n",
                             "9999999999999.00 1\n", "12,5 1\n"}) {
        EXPECT_EQ(parseUptime(text), std::nullopt) << text;
    }
}

}  // namespace
}  // namespace tarnwick::platform
