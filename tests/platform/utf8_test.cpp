// SPDX-License-Identifier: MIT
#include "platform/utf8.h"

#include <gtest/gtest.h>
#include <string>

namespace tarnwick::platform {
namespace {

const std::string kBroken = "\xEF\xBF\xBD";

TEST(RepairedUTF8, LeavesWhatIsValid) {
    for (const std::string text :
         {"", "plain text", "line\nbreak\ttab", "Größe", "日本語", "😀 smile", "\x7F", "\xC2\x80",
          "\xDF\xBF", "\xE0\xA0\x80", "\xED\x9F\xBF", "\xEE\x80\x80", "\xEF\xBF\xBF",
          "\xF0\x90\x80\x80", "\xF4\x8F\xBF\xBF"}) {
        EXPECT_EQ(repairedUTF8(text), text);
    }
}

TEST(RepairedUTF8, ReplacesBytesThatBeginNoCharacter) {
    EXPECT_EQ(repairedUTF8("\x80"), kBroken);
    EXPECT_EQ(repairedUTF8("a\xBF\xBF"
                           "b"),
              "a" + kBroken + kBroken + "b");
    EXPECT_EQ(repairedUTF8("\xC0\xAF"), kBroken + kBroken);
    EXPECT_EQ(repairedUTF8("\xFF\xFE"), kBroken + kBroken);
    EXPECT_EQ(repairedUTF8("\xF5\x80"), kBroken + kBroken);
}

TEST(RepairedUTF8, ReplacesACharacterThatBreaksOffOnce) {
    EXPECT_EQ(repairedUTF8("caf\xC3"), "caf" + kBroken);
    EXPECT_EQ(repairedUTF8("\xE6\x97"), kBroken);
    EXPECT_EQ(repairedUTF8("\xF0\x9F\x98"), kBroken);
    EXPECT_EQ(repairedUTF8("\xF0\x9F\x98x"), kBroken + "x");
    EXPECT_EQ(repairedUTF8("\xE6\x97\xE6\x97\xA5"), kBroken + "日");
}

TEST(RepairedUTF8, ReplacesOverlongFormsSurrogatesAndWhatIsTooLarge) {
    EXPECT_EQ(repairedUTF8("\xE0\x80\x80"), kBroken + kBroken + kBroken);
    EXPECT_EQ(repairedUTF8("\xED\xA0\x80"), kBroken + kBroken + kBroken);
    EXPECT_EQ(repairedUTF8("\xF0\x80\x80\x80"), kBroken + kBroken + kBroken + kBroken);
    EXPECT_EQ(repairedUTF8("\xF4\x90\x80\x80"), kBroken + kBroken + kBroken + kBroken);
}

TEST(RepairedUTF8, IsDoneOnce) {
    const std::string repaired = repairedUTF8("\xF0\x9F\xC3\x28\xE2\x28\xA1");
    EXPECT_EQ(repairedUTF8(repaired), repaired);
}

}  // namespace
}  // namespace tarnwick::platform
