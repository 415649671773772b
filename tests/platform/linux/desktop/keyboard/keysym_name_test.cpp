#include "platform/linux/desktop/keyboard/keysym_name.h"

#include <gtest/gtest.h>
#include <map>
#include <string>
#include <utility>
#include <xkbcommon/xkbcommon-keysyms.h>

#include "platform/hot_keys.h"
#include "platform/linux/desktop/keyboard/key_codes.h"
#include "platform/linux/desktop/keyboard/key_text.h"
#include "platform/linux/desktop/keyboard/shortcut_trigger.h"
#include "tests/platform/linux/desktop/keyboard/written_layout.h"

namespace tarnwick::platform {
namespace {

using testing::WrittenLayout;

// Virtual key codes, named after what a US keyboard prints on the keys.
constexpr std::uint16_t kIso = 10;
constexpr std::uint16_t kY = 16;
constexpr std::uint16_t k1 = 18;
constexpr std::uint16_t kEqual = 24;
constexpr std::uint16_t kMinus = 27;
constexpr std::uint16_t kLeftBracket = 33;
constexpr std::uint16_t kI = 34;
constexpr std::uint16_t kL = 37;
constexpr std::uint16_t kQuote = 39;
constexpr std::uint16_t kSemicolon = 41;
constexpr std::uint16_t kSpace = 49;
constexpr std::uint16_t kGrave = 50;
constexpr std::uint16_t kKeypad1 = 83;

std::string nameOf(std::uint32_t code, std::map<std::uint16_t, xkb_keysym_t> keysyms = {}) {
    WrittenLayout layout(std::move(keysyms));
    return keysymName(code, layout);
}

/// A layout as it is installed on the machine.
class InstalledLayout final : public KeysymLayout {
 public:
    explicit InstalledLayout(const char* name) {
        const XkbContext context(xkb_context_new(XKB_CONTEXT_NO_ENVIRONMENT_NAMES));
        const xkb_rule_names names = {"evdev", "pc105", name, "", ""};
        keymap_.reset(
            xkb_keymap_new_from_names(context.get(), &names, XKB_KEYMAP_COMPILE_NO_FLAGS));
    }

    std::optional<std::string> displayText(std::uint16_t) override { return std::nullopt; }
    xkb_keysym_t keysym(std::uint16_t virtualKeyCode) override {
        return keymap_ ? keyKeysym(*keymap_, 0, virtualKeyCode) : xkb_keysym_t{XKB_KEY_NoSymbol};
    }

    std::string name(std::uint16_t virtualKeyCode) { return keysymName(virtualKeyCode, *this); }

 private:
    XkbKeymap keymap_;
};

TEST(KeysymName, IsThatOfAUSKeyboardWithoutALayout) {
    EXPECT_EQ(nameOf(kL), "l");
    EXPECT_EQ(nameOf(k1), "1");
    EXPECT_EQ(nameOf(kSemicolon), "semicolon");
    EXPECT_EQ(nameOf(kSpace), "space");
    EXPECT_EQ(nameOf(36), "Return");
    EXPECT_EQ(nameOf(96), "F5");
    EXPECT_EQ(nameOf(kKeypad1), "KP_1");
    EXPECT_EQ(nameOf(123), "Left");
}

TEST(KeysymName, OfAGermanKeyboardIsTheLayoutsOwn) {
    InstalledLayout german("de");
    EXPECT_EQ(german.name(kY), "z");
    EXPECT_EQ(german.name(kSemicolon), "odiaeresis");
    EXPECT_EQ(german.name(kMinus), "ssharp");
    EXPECT_EQ(german.name(kGrave), "dead_circumflex");
    EXPECT_EQ(german.name(kEqual), "dead_acute");
    EXPECT_EQ(german.name(kIso), "less");
}

TEST(KeysymName, OfAFrenchKeyboardIsTheLayoutsOwn) {
    InstalledLayout french("fr");
    EXPECT_EQ(french.name(k1), "ampersand");
    EXPECT_EQ(french.name(kSemicolon), "m");
    EXPECT_EQ(french.name(kLeftBracket), "dead_circumflex");
}

TEST(KeysymName, TellsTheTwoTurkishLettersApart) {
    InstalledLayout turkish("tr");
    EXPECT_EQ(turkish.name(kI), "idotless");
    EXPECT_EQ(turkish.name(kQuote), "i");
}

TEST(KeysymName, OfAnotherScriptIsThatOfAUSKeyboard) {
    EXPECT_EQ(InstalledLayout("ru").name(kL), "l");
    EXPECT_EQ(InstalledLayout("gr").name(kL), "l");
    EXPECT_EQ(InstalledLayout("il").name(kL), "l");
}

TEST(KeysymName, OfALetterFarDownTheLatinScriptIsItsOwn) {
    // The ones that Vietnamese adds, and a quotation mark.
    EXPECT_EQ(nameOf(kL, {{kL, XKB_KEY_abelowdot}}), "abelowdot");
    EXPECT_EQ(nameOf(kL, {{kL, XKB_KEY_rightsinglequotemark}}), "rightsinglequotemark");
    EXPECT_EQ(nameOf(kL, {{kL, XKB_KEY_ISO_Next_Group}}), "l");
}

TEST(KeysymName, OfAKeyThatIsTheSameInEveryLayoutIsItsOwn) {
    EXPECT_EQ(nameOf(kKeypad1, {{kKeypad1, XKB_KEY_KP_End}}), "KP_1");
    EXPECT_EQ(nameOf(kSpace, {{kSpace, XKB_KEY_nobreakspace}}), "space");
}

TEST(KeysymName, IsEmptyForNoKey) {
    EXPECT_EQ(nameOf(52), "");
    EXPECT_EQ(nameOf(127), "");
    EXPECT_EQ(nameOf(4'000'000'000), "");
    // Modifiers are no keys of a shortcut.
    EXPECT_EQ(nameOf(55), "");
}

TEST(KeysymName, IsKnownToXKBForEveryKey) {
    constexpr std::uint32_t kCommand = hot_key_modifier::kCommand;
    int named = 0;
    for (std::uint32_t code = 0; code < 128; ++code) {
        const std::string name = nameOf(code);
        if (!name.empty()) {
            ++named;
            EXPECT_NE(xkb_keysym_from_name(name.c_str(), XKB_KEYSYM_NO_FLAGS), XKB_KEY_NoSymbol)
                << name;
            EXPECT_EQ(matchTrigger(triggerText(kCommand, name), kCommand, name), TriggerMatch::same)
                << name;
        }
    }
    EXPECT_GT(named, 100);
}

TEST(KeysymName, IsThereForEveryKeyThatCanBeRecordedAndNoOther) {
    constexpr std::uint32_t kFirstModifier = 54;
    constexpr std::uint32_t kLastModifier = 63;
    for (std::uint32_t code = 0; code < 128; ++code) {
        const bool isModifier = code >= kFirstModifier && code <= kLastModifier;
        EXPECT_EQ(!nameOf(code).empty(), x11KeyCode(code).has_value() && !isModifier) << code;
    }
}

}  // namespace
}  // namespace tarnwick::platform
