// SPDX-License-Identifier: MIT
#include "platform/linux/applications/application_unit.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace tarnwick::platform {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

const std::string session = "/user.slice/user-1000.slice/user@1000.service";

/// The entries that a process with these groups may belong to.
std::vector<std::string> entriesOf(const std::string& cgroups) {
    const auto unit = applicationUnit(cgroups);
    return unit ? unit->entries : std::vector<std::string>();
}

/// The entries that a process in this unit of a user's session may belong to.
std::vector<std::string> candidatesOf(const std::string& unit) {
    return entriesOf("0::" + session + "/app.slice/" + unit + "\n");
}

TEST(ApplicationUnit, AScopeNamesTheEntryBetweenLauncherAndProcess) {
    EXPECT_THAT(candidatesOf("app-gnome-org.gnome.Maps-4711.scope"),
                ElementsAre("org.gnome.Maps", "gnome-org.gnome.Maps"));
    EXPECT_THAT(candidatesOf("app-org.kde.konsole-4711.scope"), ElementsAre("org.kde.konsole"));
    EXPECT_THAT(candidatesOf("app-flatpak-org.mozilla.firefox-99.scope"),
                ElementsAre("org.mozilla.firefox", "flatpak-org.mozilla.firefox"));
}

TEST(ApplicationUnit, ADashWithinTheEntryIsEscaped) {
    EXPECT_THAT(candidatesOf("app-gnome-google\\x2dchrome-4711.scope"),
                ElementsAre("google-chrome", "gnome-google-chrome"));
}

TEST(ApplicationUnit, ADashThatALauncherForgotToEscapeIsFoundInTheEnd) {
    EXPECT_THAT(candidatesOf("app-google-chrome-4711.scope"),
                ElementsAre("chrome", "google-chrome"));
    EXPECT_THAT(candidatesOf("app-a-b-c-1.scope"), ElementsAre("c", "b-c", "a-b-c"));
}

TEST(ApplicationUnit, AServiceNamesTheEntryBeforeItsInstance) {
    EXPECT_THAT(candidatesOf("app-org.kde.kate@1f2e3d4c.service"), ElementsAre("org.kde.kate"));
    EXPECT_THAT(candidatesOf("app-org.kde.kate.service"), ElementsAre("org.kde.kate"));
    EXPECT_THAT(candidatesOf("app-gnome\\x2dkeyring@autostart.service"),
                ElementsAre("gnome-keyring"));
    EXPECT_THAT(candidatesOf("app-gnome-firefox@0.service"),
                ElementsAre("firefox", "gnome-firefox"));
}

TEST(ApplicationUnit, AnOlderFlatpakScopeHasNoLauncher) {
    EXPECT_THAT(candidatesOf("flatpak-org.gimp.GIMP-4711.scope"), ElementsAre("org.gimp.GIMP"));
}

TEST(ApplicationUnit, ASnapNamesPackageAndApplication) {
    const std::string unique = "4f2b9a4e-0d6c-4e7e-9a39-0c1d2e3f4a5b";
    EXPECT_THAT(candidatesOf("snap.firefox.firefox-" + unique + ".scope"),
                ElementsAre("firefox_firefox"));
    EXPECT_THAT(candidatesOf("snap.firefox.firefox." + unique + ".scope"),
                ElementsAre("firefox_firefox"));
    EXPECT_THAT(candidatesOf("snap.gnome-calculator.gnome-calculator-" + unique + ".scope"),
                ElementsAre("gnome-calculator_gnome-calculator"));
    EXPECT_THAT(candidatesOf("snap.libreoffice.writer-" + unique + ".scope"),
                ElementsAre("libreoffice_writer", "libreoffice_libreoffice"));
    EXPECT_THAT(candidatesOf("snap.cups.cupsd.service"), ElementsAre("cups_cupsd", "cups_cups"));
    EXPECT_THAT(candidatesOf("snap.firefox.scope"), IsEmpty());
}

TEST(ApplicationUnit, AnApplicationStartedThroughTheBusIsNamedByItsBusName) {
    EXPECT_THAT(candidatesOf("dbus.slice/dbus-:1.2-org.gnome.Nautilus@0.service"),
                ElementsAre("org.gnome.Nautilus"));
    EXPECT_THAT(candidatesOf("dbus-:1.2.service"), IsEmpty());
}

TEST(ApplicationUnit, GroupsThatTheApplicationMadeForItselfDoNotMatter) {
    EXPECT_THAT(candidatesOf("app-org.example.Box-1.scope/payload/inner"),
                ElementsAre("org.example.Box"));
}

