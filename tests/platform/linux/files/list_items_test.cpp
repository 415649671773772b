// SPDX-License-Identifier: MIT
#include "platform/linux/files/list_items.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tarnwick::platform {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

TEST(ListItems, AreInTheirOrder) {
    EXPECT_THAT(listItems("/usr/bin:/bin"), ElementsAre("/usr/bin", "/bin"));
    EXPECT_THAT(listItems("KDE"), ElementsAre("KDE"));
    EXPECT_THAT(listItems("GNOME;Unity;", ';'), ElementsAre("GNOME", "Unity"));
}

TEST(ListItems, EmptyOnesAreLeftOut) {
    EXPECT_THAT(listItems(""), IsEmpty());
    EXPECT_THAT(listItems(":"), IsEmpty());
    EXPECT_THAT(listItems("::/bin::/sbin:"), ElementsAre("/bin", "/sbin"));
}

TEST(ListItems, ArePartsOfTheList) {
    const std::string_view list = "one:two";
    EXPECT_EQ(listItems(list)[1].data(), list.data() + 4);
}

}  // namespace
}  // namespace tarnwick::platform
