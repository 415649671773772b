// SPDX-License-Identifier: MIT
#include "platform/linux/applications/desktop_entry.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <map>
#include <string>
#include <vector>

namespace tarnwick::platform {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

std::vector<std::string> suffixesFor(const std::map<std::string, std::string>& variables) {
    return localeSuffixes([&variables](const char* name) -> const char* {
        const auto found = variables.find(name);
        return found == variables.end() ? nullptr : found->second.c_str();
    });
}

std::string nameOf(const std::string& text, const std::vector<std::string>& suffixes = {}) {
    const auto entry = parseDesktopEntry(text, suffixes);
    return entry ? entry->name : "(none)";
}

TEST(LocaleSuffixes, GoFromTheWholeLocaleToItsLanguage) {
    EXPECT_THAT(suffixesFor({{"LANG", "de_AT.UTF-8@euro"}}),
                ElementsAre("de_AT@euro", "de_AT", "de@euro", "de"));
    EXPECT_THAT(suffixesFor({{"LANG", "de_AT.UTF-8"}}), ElementsAre("de_AT", "de"));
    EXPECT_THAT(suffixesFor({{"LANG", "sr@latin"}}), ElementsAre("sr@latin", "sr"));
    EXPECT_THAT(suffixesFor({{"LANG", "de"}}), ElementsAre("de"));
}

TEST(LocaleSuffixes, OfThePlainLocaleAreNone) {
    for (const char* locale :
         {"", "C", "POSIX", "C.UTF-8", "C.UTF-8@x", ".UTF-8", "@euro", "_AT", "C_AT"}) {
        EXPECT_THAT(suffixesFor({{"LANG", locale}, {"LANGUAGE", "fr"}}), IsEmpty()) << locale;
    }
    EXPECT_THAT(suffixesFor({}), IsEmpty());
}

TEST(LocaleSuffixes, TheMoreSpecialVariableWins) {
    EXPECT_THAT(suffixesFor({{"LANG", "de"}, {"LC_MESSAGES", "fr"}}), ElementsAre("fr"));
    EXPECT_THAT(suffixesFor({{"LANG", "de"}, {"LC_MESSAGES", "fr"}, {"LC_ALL", "it"}}),
                ElementsAre("it"));
    EXPECT_THAT(suffixesFor({{"LANG", "de"}, {"LC_ALL", ""}}), ElementsAre("de"));
}

TEST(LocaleSuffixes, AListOfLanguagesComesBeforeTheLocale) {
    EXPECT_THAT(suffixesFor({{"LANG", "de_DE"}, {"LANGUAGE", "gsw:de_CH::fr"}}),
                ElementsAre("gsw", "de_CH", "de", "fr", "de_DE"));
}

TEST(DesktopEntry, HasTheNameOfTheUsersLanguage) {
    const std::string text =
        "[Desktop Entry]\nType=Application\nName=Maps\nName[de]=Karten\nName[de_AT]=Korten\n"
        "Name[fr]=Cartes\n";
    EXPECT_EQ(nameOf(text), "Maps");
    EXPECT_EQ(nameOf(text, {"de"}), "Karten");
    EXPECT_EQ(nameOf(text, {"de_AT", "de"}), "Korten");
    EXPECT_EQ(nameOf(text, {"de_CH", "de"}), "Karten");
    EXPECT_EQ(nameOf(text, {"it", "fr"}), "Cartes");
    EXPECT_EQ(nameOf(text, {"pl"}), "Maps");
}

TEST(DesktopEntry, TheOrderOfTheNamesDoesNotMatter) {
    const std::string text = "[Desktop Entry]\nName[de_AT]=Korten\nName[de]=Karten\nName=Maps\n";
    EXPECT_EQ(nameOf(text, {"de_AT", "de"}), "Korten");
    EXPECT_EQ(nameOf(text, {"de"}), "Karten");
    EXPECT_EQ(nameOf(text), "Maps");
}

TEST(DesktopEntry, WithoutAGeneralNameHasTheLocalisedOne) {
    EXPECT_EQ(nameOf("[Desktop Entry]\nName[de]=Karten\n", {"de"}), "Karten");
    EXPECT_EQ(nameOf("[Desktop Entry]\nName[de]=Karten\n"), "(none)");
}

TEST(DesktopEntry, AnEmptyNameDoesNotCount) {
    EXPECT_EQ(nameOf("[Desktop Entry]\nName=Maps\nName[de]=\n", {"de"}), "Maps");
    EXPECT_EQ(nameOf("[Desktop Entry]\nName=  \n"), "(none)");
}

TEST(DesktopEntry, OnlyItsOwnGroupCounts) {
    EXPECT_EQ(nameOf("Name=Before\n[Desktop Entry]\nName=Maps\n[Desktop Action new]\nName=New\n"),
              "Maps");
    EXPECT_EQ(nameOf("[Desktop Action new]\nName=New\n"), "(none)");
    EXPECT_EQ(nameOf("[Desktop Action new]\nName=New\nHidden=true\n[Desktop Entry]\nName=Maps\n"),
              "Maps");
}

TEST(DesktopEntry, OtherKeysDoNotCount) {
    EXPECT_EQ(nameOf("[Desktop Entry]\nGenericName=Viewer\nX-Name=x\nName[=x\nNamed=x\nName]=x\n"
                     "# Name=Comment\n\nNoEquals\nName=Maps\n"),
              "Maps");
}

TEST(DesktopEntry, SpacesAroundTheEqualsSignAndLineEndsOfOtherSystemsAreIgnored) {
    EXPECT_EQ(nameOf("[Desktop Entry]\r\nName = Maps and more \r\n"), "Maps and more");
}

TEST(DesktopEntry, EscapesAreResolved) {
    EXPECT_EQ(nameOf("[Desktop Entry]\nName=\\sA\\tB\\nC\\rD\\\\E\\F\\\n"), " A\tB\nC\rD\\EF\\");
}

TEST(DesktopEntry, ANameThatIsNotUTF8IsRepaired) {
    EXPECT_EQ(nameOf("[Desktop Entry]\nName=caf\xE9\n"), "caf\xEF\xBF\xBD");
}

TEST(DesktopEntry, AVeryLongNameIsCut) {
    std::string name;
    for (int i = 0; i < 256; ++i) {
        name += "ö";
    }
    EXPECT_EQ(nameOf("[Desktop Entry]\nName=" + name + "\n"), name);
    EXPECT_EQ(nameOf("[Desktop Entry]\nName=" + name + "x\n"), name);
}

TEST(DesktopEntry, OneThatNoMenuShowsIsNotShown) {
    const std::vector<std::string> none;
    EXPECT_TRUE(parseDesktopEntry("[Desktop Entry]\nName=a\n", none)->isShown);
    EXPECT_TRUE(parseDesktopEntry("[Desktop Entry]\nName=a\nNoDisplay=false\n", none)->isShown);
    EXPECT_FALSE(parseDesktopEntry("[Desktop Entry]\nName=a\nNoDisplay=true\n", none)->isShown);
}

TEST(DesktopEntry, ARemovedOneOrAnotherKindIsNone) {
    EXPECT_EQ(nameOf("[Desktop Entry]\nName=a\nHidden=true\n"), "(none)");
    EXPECT_EQ(nameOf("[Desktop Entry]\nName=a\nHidden=false\n"), "a");
    EXPECT_EQ(nameOf("[Desktop Entry]\nType=Link\nName=a\n"), "(none)");
    EXPECT_EQ(nameOf("[Desktop Entry]\nType=Directory\nName=a\n"), "(none)");
}

TEST(DesktopEntry, OfDamagedTextIsNone) {
    for (const char* text : {"", "\n", "[", "[Desktop Entry]", "[Desktop Entry", "Name=a\n",
                             "[desktop entry]\nName=a\n", "=\n==\n[Desktop Entry]\n=a\n"}) {
        EXPECT_EQ(nameOf(text), "(none)") << text;
    }
}

TEST(DesktopEntryValue, IsTheRawTextAfterTheEqualsSign) {
    const std::string text =
        "X=before\n# X=comment\n[Desktop Entry]\nX = a\\sb = c \r\n#X=1\nX[de]=d\nEmpty=\n"
        "[Other]\nX=other\nY=other\n";
    EXPECT_EQ(desktopEntryValue(text, "X"), "a\\sb = c");
    EXPECT_EQ(desktopEntryValue(text, "X[de]"), "d");
    EXPECT_EQ(desktopEntryValue(text, "Empty"), "");
    EXPECT_EQ(desktopEntryValue(text, "Y"), std::nullopt);
    EXPECT_EQ(desktopEntryValue(text, "x"), std::nullopt);
    EXPECT_EQ(desktopEntryValue("", "X"), std::nullopt);
}

TEST(DesktopEntryValue, IsTheLastOfSeveral) {
    EXPECT_EQ(desktopEntryValue("[Desktop Entry]\nX=1\nX=2\n", "X"), "2");
}

TEST(DesktopEntryText, HasItsEscapesResolved) {
    EXPECT_EQ(desktopEntryText(R"(a\sb\n\t\r\\c\;)"), "a b\n\t\r\\c;");
    EXPECT_EQ(desktopEntryText("a\\"), "a\\");
    EXPECT_EQ(desktopEntryText(""), "");
}

TEST(DesktopEntryCommand, IsDividedAtSpaces) {
    EXPECT_THAT(desktopEntryCommand("qps"), ElementsAre("qps"));
    EXPECT_THAT(desktopEntryCommand("  /usr/bin/monitor  --all\t-v "),
                ElementsAre("/usr/bin/monitor", "--all", "-v"));
    EXPECT_THAT(desktopEntryCommand("   "), IsEmpty());
}

TEST(DesktopEntryCommand, KeepsQuotedWordsTogether) {
    EXPECT_THAT(desktopEntryCommand(R"("/opt/a program" "" x"y z"w)"),
                ElementsAre("/opt/a program", "", "xy zw"));
    // The value's own escapes come first: four backslashes are one.
    EXPECT_THAT(desktopEntryCommand(R"(m "a\\"b\\\\c\\$d\\`e")"), ElementsAre("m", R"(a"b\c$d`e)"));
    EXPECT_THAT(desktopEntryCommand(R"(sh -c 'exec "monitor" %u' a\\ b)"),
                ElementsAre("sh", "-c", R"(exec "monitor" %u)", "a b"));
}

TEST(DesktopEntryCommand, HasNothingToOpen) {
    EXPECT_THAT(desktopEntryCommand("m %f %U -x%u %i 100%% \"50%%\""),
                ElementsAre("m", "-x", "100%", "50%"));
}

TEST(DesktopEntryCommand, WithAQuotationThatDoesNotEndIsNone) {
    EXPECT_THAT(desktopEntryCommand("m \"a"), IsEmpty());
    EXPECT_THAT(desktopEntryCommand("m 'a"), IsEmpty());
    EXPECT_THAT(desktopEntryCommand(R"(m "\\)"), IsEmpty());
}

}  // namespace
}  // namespace tarnwick::platform
