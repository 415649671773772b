// SPDX-License-Identifier: MIT
#include "platform/linux/events/standard_error.h"

#include <gtest/gtest.h>

namespace tarnwick::platform {
namespace {

TEST(Notice, IsOneLineThatNamesTheProgram) {
    ::testing::internal::CaptureStdout();
    ::testing::internal::CaptureStderr();
    notice("the store is damaged");
    notice("two\nlines\n");
    EXPECT_EQ(::testing::internal::GetCapturedStderr(),
              "tarnwick: the store is damaged\ntarnwick: two lines \n");
    EXPECT_EQ(::testing::internal::GetCapturedStdout(), "");
}

}  // namespace
}  // namespace tarnwick::platform
