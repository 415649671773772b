// SPDX-License-Identifier: MIT
#include "platform/linux/desktop/keyboard/key_text.h"

#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <xkbcommon/xkbcommon-keysyms.h>

#include "tests/platform/linux/desktop/keyboard/installed_layout.h"
#include "tests/platform/linux/desktop/keyboard/virtual_keys.h"

namespace tarnwick::platform {
namespace {

using testing::InstalledLayout;

// More of them.
constexpr std::uint16_t kA = 0;
constexpr std::uint16_t kZ = 6;
constexpr std::uint16_t kIso = 10;
constexpr std::uint16_t kW = 13;
constexpr std::uint16_t k1 = 18;
constexpr std::uint16_t k2 = 19;
constexpr std::uint16_t kEqual = 24;
constexpr std::uint16_t kMinus = 27;
constexpr std::uint16_t kLeftBracket = 33;
constexpr std::uint16_t kI = 34;
constexpr std::uint16_t kReturn = 36;
constexpr std::uint16_t kQuote = 39;
constexpr std::uint16_t kK = 40;
constexpr std::uint16_t kSemicolon = 41;
constexpr std::uint16_t kComma = 43;
constexpr std::uint16_t kM = 46;
constexpr std::uint16_t kSpace = 49;
constexpr std::uint16_t kGrave = 50;
constexpr std::uint16_t kFn = 63;
constexpr std::uint16_t kShiftKey = 56;
constexpr std::uint16_t kKeypadDecimal = 65;
constexpr std::uint16_t kKeypadClear = 71;
constexpr std::uint16_t kKeypadDivide = 75;
constexpr std::uint16_t kKeypadEnter = 76;
constexpr std::uint16_t kKeypad1 = 83;
constexpr std::uint16_t kKeypad5 = 87;
constexpr std::uint16_t kYen = 93;
constexpr std::uint16_t kF5 = 96;
constexpr std::uint16_t kLeft = 123;

using Text = std::optional<std::string>;

Text text(const char* layouts, std::uint16_t key, xkb_layout_index_t inUse = 0) {
    return InstalledLayout(layouts, inUse).displayText(key);
}

/// By what desktops know the key: the name of its keysym.
std::string name(const char* layouts, std::uint32_t key, xkb_layout_index_t inUse = 0) {
    char name[64] = {};
    xkb_keysym_get_name(InstalledLayout(layouts, inUse).keysym(key), name, sizeof name);
    return name;
}

TEST(KeyText, IsTheLayoutsOwn) {
    struct Key {
        const char* layout;
        std::uint16_t key;
        const char* text;
    };
    for (const Key& each : {
             Key{"us", kL, "L"},
             {"us", k1, "1"},
             {"us", kMinus, "-"},
             {"us", kGrave, "`"},
             {"us", kIso, "<"},
             {"de", kY, "Z"},
             {"de", kZ, "Y"},
             {"de", kQuote, "Ä"},
             {"de", kSemicolon, "Ö"},
             {"de", kL, "L"},
             {"de", kMinus, "SS"},
             {"fr", kQ, "A"},
             {"fr", kA, "Q"},
             {"fr", kW, "Z"},
             {"fr", kSemicolon, "M"},
             {"fr", kM, ","},
             {"fr", kQuote, "Ù"},
             {"fr", k1, "&"},
             {"fr", k2, "É"},
             {"ru", kL, "Д"},
             {"ru", kK, "Л"},
             {"ru", kGrave, "Ё"},
             {"ru", kComma, "Б"},
             {"jp", kYen, "\\"},
             // In upper case by Unicode and not by the language, with a dot or without one.
             {"tr", kI, "I"},
             {"tr", kQuote, "I"},
             // Dead keys.
             {"de", kGrave, "^"},
             {"de", kEqual, "´"},
             {"fr", kLeftBracket, "^"},
             {"us(intl)", kGrave, "`"},
         }) {
        EXPECT_EQ(text(each.layout, each.key), each.text) << each.layout << " " << each.key;
    }
}

TEST(KeyText, FollowsTheLayoutInUse) {
    EXPECT_EQ(text("us,ru,de", kL, 0), "L");
    EXPECT_EQ(text("us,ru,de", kL, 1), "Д");
    EXPECT_EQ(text("us,ru,de", kY, 2), "Z");
}

TEST(KeyText, OfAKeyWithFewerLayoutsIsTheOneThatTheKeyUses) {
    EXPECT_EQ(text("us,ru", kKeypadDivide, 1), "/");
    EXPECT_EQ(text("us,ru", kKeypad5, 1), "5");
}

TEST(KeyText, OfALayoutThatDoesNotExistIsOneThatDoes) {
    EXPECT_EQ(text("us", kL, 7), "L");
}

TEST(KeyText, OfTheKeypadIsDigitsWhateverNumLockSays) {
    EXPECT_EQ(text("us", kKeypad5), "5");
    EXPECT_EQ(text("us", kKeypadDecimal), ".");
    EXPECT_EQ(text("us", kKeypadDivide), "/");
    EXPECT_EQ(text("de", kKeypadDecimal), ",");
}

TEST(KeyText, IsAbsentForKeysThatProduceNothingToSee) {
    // Return and Enter produce control characters.
    for (const std::uint16_t key : {kF13, kShiftKey, kKeypadClear, kYen, kReturn, kKeypadEnter}) {
        EXPECT_EQ(text("us", key), std::nullopt) << key;
    }
}

TEST(KeyText, IsAbsentForCodesThatNoKeyHas) {
    for (const int code : {int{kFn}, 200, 65535}) {
        EXPECT_EQ(text("us", static_cast<std::uint16_t>(code)), std::nullopt) << code;
    }
}

TEST(KeyKeysym, IsTheLayoutsOwn) {
    EXPECT_EQ(name("us", kL), "l");
    EXPECT_EQ(name("us", kSpace), "space");
    EXPECT_EQ(name("us", kReturn), "Return");
    EXPECT_EQ(name("us", kLeft), "Left");
    EXPECT_EQ(name("de", kY), "z");
    EXPECT_EQ(name("de", kMinus), "ssharp");
    EXPECT_EQ(name("de", kGrave), "dead_circumflex");
    EXPECT_EQ(name("fr", k1), "ampersand");
    EXPECT_EQ(name("tr", kI), "idotless");
    EXPECT_EQ(name("us,de", kY, 1), "z");
}

TEST(KeyKeysym, OfAnotherScriptIsThatOfTheFirstLatinLayout) {
    EXPECT_EQ(name("us,ru", kL, 1), "l");
    EXPECT_EQ(name("ru,de", kY), "z");
    EXPECT_EQ(name("gr,ru,us", kL), "l");
    EXPECT_EQ(name("ru,us", kF5), "F5");
    // There is none.
    EXPECT_EQ(name("ru", kL), "Cyrillic_de");
}

TEST(KeyKeysym, OfTheKeypadIsADigit) {
    EXPECT_EQ(name("us", kKeypad1), "KP_1");
    EXPECT_EQ(name("us,ru", kKeypad1, 1), "KP_1");
}

TEST(KeyKeysym, IsThatOfAUSKeyboardWhereThereIsNone) {
    NullKeysymLayout none;
    EXPECT_EQ(none.keysym(kY), xkb_keysym_t{XKB_KEY_y});
    EXPECT_EQ(none.displayText(kY), std::nullopt);
}

TEST(KeyKeysym, IsAbsentForCodesThatNoKeyHas) {
    for (const std::uint32_t code : {std::uint32_t{kFn}, std::uint32_t{kYen}, 127U, 65'537U}) {
        EXPECT_EQ(InstalledLayout("us").keysym(code), xkb_keysym_t{XKB_KEY_NoSymbol}) << code;
    }
}

}  // namespace
}  // namespace tarnwick::platform
