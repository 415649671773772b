// SPDX-License-Identifier: MIT
#include "platform/platform.h"

#include <gtest/gtest.h>

#include "platform/testing/scripted_kernel.h"

namespace tarnwick::platform {
namespace {

// The only test of its program that installs a platform.
TEST(PlatformDeathTest, ThereIsNoneBeforeItIsInstalled) {
    EXPECT_DEATH(current(), "");
    testing::ScriptedKernel kernel;
    install({.kernel = &kernel});
    EXPECT_EQ(current().kernel, &kernel);
    EXPECT_EQ(current().volumes, nullptr);
}

}  // namespace
}  // namespace tarnwick::platform