TEST(ApplicationUnit, TheInnermostUnitDecides) {
    // A shell in a terminal has a scope of its own.
    EXPECT_THAT(candidatesOf("app-org.gnome.Terminal.slice/vte-spawn-0af1.scope"), IsEmpty());
    EXPECT_THAT(candidatesOf("app-org.kde.konsole-1.scope/tab(33).scope"), IsEmpty());
    EXPECT_THAT(candidatesOf("app-a-1.scope/app-b-2.scope"), ElementsAre("b"));
}

TEST(ApplicationUnit, OtherUnitsAreNoApplications) {
    for (const char* unit : {"dbus.service", "session-3.scope", "init.scope", "pipewire.service",
                             "docker-0123abcd.scope", "app-.scope", "app.scope", "app-1.slice",
                             "apps-a-1.scope", ""}) {
        EXPECT_THAT(candidatesOf(unit), IsEmpty()) << unit;
    }
}

TEST(ApplicationUnit, ComesFromTheServiceManagersGroupAmongOldOnes) {
    const std::string old = "12:pids:" + session + "/app-wrong-1.scope\n1:name=systemd:" + session +
                            "/app-right-1.scope\n";
    EXPECT_THAT(entriesOf(old), ElementsAre("right"));
    EXPECT_THAT(entriesOf("0::/\n" + old), ElementsAre("right"));
    EXPECT_THAT(entriesOf(old + "0::/\n"), ElementsAre("right"));
    EXPECT_THAT(entriesOf("0::" + session + "/app-new-1.scope\n" + old), ElementsAre("new"));
}

TEST(ApplicationUnit, OfTheSystemIsNone) {
    EXPECT_THAT(entriesOf("0::/app-a-1.scope\n"), IsEmpty());
    EXPECT_THAT(entriesOf("0::/system.slice/app-a@boot.service\n"), IsEmpty());
    EXPECT_THAT(entriesOf("0::/system.slice/snap.cups.cupsd.service\n"), IsEmpty());
    EXPECT_THAT(entriesOf("0::/user.slice/user-1000.slice/app-a-1.scope\n"), IsEmpty());
    EXPECT_THAT(entriesOf("0::/user.slice/user@1000/app-a-1.scope\n"), IsEmpty());
    EXPECT_THAT(entriesOf("0::" + session + "\n"), IsEmpty());
    EXPECT_THAT(entriesOf("0::" + session + "/\n"), IsEmpty());
    EXPECT_THAT(entriesOf("0::" + session + "/app-a-1.scope\n"), ElementsAre("a"));
}

TEST(ApplicationUnit, HasTheGroupOfTheUnitItself) {
    EXPECT_EQ(applicationUnit("0::" + session + "/app.slice/app-a-1.scope/payload/inner\n")->group,
              session + "/app.slice/app-a-1.scope");
    EXPECT_EQ(applicationUnit("0::" + session + "/app-a\\x2db-1.scope")->group,
              session + "/app-a\\x2db-1.scope");
}

TEST(Starter, IsAShellOrAPartOfASandbox) {
    for (const char* program : {"/bin/sh", "/usr/bin/dash", "/usr/bin/bash", "/usr/bin/bwrap",
                                "/usr/libexec/flatpak/xdg-dbus-proxy", "bash"}) {
        EXPECT_TRUE(isStarter(program)) << program;
    }
    for (const char* program :
         {"/usr/bin/python3", "/opt/bash/game", "/usr/bin/bashtop", "/", ""}) {
        EXPECT_FALSE(isStarter(program)) << program;
    }
}

TEST(ProgramOfAnApplication, IsItsOwnOneOrLiesBesideIt) {
    EXPECT_TRUE(belongsTo("/usr/bin/terminal", "/usr/bin/terminal"));
    EXPECT_TRUE(belongsTo("renderer", "renderer"));
    EXPECT_TRUE(belongsTo("/usr/lib/mail/crash-reporter", "/usr/lib/mail/mail"));
    EXPECT_TRUE(belongsTo("/usr/lib/mail/bin/helper", "/usr/lib/mail/mail"));
    EXPECT_FALSE(belongsTo("/usr/lib/mailer/helper", "/usr/lib/mail/mail"));
    EXPECT_FALSE(belongsTo("/usr/lib/helper", "/usr/lib/mail/mail"));
    EXPECT_FALSE(belongsTo("/games/asteroids/asteroids", "/games/launcher/launcher"));
}

