#include "platform/linux/desktop/keyboard/key_text.h"

#include <gtest/gtest.h>
#include <optional>
#include <string>

namespace tarnwick::platform {
namespace {

// Virtual key codes, named after what a US keyboard prints on the keys.
constexpr std::uint16_t kA = 0;
constexpr std::uint16_t kZ = 6;
constexpr std::uint16_t kIso = 10;
constexpr std::uint16_t kQ = 12;
constexpr std::uint16_t kW = 13;
constexpr std::uint16_t kY = 16;
constexpr std::uint16_t k1 = 18;
constexpr std::uint16_t k2 = 19;
constexpr std::uint16_t kEqual = 24;
constexpr std::uint16_t kMinus = 27;
constexpr std::uint16_t kLeftBracket = 33;
constexpr std::uint16_t kI = 34;
constexpr std::uint16_t kReturn = 36;
constexpr std::uint16_t kL = 37;
constexpr std::uint16_t kQuote = 39;
constexpr std::uint16_t kK = 40;
constexpr std::uint16_t kSemicolon = 41;
constexpr std::uint16_t kComma = 43;
constexpr std::uint16_t kM = 46;
constexpr std::uint16_t kGrave = 50;
constexpr std::uint16_t kFn = 63;
constexpr std::uint16_t kShift = 56;
constexpr std::uint16_t kKeypadDecimal = 65;
constexpr std::uint16_t kKeypadClear = 71;
constexpr std::uint16_t kKeypadDivide = 75;
constexpr std::uint16_t kKeypadEnter = 76;
constexpr std::uint16_t kKeypad5 = 87;
constexpr std::uint16_t kYen = 93;
constexpr std::uint16_t kF13 = 105;

using Text = std::optional<std::string>;

/// A keyboard with layouts as they are installed on the machine.
class Keyboard {
 public:
    explicit Keyboard(const char* layouts, const char* variants = "") {
        const XkbContext context(xkb_context_new(XKB_CONTEXT_NO_ENVIRONMENT_NAMES));
        const xkb_rule_names names = {"evdev", "pc105", layouts, variants, ""};
        keymap_.reset(
            xkb_keymap_new_from_names(context.get(), &names, XKB_KEYMAP_COMPILE_NO_FLAGS));
    }

    Text text(std::uint16_t virtualKeyCode, xkb_layout_index_t layout = 0) const {
        return keymap_ ? keyText(*keymap_, layout, virtualKeyCode) : Text("no keymap");
    }

