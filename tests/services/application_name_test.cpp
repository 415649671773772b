// SPDX-License-Identifier: MIT
#include "services/application_name.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>

#include "platform/testing/scripted_process_table.h"

namespace tarnwick {
namespace {

using testing::ElementsAre;

TEST(EnclosingBundlePath, IsTheOutermostBundle) {
    EXPECT_EQ(enclosingBundlePath("/Applications/Outer.app/Contents/Frameworks/Inner.app/inner"),
              "/Applications/Outer.app");
}

TEST(EnclosingBundlePath, IgnoresCase) {
    EXPECT_EQ(enclosingBundlePath("/opt/Foo.APP/foo"), "/opt/Foo.APP");
    EXPECT_EQ(enclosingBundlePath("/opt/Foo.aPp/foo"), "/opt/Foo.aPp");
}

TEST(EnclosingBundlePath, DropsEmptyPieces) {
    EXPECT_EQ(enclosingBundlePath("//a///B.app//c"), "/a/B.app");
    EXPECT_EQ(enclosingBundlePath("a/B.app"), "/a/B.app");
}

TEST(EnclosingBundlePath, MayBeTheExecutableItselfOrOnlyTheSuffix) {
    EXPECT_EQ(enclosingBundlePath("/a/b.app"), "/a/b.app");
    EXPECT_EQ(enclosingBundlePath("/a/.app/b"), "/a/.app");
}

TEST(EnclosingBundlePath, IsAbsentWhenNoPieceEndsSo) {
    EXPECT_EQ(enclosingBundlePath("/usr/bin/ls"), std::nullopt);
    EXPECT_EQ(enclosingBundlePath("/a/B.app2/c"), std::nullopt);
    EXPECT_EQ(enclosingBundlePath("/a/app/c"), std::nullopt);
    EXPECT_EQ(enclosingBundlePath("/a/Xapp/c"), std::nullopt);
    EXPECT_EQ(enclosingBundlePath("/"), std::nullopt);
    EXPECT_EQ(enclosingBundlePath(""), std::nullopt);
}

class ApplicationName : public testing::Test {
 protected:
    std::optional<std::string> name() { return applicationName(table, 7); }

    platform::testing::ScriptedProcessTable table;
};

TEST_F(ApplicationName, OfARegularApplicationIsItsLocalisedName) {
    table.applications[7] = {.activationPolicy = 0, .localizedName = "Karten"};
    table.paths[7] = "/Applications/Maps.app/maps";
    EXPECT_EQ(name(), "Karten");
    // Nothing else is looked up.
    EXPECT_THAT(table.calls(), ElementsAre("runningApplication 7"));
}

TEST_F(ApplicationName, OfARegularApplicationWithoutANameComesFromItsPath) {
    table.applications[7] = {.activationPolicy = 0};
    table.paths[7] = "/Applications/Maps.app/maps";
    EXPECT_EQ(name(), "Maps");
    table.paths[7] = "/usr/bin/maps";
    EXPECT_EQ(name(), "maps");
    table.paths.clear();
    EXPECT_EQ(name(), std::nullopt);
}

TEST_F(ApplicationName, OfAnotherKindOfApplicationIsThatOfItsBundle) {
    table.applications[7] = {.activationPolicy = 1, .localizedName = "Maps Helper"};
    table.paths[7] = "/Applications/Maps.app/Contents/Helper.app/helper";
    EXPECT_EQ(name(), "Maps");
}

TEST_F(ApplicationName, OfAnotherKindOfApplicationWithoutABundleIsItsLocalisedName) {
    for (const std::int64_t policy : {1, 2, -1}) {
        table.applications[7] = {.activationPolicy = policy, .localizedName = "Agent"};
        table.paths[7] = "/usr/libexec/agentd";
        EXPECT_EQ(name(), "Agent");
        table.paths.clear();
        EXPECT_EQ(name(), "Agent");
    }
}

TEST_F(ApplicationName, OfAnotherKindOfApplicationWithoutANameIsItsExecutable) {
    table.applications[7] = {.activationPolicy = 2};
    table.paths[7] = "/usr/libexec/agentd";
    EXPECT_EQ(name(), "agentd");
    table.paths.clear();
    EXPECT_EQ(name(), std::nullopt);
}

TEST_F(ApplicationName, WithoutAnApplicationIsThatOfTheBundleOrTheExecutable) {
    table.paths[7] = "/Applications/Maps.app/maps";
    EXPECT_EQ(name(), "Maps");
    table.paths[7] = "/usr/bin/make";
    EXPECT_EQ(name(), "make");
    table.paths[7] = "/usr/bin/make/";
    EXPECT_EQ(name(), "make");
    table.paths[7] = "make";
    EXPECT_EQ(name(), "make");
    table.paths[7] = "/";
    EXPECT_EQ(name(), "/");
}

TEST_F(ApplicationName, WithoutAnApplicationAndAPathThereIsNone) {
    EXPECT_EQ(name(), std::nullopt);
    EXPECT_THAT(table.calls(), ElementsAre("runningApplication 7", "executablePath 7"));
}

TEST_F(ApplicationName, AsksForTheDisplayNameOfTheOutermostBundle) {
    table.paths[7] = "/Applications/Outer.app/Contents/Frameworks/Inner.app/Contents/MacOS/inner";
    table.displayNames["/Applications/Outer.app"] = "The Outer One";
    table.displayNames["/Applications/Outer.app/Contents/Frameworks/Inner.app"] = "Wrong";
    EXPECT_EQ(name(), "The Outer One");
}

TEST_F(ApplicationName, LosesTheSuffixOnlyInItsExactCase) {
    table.paths[7] = "/Applications/x.app/x";
    table.displayNames["/Applications/x.app"] = "Foo.app";
    EXPECT_EQ(name(), "Foo");
    table.displayNames["/Applications/x.app"] = "Foo.APP";
    EXPECT_EQ(name(), "Foo.APP");
    table.displayNames["/Applications/x.app"] = "Foo.app.app";
    EXPECT_EQ(name(), "Foo.app");
    table.displayNames["/Applications/x.app"] = "Foo.app 2";
    EXPECT_EQ(name(), "Foo.app 2");
}

TEST_F(ApplicationName, RepairsAPathThatIsNotUTF8) {
    table.paths[7] = "/opt/caf\xE9";
    EXPECT_EQ(name(), "caf\xEF\xBF\xBD");
}

}  // namespace
}  // namespace tarnwick
