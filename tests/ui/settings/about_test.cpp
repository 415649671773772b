// SPDX-License-Identifier: MIT
#include "ui/settings/about.h"

#include <gtest/gtest.h>

namespace tarnwick {
namespace {

TEST(VersionText, HasTheVersionAndTheBuild) {
    EXPECT_EQ(versionText({"1.4", "212"}), "1.4 (212)");
}

TEST(VersionText, SaysWhatIsUnknown) {
    EXPECT_EQ(versionText({"1.4", std::nullopt}), "1.4 (Unknown)");
    EXPECT_EQ(versionText({std::nullopt, "212"}), "Unknown (212)");
    EXPECT_EQ(versionText({}), "Unknown (Unknown)");
}

TEST(VersionText, TakesEveryTextAsItIs) {
    EXPECT_EQ(versionText({"", "  "}), " (  )");
}

}  // namespace
}  // namespace tarnwick