 private:
    XkbKeymap keymap_;
};

TEST(KeyText, OfAUSKeyboardIsWhatIsPrintedOnIt) {
    const Keyboard keyboard("us");
    EXPECT_EQ(keyboard.text(kL), "L");
    EXPECT_EQ(keyboard.text(k1), "1");
    EXPECT_EQ(keyboard.text(kMinus), "-");
    EXPECT_EQ(keyboard.text(kGrave), "`");
    EXPECT_EQ(keyboard.text(kIso), "<");
}

TEST(KeyText, OfAGermanKeyboardIsTheLayoutsOwn) {
    const Keyboard keyboard("de");
    EXPECT_EQ(keyboard.text(kY), "Z");
    EXPECT_EQ(keyboard.text(kZ), "Y");
    EXPECT_EQ(keyboard.text(kQuote), "Ä");
    EXPECT_EQ(keyboard.text(kSemicolon), "Ö");
    EXPECT_EQ(keyboard.text(kLeftBracket), "Ü");
    EXPECT_EQ(keyboard.text(kL), "L");
}

TEST(KeyText, OfSharpSIsTwoLetters) {
    EXPECT_EQ(Keyboard("de").text(kMinus), "SS");
}

TEST(KeyText, OfADeadKeyIsItsAccent) {
    const Keyboard german("de");
    EXPECT_EQ(german.text(kGrave), "^");
    EXPECT_EQ(german.text(kEqual), "´");
    EXPECT_EQ(Keyboard("fr").text(kLeftBracket), "^");
    EXPECT_EQ(Keyboard("us", "intl").text(kGrave), "`");
}

TEST(KeyText, OfAFrenchKeyboardIsTheLayoutsOwn) {
    const Keyboard keyboard("fr");
    EXPECT_EQ(keyboard.text(kQ), "A");
    EXPECT_EQ(keyboard.text(kA), "Q");
    EXPECT_EQ(keyboard.text(kW), "Z");
    EXPECT_EQ(keyboard.text(kSemicolon), "M");
    EXPECT_EQ(keyboard.text(kM), ",");
    EXPECT_EQ(keyboard.text(kQuote), "Ù");
    EXPECT_EQ(keyboard.text(k1), "&");
    EXPECT_EQ(keyboard.text(k2), "É");
}

TEST(KeyText, OfARussianKeyboardIsTheLayoutsOwn) {
    const Keyboard keyboard("ru");
    EXPECT_EQ(keyboard.text(kL), "Д");
    EXPECT_EQ(keyboard.text(kK), "Л");
    EXPECT_EQ(keyboard.text(kGrave), "Ё");
    EXPECT_EQ(keyboard.text(kComma), "Б");
}

TEST(KeyText, IsInUpperCaseByUnicodeAndNotByTheLanguage) {
    const Keyboard turkish("tr");
    EXPECT_EQ(turkish.text(kI), "I");      // The key of the dotless i.
    EXPECT_EQ(turkish.text(kQuote), "I");  // The key of the dotted one.
}

TEST(KeyText, FollowsTheLayoutInUse) {
    const Keyboard keyboard("us,ru,de");
    EXPECT_EQ(keyboard.text(kL, 0), "L");
    EXPECT_EQ(keyboard.text(kL, 1), "Д");
    EXPECT_EQ(keyboard.text(kY, 2), "Z");
}

TEST(KeyText, OfAKeyWithFewerLayoutsIsTheOneThatTheKeyUses) {
    const Keyboard keyboard("us,ru");
    EXPECT_EQ(keyboard.text(kKeypadDivide, 1), "/");
    EXPECT_EQ(keyboard.text(kKeypad5, 1), "5");
}

TEST(KeyText, OfALayoutThatDoesNotExistIsOneThatDoes) {
    EXPECT_EQ(Keyboard("us").text(kL, 7), "L");
}

TEST(KeyText, OfTheKeypadIsDigitsWhateverNumLockSays) {
    const Keyboard keyboard("us");
    EXPECT_EQ(keyboard.text(kKeypad5), "5");
    EXPECT_EQ(keyboard.text(kKeypadDecimal), ".");
    EXPECT_EQ(keyboard.text(kKeypadDivide), "/");
    EXPECT_EQ(Keyboard("de").text(kKeypadDecimal), ",");
}

TEST(KeyText, IsAbsentForKeysThatProduceNothingToSee) {
    const Keyboard keyboard("us");
    EXPECT_EQ(keyboard.text(kF13), std::nullopt);
    EXPECT_EQ(keyboard.text(kShift), std::nullopt);
    EXPECT_EQ(keyboard.text(kKeypadClear), std::nullopt);
    EXPECT_EQ(keyboard.text(kYen), std::nullopt);
    // These produce control characters.
    EXPECT_EQ(keyboard.text(kReturn), std::nullopt);
    EXPECT_EQ(keyboard.text(kKeypadEnter), std::nullopt);
}

TEST(KeyText, OfAJapaneseKeyboardHasTheYenKey) {
    EXPECT_EQ(Keyboard("jp").text(kYen), "\\");
}

TEST(KeyText, IsAbsentForCodesThatNoKeyHas) {
    const Keyboard keyboard("us");
    EXPECT_EQ(keyboard.text(kFn), std::nullopt);
    EXPECT_EQ(keyboard.text(200), std::nullopt);
    EXPECT_EQ(keyboard.text(65535), std::nullopt);
}

}  // namespace
}  // namespace tarnwick::platform