TEST(ProgramOfAnApplication, LiesBesideNothingWhereManyProgramsLie) {
    EXPECT_FALSE(belongsTo("/usr/bin/make", "/usr/bin/terminal"));
    EXPECT_FALSE(belongsTo("/bin/make", "/bin/terminal"));
    EXPECT_FALSE(belongsTo("/usr/local/bin/make", "/usr/local/bin/terminal"));
    EXPECT_FALSE(belongsTo("/home/ada/.local/bin/make", "/home/ada/.local/bin/terminal"));
    EXPECT_FALSE(belongsTo("/usr/libexec/gcc/13/cc1plus", "/usr/libexec/terminal-server"));
    EXPECT_FALSE(
        belongsTo("/usr/local/libexec/gcc/13/cc1plus", "/usr/local/libexec/terminal-server"));
    EXPECT_FALSE(belongsTo("/usr/local/lib/gcc/13/cc1plus", "/usr/local/lib/terminal-server"));
    EXPECT_FALSE(belongsTo("/home/ada/games/asteroids", "/home/ada/launcher"));
    EXPECT_FALSE(belongsTo("/usr/local/games/asteroids", "/usr/local/games/launcher"));
    EXPECT_FALSE(belongsTo("/usr/bin/make", "/launcher"));
    EXPECT_FALSE(belongsTo("make", "launcher"));
    EXPECT_FALSE(belongsTo("/usr/bin/make", ""));
}

TEST(ProgramOfAnApplication, IsNotEverythingThatItsInterpreterRuns) {
    for (const char* program : {"/usr/bin/python3.11", "/usr/bin/perl", "/usr/bin/ruby3.1",
                                "/usr/bin/node", "/usr/lib/jvm/java-17-openjdk-amd64/bin/java"}) {
        EXPECT_FALSE(belongsTo(program, program)) << program;
    }
    EXPECT_TRUE(belongsTo("/usr/bin/pythonista", "/usr/bin/pythonista"));
    EXPECT_TRUE(belongsTo("/usr/bin/2048", "/usr/bin/2048"));
    EXPECT_TRUE(belongsTo("/opt/studio/jbr/bin/java", "/opt/studio/jbr/bin/java"));
}

TEST(ProgramOfAnApplication, LiesAnywhereInTheFolderOfItsPackage) {
    EXPECT_TRUE(belongsTo("/app/lib/chat/helper", "/app/bin/chat"));
    EXPECT_FALSE(belongsTo("/usr/bin/make", "/app/bin/chat"));
    EXPECT_TRUE(belongsTo("/snap/mail/12/usr/lib/helper", "/snap/mail/12/usr/bin/mail"));
    EXPECT_FALSE(belongsTo("/snap/mailer/12/usr/bin/mail", "/snap/mail/12/usr/bin/mail"));
    EXPECT_TRUE(belongsTo("/opt/studio/runtime/bin/java", "/opt/studio/bin/studio"));
    EXPECT_FALSE(belongsTo("/opt/other/bin/java", "/opt/studio/bin/studio"));
    EXPECT_FALSE(belongsTo("/opt/make", "/opt/studio"));
}

TEST(ApplicationUnit, NoNameLeadsOutOfTheFolders) {
    EXPECT_THAT(candidatesOf("app-\\x2f..\\x2fetc\\x2fpasswd-1.scope"), IsEmpty());
    EXPECT_THAT(candidatesOf("app-a\\x00b-1.scope"), IsEmpty());
}

TEST(ApplicationUnit, AnEscapeThatIsNoneStays) {
    EXPECT_THAT(candidatesOf("app-a\\x2-1.scope"), ElementsAre("a\\x2"));
    EXPECT_THAT(candidatesOf("app-a\\xzz-1.scope"), ElementsAre("a\\xzz"));
    EXPECT_THAT(candidatesOf("app-a\\-1.scope"), ElementsAre("a\\"));
}

TEST(ApplicationUnit, OfDamagedTextIsNone) {
    for (const char* text : {"", "\n", "0", "0:", "0::", "0::/", ":::::", "0:cpu:/app-a-1.scope",
                             "garbage\n\n\n", "::"}) {
        EXPECT_THAT(entriesOf(text), IsEmpty()) << text;
    }
    // A missing line break is no damage.
    EXPECT_THAT(entriesOf("0::" + session + "/app-a-1.scope"), ElementsAre("a"));
}

}  // namespace
}  // namespace tarnwick::platform
