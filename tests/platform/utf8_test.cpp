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

TEST(RepairedName, HasNoControlCharactersNorLineEnds) {
    EXPECT_EQ(repairedName(std::string_view("a\nb\tc\x1B[31m\x7F\0", 12)), "a b c [31m  ");
    EXPECT_EQ(repairedName("a\u0085b\u2028c\u2029d"), "a b c d");
}

TEST(RepairedName, HasNoMarksOfDirection) {
    EXPECT_EQ(repairedName("\u061Ca\u200E\u200F\u202A\u202B\u202C\u202D\u202E\u2066\u2067b"
                           "\u2068\u2069"),
              "ab");
}

TEST(RepairedName, LeavesWhatBelongsToANameInAnyScript) {
    // The joiners and the variation of a picture change what is drawn.
    for (const std::string name :
         {"", "Größe 2", "日本語", "שלום", "نام\u200Cها", "❤\uFE0F", "👩\u200D💻", "a\u00A0b"}) {
        EXPECT_EQ(repairedName(name), name);
    }
    EXPECT_EQ(repairedName("caf\xC3"), "caf" + kBroken);
}

TEST(FirstCharacters, CutsBetweenCharacters) {
    EXPECT_EQ(firstCharacters("a日😀b", 0), "");
    EXPECT_EQ(firstCharacters("a日😀b", 2), "a日");
    EXPECT_EQ(firstCharacters("a日😀b", 3), "a日😀");
    EXPECT_EQ(firstCharacters("a日😀b", 4), "a日😀b");
    EXPECT_EQ(firstCharacters("a日😀b", 5), "a日😀b");
}

TEST(CanBeSeen, IsTrueForACharacterThatLeavesAMark) {
    for (const std::string text : {"a", " a", ".", "日", "😀", "\u200Bש", "\uFFFD"}) {
        EXPECT_TRUE(canBeSeen(text)) << text;
    }
}

TEST(CanBeSeen, IsFalseForSpacesAndInvisibleCharacters) {
    for (const std::string text : {"", " ", "\t\n", "\u00A0", "\u2003\u3000", "\u200B\u200D\uFEFF",
                                   "\u202E", "\u2800", "\u3164", "\uFE0F", "\x1B"}) {
        EXPECT_FALSE(canBeSeen(text)) << text;
    }
}

}  // namespace
}  // namespace tarnwick::platform
