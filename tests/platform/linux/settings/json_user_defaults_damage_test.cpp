// SPDX-License-Identifier: MIT
// Files that hold no settings, and values that are none.
#include <cstdint>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <ostream>
#include <string>

#include "platform/linux/settings/json_user_defaults.h"
#include "platform/testing/scripted_login_service.h"
#include "settings/user_settings.h"
#include "tests/platform/linux/settings/json_user_defaults_fixture.h"

namespace tarnwick::platform {
namespace {

using tarnwick::testing::contentsOf;
using tarnwick::testing::JsonUserDefaultsFixture;
using tarnwick::testing::putContents;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

const std::string kWhole = R"({
  "settings.cpuHighThreshold": 92.5,
  "settings.menuBarDisplayMode": "iconOnly",
  "settings.launchOnLogin": false
}
)";

// Files that hold no settings.

struct Damage {
    const char* name;
    std::string text;
};

void PrintTo(const Damage& damage, std::ostream* out) {
    *out << damage.name;
}

class JsonUserDefaultsDamage : public JsonUserDefaultsFixture,
                               public ::testing::WithParamInterface<Damage> {};

TEST_P(JsonUserDefaultsDamage, IsSetAsideAsItIsWithOneLine) {
    putContents(folder / "settings.json.damaged-1", "of another day");
    putContents(file, GetParam().text);
    {
        const auto store = open();
        EXPECT_EQ(store->object("settings.cpuHighThreshold"), std::nullopt);
        EXPECT_FALSE(store->contains("settings.cpuHighThreshold"));
        store->set("key", true);
        dispatch.runMain();
    }
    EXPECT_THAT(lines, ElementsAre("settings: " + file.native() +
                                   " holds no settings; it is kept as settings.json.damaged-2, "
                                   "and a new one is begun"));
    EXPECT_EQ(contentsOf(folder / "settings.json.damaged-1"), "of another day");
    EXPECT_TRUE(contentsOf(folder / "settings.json.damaged-2") == GetParam().text);
    EXPECT_EQ(contentsOf(file), "{\n  \"key\": true\n}\n");
    EXPECT_EQ(open()->boolean("key"), true);
    EXPECT_EQ(lines.size(), 1U);
}

