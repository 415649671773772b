// SPDX-License-Identifier: MIT
// The text of a settings file as values and back.
#include "platform/linux/settings/settings_document.h"

#include <cmath>
#include <cstdint>
#include <gtest/gtest.h>
#include <limits>
#include <string>

namespace tarnwick::platform {
namespace {

using Value = std::optional<DefaultsValue>;

/// What a member of this text reads as.
Value valueOf(const std::string& text) {
    const auto document = SettingsDocument::decode("{\"key\": " + text + "}");
    EXPECT_TRUE(document.has_value()) << text;
    EXPECT_TRUE(document && document->contains("key")) << text;
    return document ? document->value("key") : std::nullopt;
}

std::string encoded(const DefaultsValue& value) {
    SettingsDocument document;
    document.set("key", value);
    const std::string text = document.encode();
    constexpr std::string_view before = "{\n  \"key\": ";
    constexpr std::string_view after = "\n}\n";
    return text.substr(before.size(), text.size() - before.size() - after.size());
}

TEST(SettingsDocumentTest, ValuesHaveTheTypesOfTheFile) {
    EXPECT_EQ(valueOf("true"), Value(true));
    EXPECT_EQ(valueOf("false"), Value(false));
    EXPECT_EQ(valueOf("80"), Value(std::int64_t{80}));
    EXPECT_EQ(valueOf("-1"), Value(std::int64_t{-1}));
    EXPECT_EQ(valueOf("9223372036854775807"), Value(std::numeric_limits<std::int64_t>::max()));
    EXPECT_EQ(valueOf("-9223372036854775808"), Value(std::numeric_limits<std::int64_t>::min()));
    EXPECT_EQ(valueOf("92.5"), Value(92.5));
    EXPECT_EQ(valueOf("1e300"), Value(1e300));
    EXPECT_EQ(valueOf(R"("a\u00e9\n\"b")"), Value(std::string("a\u00e9\n\"b")));
}

TEST(SettingsDocumentTest, ANumberWithoutAFractionIsAnIntegerHoweverItIsWritten) {
    for (const char* text : {"80", "80.0", "8e1", "800e-1"}) {
        EXPECT_EQ(valueOf(text), Value(std::int64_t{80})) << text;
    }
    EXPECT_EQ(valueOf("-0.0"), Value(std::int64_t{0}));
}

TEST(SettingsDocumentTest, WhatNoTypeHoldsHasNoValueAndStaysAsItIs) {
    for (const char* text : {"null", "[1, 2]", "{\"a\": {}}", "9223372036854775808",
                             "-9223372036854775809", "18446744073709551616", "1e400", "-1e400",
                             "NaN", "Infinity", "-Infinity", "123456789012345678901234567890"}) {
        EXPECT_EQ(valueOf(text), std::nullopt) << text;
        auto document = SettingsDocument::decode("{\"key\": " + std::string(text) + "}");
        document->set("other", true);
        EXPECT_EQ(document->encode(),
                  "{\n  \"key\": " + std::string(text) + ",\n  \"other\": true\n}\n");
        document->set("key", std::int64_t{1});
        EXPECT_EQ(document->encode(), "{\n  \"key\": 1,\n  \"other\": true\n}\n");
    }
}

