#include "platform/linux/applications/desktop_command.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tarnwick::platform {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

std::vector<std::string> words(std::string_view exec) {
    return desktopCommand(exec, {.name = "Ada's Monitor", .icon = "ada", .file = "/a b.desktop"});
}

TEST(DesktopCommand, IsDividedAtSpaces) {
    EXPECT_THAT(words("qps"), ElementsAre("qps"));
    EXPECT_THAT(words("  /usr/bin/monitor  --all\t-v "),
                ElementsAre("/usr/bin/monitor", "--all", "-v"));
    EXPECT_THAT(words(""), IsEmpty());
    EXPECT_THAT(words("   "), IsEmpty());
}

TEST(DesktopCommand, KeepsQuotedWordsTogether) {
    EXPECT_THAT(words(R"("/opt/a program" "" x"y z"w)"),
                ElementsAre("/opt/a program", "", "xy zw"));
    // The value's own escapes come first: four backslashes are one.
    EXPECT_THAT(words(R"(m "a\\"b\\\\c\\$d\\`e\\x")"), ElementsAre("m", R"(a"b\c$d`e\x)"));
}

TEST(DesktopCommand, KnowsTheQuotesOfAShell) {
    EXPECT_THAT(words(R"(sh -c 'exec "monitor" %u')"),
                ElementsAre("sh", "-c", R"(exec "monitor" %u)"));
    EXPECT_THAT(words(R"(a\\ b)"), ElementsAre("a b"));
}

TEST(DesktopCommand, HasNoFilesToOpen) {
    EXPECT_THAT(words("m %f %F %u %U -x%u %d%D%n%N%v%m"), ElementsAre("m", "-x"));
}

TEST(DesktopCommand, FillsInWhatTheEntrySays) {
    EXPECT_THAT(words("m --caption=%c %i %k 100%% \"50%%\""),
                ElementsAre("m", "--caption=Ada's Monitor", "--icon", "ada", "/a b.desktop", "100%",
                            "50%"));
    EXPECT_THAT(desktopCommand("m %i", {}), ElementsAre("m"));
}

TEST(DesktopCommand, ThatIsDamagedIsNone) {
    EXPECT_THAT(words("m \"a"), IsEmpty());
    EXPECT_THAT(words("m 'a"), IsEmpty());
    EXPECT_THAT(words("m %x"), IsEmpty());
    EXPECT_THAT(words("m %"), IsEmpty());
    EXPECT_THAT(words(R"(m \\)"), IsEmpty());
}

}  // namespace
}  // namespace tarnwick::platform