INSTANTIATE_TEST_SUITE_P(
    Kinds, JsonUserDefaultsDamage,
    ::testing::Values(
        Damage{"OneByte", "{"}, Damage{"CutInAKey", kWhole.substr(0, 12)},
        Damage{"CutBehindAKey", kWhole.substr(0, 31)}, Damage{"CutInANumber", kWhole.substr(0, 36)},
        Damage{"CutBehindAMember", kWhole.substr(0, 38)},
        Damage{"CutInAText", kWhole.substr(0, 80)}, Damage{"CutInAWord", kWhole.substr(0, 110)},
        Damage{"CutBeforeTheEnd", kWhole.substr(0, kWhole.size() - 2)},
        Damage{"BeginningLost", kWhole.substr(5)}, Damage{"TwoFilesInOne", kWhole + kWhole},
        Damage{"MoreBehindIt", kWhole + "x"}, Damage{"Garbage", "\x01\x02\xfe\xff garbage"},
        Damage{"Zeros", std::string(4'096, '\0')},
        Damage{"ZerosBehindIt", kWhole + std::string(100, '\0')},
        Damage{"AProgram",
               "\x7f"
               "ELF" +
                   std::string(100, '\0')},
        Damage{"AnIniFile", "[settings]\ncpuHighThreshold=92\n"}, Damage{"AnArray", "[1, 2]"},
        Damage{"AText", "\"settings\""}, Damage{"ANumber", "92.5"}, Damage{"AWord", "true"},
        Damage{"Null", "null"}, Damage{"TrailingComma", R"({"a": 1,})"},
        Damage{"NoComma", R"({"a": 1 "b": 2})"}, Damage{"NoColon", R"({"a" 1})"},
        Damage{"NoQuotes", "{a: 1}"}, Damage{"SingleQuotes", "{'a': 1}"},
        Damage{"AComment", "{\"a\": 1} // one"}, Damage{"CommaAsPoint", R"({"a": 92,5})"},
        Damage{"AnExpression", R"({"a": 90 + 2})"}, Damage{"Hexadecimal", R"({"a": 0x25})"},
        Damage{"Percent", R"({"a": 92%})"}, Damage{"InvalidUtf8", "{\"a\": \"caf\xe9\"}"},
        Damage{"ControlCharacter", "{\"a\": \"x\ny\"}"},
        Damage{"BracketsCrossed", R"({"a": [1}, "b": 2])"},
        Damage{"Utf16", std::string("\xff\xfe{\0}\0", 6)},
        Damage{"TooLarge", "{\"a\": \"" + std::string(2'000'000, 'x') + "\"}"},
        Damage{"MergeConflict", "<<<<<<< HEAD\n" + kWhole + "=======\n" + kWhole + ">>>>>>> x\n"}),
    [](const auto& test) { return std::string(test.param.name); });

TEST_F(JsonUserDefaultsFixture, AFileCutAnywhereIsSetAsideOrWhole) {
    for (std::size_t length = 0; length < kWhole.size(); ++length) {
        putContents(file, kWhole.substr(0, length));
        lines.clear();
        open();
        const bool isEmpty = length == 0;
        // The last byte is a newline.
        const bool isWhole = length == kWhole.size() - 1;
        EXPECT_EQ(lines.size(), isEmpty || isWhole ? 0U : 1U) << length;
        EXPECT_EQ(std::filesystem::exists(file), isEmpty || isWhole) << length;
        std::filesystem::remove(folder / "settings.json.damaged-1");
    }
}

// Values that are none.

struct WrongValue {
    const char* key;
    const char* text;
};

void PrintTo(const WrongValue& wrong, std::ostream* out) {
    *out << wrong.key << " = " << wrong.text;
}

class JsonUserDefaultsWrongValue : public JsonUserDefaultsFixture,
                                   public ::testing::WithParamInterface<WrongValue> {};

TEST_P(JsonUserDefaultsWrongValue, ReadsAsTheDefaultAndStaysUntilItIsSet) {
    const std::string member =
        "\"settings." + std::string(GetParam().key) + "\": " + GetParam().text;
    putContents(file, "{" + member + "}");
    const auto store = open();
    testing::ScriptedLoginService service;
    UserSettings settings(*store, service);
    EXPECT_EQ(settings.thresholds(), (MetricThresholds{80, 90, 90, 95, 80, 90, 80, 90}));
    EXPECT_EQ(settings.menuBarDisplayMode(), MenuBarDisplayMode::advanced);
    EXPECT_FALSE(settings.launchOnLogin());
    EXPECT_FALSE(settings.remindRestartAfterWeek());
    EXPECT_FALSE(settings.hasPresentedInitialSettings());
    EXPECT_EQ(settings.shortcutKeyCode(), -1);
    EXPECT_EQ(settings.shortcutModifiers(), 0);
    store->set("other", true);
    dispatch.runMain();
    EXPECT_EQ(contentsOf(file), "{\n  " + member + ",\n  \"other\": true\n}\n");
    EXPECT_THAT(lines, IsEmpty());
    store->set("settings." + std::string(GetParam().key), std::int64_t{50});
    dispatch.runMain();
    EXPECT_EQ(contentsOf(file),
              "{\n  \"settings." + std::string(GetParam().key) + "\": 50,\n  \"other\": true\n}\n");
}

INSTANTIATE_TEST_SUITE_P(
    Kinds, JsonUserDefaultsWrongValue,
    ::testing::Values(
        WrongValue{"cpuHighThreshold", "\"70\""}, WrongValue{"cpuHighThreshold", "true"},
        WrongValue{"cpuHighThreshold", "null"}, WrongValue{"cpuHighThreshold", "[70]"},
        WrongValue{"cpuHighThreshold", "{\"value\": 70}"}, WrongValue{"cpuHighThreshold", "1e400"},
        WrongValue{"cpuHighThreshold", "-1e400"}, WrongValue{"cpuHighThreshold", "NaN"},
        WrongValue{"cpuHighThreshold", "Infinity"},
        WrongValue{"cpuModerateThreshold", "18446744073709551616"},
        WrongValue{"menuBarDisplayMode", "1"}, WrongValue{"menuBarDisplayMode", "false"},
        WrongValue{"menuBarDisplayMode", "null"}, WrongValue{"menuBarDisplayMode", "\"ICONONLY\""},
        WrongValue{"menuBarDisplayMode", "[\"iconOnly\"]"}, WrongValue{"launchOnLogin", "1"},
        WrongValue{"launchOnLogin", "\"true\""}, WrongValue{"remindRestartAfterWeek", "1"},
        WrongValue{"remindRestartAfterWeek", "\"yes\""},
        WrongValue{"hasPresentedInitialSettings", "1"},
        WrongValue{"hasPresentedInitialSettings", "null"}, WrongValue{"shortcutKeyCode", "37.5"},
        WrongValue{"shortcutKeyCode", "\"37\""}, WrongValue{"shortcutKeyCode", "4294967296"},
        WrongValue{"shortcutKeyCode", "-2"}, WrongValue{"shortcutKeyCode", "9223372036854775808"},
        WrongValue{"shortcutModifiers", "-1"},
        WrongValue{"shortcutModifiers", "18446744073709551616"},
        WrongValue{"shortcutModifiers", "1048576.5"}, WrongValue{"shortcutModifiers", "true"}));

}  // namespace
}  // namespace tarnwick::platform