TEST(SettingsDocumentTest, ValuesAreWrittenAsPeopleWould) {
    EXPECT_EQ(encoded(true), "true");
    EXPECT_EQ(encoded(std::int64_t{-1}), "-1");
    EXPECT_EQ(encoded(80.0), "80");
    EXPECT_EQ(encoded(92.5), "92.5");
    EXPECT_EQ(encoded(0.1), "0.1");
    EXPECT_EQ(encoded(Date{1'700'000'000}), "1700000000");
    EXPECT_EQ(encoded(Date{1'700'000'000.25}), "1700000000.25");
    EXPECT_EQ(encoded(std::string("a \"b\" \\ \n \u00e9")), "\"a \\\"b\\\" \\\\ \\n \u00e9\"");
    EXPECT_EQ(encoded(std::string()), "\"\"");
    EXPECT_EQ(SettingsDocument().encode(), "{}\n");
}

TEST(SettingsDocumentTest, EachNumberComesBackAsItWas) {
    for (const double number : {0.1, 1.0 / 3, 99.99, 1e-300, 1e300, 9'007'199'254'740'993.0,
                                -62'135'596'800.0, 5e-324, -0.5}) {
        const Value read = valueOf(encoded(number));
        ASSERT_TRUE(read.has_value()) << number;
        const auto* whole = std::get_if<std::int64_t>(&*read);
        EXPECT_EQ(whole ? static_cast<double>(*whole) : std::get<double>(*read), number);
    }
}

TEST(SettingsDocumentTest, WhatJSONCannotSayIsNoLossForTheRest) {
    SettingsDocument document;
    EXPECT_TRUE(document.set("number", std::numeric_limits<double>::quiet_NaN()));
    EXPECT_TRUE(document.set("text", std::string("a\xff"
                                                 "b")));
    EXPECT_TRUE(document.set("whole", true));
    const auto again = SettingsDocument::decode(document.encode());
    ASSERT_TRUE(again.has_value());
    EXPECT_EQ(again->value("number"), std::nullopt);
    EXPECT_EQ(again->value("text"), Value(std::string("a\uFFFDb")));
    EXPECT_EQ(again->value("whole"), Value(true));
    EXPECT_TRUE(again->readsAs(document));
}

TEST(SettingsDocumentTest, OrderAndUnknownMembersSurvive) {
    auto document =
        SettingsDocument::decode(R"( {"z": 1, "editor": {"tab": [1,  2]}, "a": 1.50, "m": "x"} )");
    ASSERT_TRUE(document.has_value());
    document->set("a", std::int64_t{2});
    document->set("new", false);
    EXPECT_EQ(document->encode(),
              "{\n  \"z\": 1,\n  \"editor\": {\"tab\": [1,  2]},\n  \"a\": 2,\n  \"m\": \"x\",\n"
              "  \"new\": false\n}\n");
}

TEST(SettingsDocumentTest, OfSeveralMembersOfOneNameTheLastCounts) {
    const auto document = SettingsDocument::decode(R"({"a": 1, "b": 2, "\u0061": 3})");
    ASSERT_TRUE(document.has_value());
    EXPECT_EQ(document->value("a"), Value(std::int64_t{3}));
    EXPECT_EQ(document->encode(), "{\n  \"a\": 3,\n  \"b\": 2\n}\n");
}

TEST(SettingsDocumentTest, SettingAnEqualValueChangesNothing) {
    auto document =
        SettingsDocument::decode(R"({"a": 80.0, "b": "x", "c": true, "d": 92.50, "e": null})");
    ASSERT_TRUE(document.has_value());
    const std::string before = document->encode();
    EXPECT_FALSE(document->set("a", 80.0));
    EXPECT_FALSE(document->set("a", std::int64_t{80}));
    EXPECT_FALSE(document->set("b", std::string("x")));
    EXPECT_FALSE(document->set("c", true));
    EXPECT_FALSE(document->set("d", 92.5));
    EXPECT_EQ(document->encode(), before);
    EXPECT_TRUE(document->set("b", std::string("y")));
    EXPECT_TRUE(document->set("c", std::int64_t{1}));
    EXPECT_TRUE(document->set("e", std::int64_t{0}));
}

TEST(SettingsDocumentTest, ReadsAsComparesValuesNotTexts) {
    const auto one = SettingsDocument::decode(R"({"a": 1, "b": [1]})");
    EXPECT_TRUE(one->readsAs(*SettingsDocument::decode(R"({"b": [2], "a": 1.0})")));
    EXPECT_FALSE(one->readsAs(*SettingsDocument::decode(R"({"a": 2, "b": [1]})")));
    EXPECT_FALSE(one->readsAs(*SettingsDocument::decode(R"({"a": 1})")));
    EXPECT_FALSE(one->readsAs(*SettingsDocument::decode(R"({"a": true, "b": [1]})")));
}

TEST(SettingsDocumentTest, NoMembersAndAByteOrderMarkAreNoFault) {
    for (const char* text : {"{}", " \r\n\t{ } ", "\xEF\xBB\xBF{}"}) {
        const auto document = SettingsDocument::decode(text);
        ASSERT_TRUE(document.has_value()) << text;
        EXPECT_TRUE(document->empty()) << text;
    }
}

TEST(SettingsDocumentTest, ATextThatIsNoObjectIsRefusedAtEveryTruncation) {
    const std::string whole =
        R"({"a": 1, "b": "x\"]}", "c": [1, {"d": null}], "e": true, "f": -1.5e3, "g": 1e400})";
    ASSERT_TRUE(SettingsDocument::decode(whole).has_value());
    for (std::size_t length = 0; length < whole.size(); ++length) {
        EXPECT_FALSE(SettingsDocument::decode(whole.substr(0, length)).has_value()) << length;
    }
}

TEST(SettingsDocumentTest, AFileOfMoreThanAMebibyteIsRefused) {
    const std::string members = "{\"a\": 1}";
    const std::string space(SettingsDocument::kLimit - members.size(), ' ');
    EXPECT_TRUE(SettingsDocument::decode(space + members).has_value());
    EXPECT_FALSE(SettingsDocument::decode(" " + space + members).has_value());
}

TEST(SettingsDocumentTest, DepthAndNumbersOfMembersAreNoDanger) {
    const std::size_t depth = SettingsDocument::kLimit / 2 - 10;
    auto document = SettingsDocument::decode("{\"a\":" + std::string(depth, '[') +
                                             std::string(depth, ']') + "}");
    ASSERT_TRUE(document.has_value());
    EXPECT_TRUE(document->set("b", true));
    std::string many = "{\"k\":0";
    for (int i = 0; i < 60'000; ++i) {
        many += ",\"k" + std::to_string(i) + "\":1";
    }
    ASSERT_TRUE(SettingsDocument::decode(many + "}").has_value());
}

}  // namespace
}  // namespace tarnwick::platform
