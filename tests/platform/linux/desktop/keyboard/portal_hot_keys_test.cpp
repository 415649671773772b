// SPDX-License-Identifier: MIT
#include "platform/linux/desktop/keyboard/portal_hot_keys.h"

#include <QTimer>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/linux/desktop/session/bus_calls.h"
#include "tests/platform/linux/desktop/keyboard/installed_layout.h"
#include "tests/platform/linux/desktop/keyboard/scripted_shortcuts_portal.h"
#include "tests/platform/linux/desktop/private_bus.h"

namespace tarnwick::platform {
namespace {

using testing::ask;
using ::testing::Each;
using ::testing::ElementsAre;
using testing::InstalledLayout;
using ::testing::IsEmpty;
using testing::PrivateBus;
using testing::ScriptedShortcutsPortal;
using testing::waitUntil;
namespace status = portal_hot_key_status;
namespace modifier = hot_key_modifier;

constexpr std::int32_t kSuccess = hot_key_status::kSuccess;
constexpr HotKeyID kId{0x54524E57, 1};
/// Virtual key codes.
constexpr std::uint32_t kL = 37;
constexpr std::uint32_t kK = 40;

class PortalKeys : public ::testing::Test {
 protected:
    void SetUp() override { makeKeys(std::chrono::hours(1)); }

    void makeKeys(std::chrono::milliseconds patience) {
        handle_.reset();
        handler_.reset();
        keys_ = std::make_unique<PortalHotKeys>(
            bus_, layout_,
            PortalHotKeys::Options{
                .patience = patience,
                .notice = [this](std::string_view line) { notices_.emplace_back(line); },
                .findEntry =
                    [this](auto found) {
                        // Later, as from another thread.
                        QTimer::singleShot(
                            0, [this, found = std::move(found)] { found(isInstalled_); });
                    },
                .gnomeSettings = {"/bin/echo", gnomeSettings_}});
        auto result = keys_->installEventHandler([this](const HotKeyEvent* event) {
            HotKeyID id;
            if (event == nullptr || event->hotKeyID(id) != kSuccess || id != kId) {
                ADD_FAILURE() << "no such event";
            }
            ++presses_;
            return kSuccess;
        });
        EXPECT_EQ(result.status, kSuccess);
        handler_ = std::move(result.handle);
        keys_->setRegistrationChanged([this] {
            ++changes_;
            if (registersAgain_) {
                add(wanted_, wantedModifiers_);
            }
        });
    }
    /// As its user does: gives the old one back and registers.
    std::int32_t add(std::uint32_t keyCode = kL, std::uint32_t modifiers = modifier::kCommand) {
        wanted_ = keyCode;
        wantedModifiers_ = modifiers;
        handle_.reset();
        auto result = keys_->registerEventHotKey(keyCode, modifiers, kId);
        EXPECT_EQ(result.status == kSuccess, result.handle != nullptr);
        handle_ = std::move(result.handle);
        status_ = result.status;
        return result.status;
    }
    void addAndHold() {
        portal_.begin();
        add();
        ASSERT_TRUE(waitUntil([this] { return handle_ != nullptr; }));
        changes_ = 0;
    }
    /// Makes more round trips than any conversation here takes. Afterwards everything that was sent
    /// has had its effect.
    void settle() {
        for (int i = 0; i < 12; ++i) {
            ask(bus_, busCall("GetId", {}));
            ask(portalBus_, busCall("GetId", {}));
        }
    }

    PrivateBus daemon_;
    QDBusConnection bus_ = daemon_.connect();
    QDBusConnection portalBus_ = daemon_.connect();
    ScriptedShortcutsPortal portal_{portalBus_};
    InstalledLayout layout_{"us"};
    std::vector<std::string> notices_;
    bool isInstalled_ = true;
    QString gnomeSettings_;
    bool registersAgain_ = true;
    int changes_ = 0;
    int presses_ = 0;
    std::uint32_t wanted_ = 0;
    std::uint32_t wantedModifiers_ = 0;
    std::int32_t status_ = kSuccess;
    std::unique_ptr<PortalHotKeys> keys_;
    std::unique_ptr<HotKeyHandle> handler_;
    std::unique_ptr<HotKeyHandle> handle_;
};

// Asking.

TEST_F(PortalKeys, AreNotThereBeforeThePortalHasDecided) {
    portal_.begin();
    portal_.holdsResponse = true;
    EXPECT_EQ(add(), status::kAsking);
    settle();
    EXPECT_EQ(changes_, 0);
    EXPECT_EQ(add(), status::kAsking);
    EXPECT_THAT(portal_.calls, ElementsAre("version", "CreateSession", "BindShortcuts"));
    portal_.respond();
    EXPECT_TRUE(waitUntil([&] { return status_ == kSuccess; }));
    EXPECT_EQ(changes_, 1);
    EXPECT_EQ(portal_.calls.size(), 3);
}

TEST_F(PortalKeys, AreAskedForInTheWordsOfThePortal) {
    portal_.begin();
    add(kL, modifier::kCommand | modifier::kShift);
    ASSERT_TRUE(waitUntil([&] { return status_ == kSuccess; }));
    ASSERT_EQ(portal_.bound.size(), 1);
    EXPECT_EQ(portal_.bound[0].properties.value("preferred_trigger"), "SHIFT+LOGO+l");
    EXPECT_EQ(portal_.bound[0].properties.value("description"), "Open or close the panel");
    EXPECT_EQ(portal_.boundSession, portal_.sessions.last());
}

TEST_F(PortalKeys, AreAskedForByName) {
    for (const bool takesNames : {true, false}) {
        portal_.takesNames = takesNames;
        portal_.names.clear();
        portal_.calls.clear();
        makeKeys(std::chrono::hours(1));
        addAndHold();
        ASSERT_EQ(portal_.names.size(), 1) << takesNames;
        EXPECT_EQ(portal_.names.first().first, "org.tarnwick.Tarnwick");
        // The first call of all settles what the caller is called.
        EXPECT_EQ(portal_.names.first().second, 0);
    }
}

TEST_F(PortalKeys, ArePressed) {
    addAndHold();
    portal_.press();
    EXPECT_TRUE(waitUntil([&] { return presses_ == 1; }));
    portal_.press();
    EXPECT_TRUE(waitUntil([&] { return presses_ == 2; }));
    settle();
    EXPECT_EQ(presses_, 2);
    EXPECT_EQ(changes_, 0);
}

TEST_F(PortalKeys, ArePressedByNobodyElse) {
    addAndHold();
    portal_.press(portal_.sessions.last() + "x", portal_.bound.last().id);
    portal_.press(portal_.sessions.last(), "another");
    // A sender that is not the portal.
    QDBusConnection stranger = daemon_.connect();
    QDBusMessage signal =
        QDBusMessage::createTargetedSignal(bus_.baseService(), "/org/freedesktop/portal/desktop",
                                           "org.freedesktop.portal.GlobalShortcuts", "Activated");
    signal.setArguments({QVariant::fromValue(QDBusObjectPath(portal_.sessions.last())),
                         portal_.bound.last().id, qulonglong{1}, QVariantMap()});
    ASSERT_TRUE(stranger.send(signal));
    ask(stranger, busCall("GetId", {}));
    settle();
    EXPECT_EQ(presses_, 0);
    // The very same from the portal is one.
    ASSERT_TRUE(portalBus_.send(signal));
    EXPECT_TRUE(waitUntil([&] { return presses_ == 1; }));
}

TEST_F(PortalKeys, AreNotPressedWithoutAHandler) {
    addAndHold();
    handler_.reset();
    portal_.press();
    settle();
    EXPECT_EQ(presses_, 0);
}

TEST_F(PortalKeys, AreFoundInWhateverOrderThePortalAnswers) {
    for (const bool first : {false, true}) {
        for (const bool chooses : {false, true}) {
            // A portal that chooses its names must answer before it responds, because the client
            // cannot know the names earlier.
            portal_.respondsFirst = first && !chooses;
            portal_.choosesRequestNames = chooses;
            portal_.choosesSessionNames = chooses;
            makeKeys(std::chrono::hours(1));
            addAndHold();
            EXPECT_EQ(portal_.boundSession, portal_.sessions.last());
            const int before = presses_;
            portal_.press();
            EXPECT_TRUE(waitUntil([&] { return presses_ == before + 1; }));
        }
    }
}

TEST_F(PortalKeys, AreAskedForOnceWhenOneCombinationFollowsAnother) {
    portal_.begin();
    add(kK, modifier::kCommand);
    add(kK, modifier::kCommand | modifier::kControl);
    add(kL, modifier::kCommand | modifier::kControl);
    ASSERT_TRUE(waitUntil([&] { return status_ == kSuccess; }));
    settle();
    ASSERT_EQ(portal_.bound.size(), 1);
    EXPECT_EQ(portal_.bound[0].properties.value("preferred_trigger"), "CTRL+LOGO+l");
    EXPECT_EQ(portal_.sessions.size(), 1);
}

TEST_F(PortalKeys, AreGrantedByNobodyElse) {
    portal_.begin();
    portal_.holdsResponse = true;
    add();
    settle();
    QDBusMessage response = QDBusMessage::createTargetedSignal(
        bus_.baseService(), portal_.request, "org.freedesktop.portal.Request", "Response");
    response.setArguments(
        {0U, QVariantMap{{"shortcuts", QVariant::fromValue(PortalShortcutEntries{
                                           {portal_.bound.last().id,
                                            {{"trigger_description", QString("Meta+L")}}}})}}});
    QDBusConnection stranger = daemon_.connect();
    ASSERT_TRUE(stranger.send(response));
    ask(stranger, busCall("GetId", {}));
    settle();
    EXPECT_EQ(add(), status::kAsking);
    EXPECT_EQ(changes_, 0);
    // The very same from the portal grants them.
    ASSERT_TRUE(portalBus_.send(response));
    EXPECT_TRUE(waitUntil([&] { return status_ == kSuccess; }));
}

TEST_F(PortalKeys, WithOtherModifiersAreAnotherCombination) {
    addAndHold();
    EXPECT_EQ(add(kL, modifier::kCommand | modifier::kOption), status::kAsking);
    ASSERT_TRUE(waitUntil([&] { return status_ == kSuccess; }));
    EXPECT_EQ(portal_.bound.last().properties.value("preferred_trigger"), "ALT+LOGO+l");
}

TEST_F(PortalKeys, OfAnotherCombinationReplaceTheOnesBefore) {
    addAndHold();
    const QString before = portal_.sessions.last();
    const QString id = portal_.bound.last().id;
    EXPECT_EQ(add(kK), status::kAsking);
    ASSERT_TRUE(waitUntil([&] { return status_ == kSuccess; }));
    EXPECT_THAT(portal_.closed, ElementsAre(before));
    EXPECT_EQ(portal_.sessions.size(), 2);
    EXPECT_NE(portal_.bound.last().id, id);
    portal_.press(before, id);
    settle();
    EXPECT_EQ(presses_, 0);
    portal_.press();
    EXPECT_TRUE(waitUntil([&] { return presses_ == 1; }));
}

TEST_F(PortalKeys, AskedForNoLongerAreTakenBackWhileTheUserDecides) {
    portal_.begin();
    portal_.holdsResponse = true;
    add(kL);
    settle();
    const QString session = portal_.sessions.last();
    portal_.holdsResponse = false;
    add(kK);
    ASSERT_TRUE(waitUntil([&] { return status_ == kSuccess; }));
    EXPECT_EQ(portal_.closed.size(), 2);
    EXPECT_TRUE(portal_.closed.first().contains("/request/"));
    EXPECT_EQ(portal_.closed.last(), session);
    // A late answer about the old one changes nothing.
    portal_.respond();
    settle();
    EXPECT_EQ(changes_, 1);
    EXPECT_NE(handle_, nullptr);
}

TEST_F(PortalKeys, RegisteredAgainAreHeldAtOnceAndNotAskedForAgain) {
    addAndHold();
    EXPECT_EQ(add(), kSuccess);
    EXPECT_EQ(add(), kSuccess);
    settle();
    EXPECT_THAT(portal_.calls, ElementsAre("version", "CreateSession", "BindShortcuts"));
    EXPECT_THAT(portal_.closed, IsEmpty());
    portal_.press();
    EXPECT_TRUE(waitUntil([&] { return presses_ == 1; }));
    EXPECT_EQ(changes_, 0);
}

TEST_F(PortalKeys, HaveHandlesThatCanBeToldApart) {
    addAndHold();
    const std::string before = handle_->description();
    EXPECT_FALSE(before.empty());
    add();
    EXPECT_NE(handle_->description(), before);
}

// Giving back.

TEST_F(PortalKeys, GivenBackAreNotPressed) {
    addAndHold();
    handle_.reset();
    portal_.press();
    settle();
    EXPECT_EQ(presses_, 0);
}

TEST_F(PortalKeys, GivenBackGoBackToThePortalAfterAMoment) {
    makeKeys(std::chrono::milliseconds(1));
    addAndHold();
    settle();
    EXPECT_THAT(portal_.closed, IsEmpty());
    handle_.reset();
    EXPECT_TRUE(waitUntil([&] { return !portal_.closed.isEmpty(); }));
    EXPECT_THAT(portal_.closed, ElementsAre(portal_.sessions.last()));
    EXPECT_EQ(add(), status::kAsking);
    EXPECT_TRUE(waitUntil([&] { return status_ == kSuccess; }));
}

TEST_F(PortalKeys, ThatNobodyWantsAnyMoreGoBackToThePortal) {
    makeKeys(std::chrono::milliseconds(1));
    portal_.begin();
    add();
    registersAgain_ = false;
    EXPECT_TRUE(waitUntil([&] { return !portal_.closed.isEmpty(); }));
    EXPECT_EQ(changes_, 1);
    EXPECT_THAT(portal_.closed, ElementsAre(portal_.sessions.last()));
}

TEST_F(PortalKeys, GoBackToThePortalAtTheEnd) {
    addAndHold();
    handle_.reset();
    handler_.reset();
    keys_.reset();
    EXPECT_TRUE(waitUntil([&] { return !portal_.closed.isEmpty(); }));
    EXPECT_THAT(portal_.closed, ElementsAre(portal_.sessions.last()));
}

TEST_F(PortalKeys, WithdrawnWhileTheUserDecidesAreTakenBack) {
    portal_.begin();
    portal_.holdsResponse = true;
    add();
    settle();
    ASSERT_EQ(portal_.sessions.size(), 1);
    keys_->withdrawRegistration();
    EXPECT_TRUE(waitUntil([&] { return portal_.closed.size() == 2; }));
    EXPECT_TRUE(portal_.closed.first().contains("/request/"));
    EXPECT_EQ(portal_.closed.last(), portal_.sessions.last());
    // A late answer changes nothing.
    portal_.respond();
    settle();
    EXPECT_EQ(changes_, 0);
    EXPECT_EQ(portal_.sessions.size(), 1);
    portal_.holdsResponse = false;
    EXPECT_EQ(add(), status::kAsking);
    EXPECT_TRUE(waitUntil([&] { return status_ == kSuccess; }));
}

TEST_F(PortalKeys, WithdrawnWithoutKeysAreGivenBackAndNotPressed) {
    portal_.begin();
    portal_.keys = "";
    add();
    settle();
    keys_->withdrawRegistration();
    EXPECT_TRUE(waitUntil([&] { return !portal_.closed.isEmpty(); }));
    EXPECT_THAT(portal_.closed, ElementsAre(portal_.sessions.last()));
    portal_.press();
    settle();
    EXPECT_EQ(presses_, 0);
    EXPECT_EQ(changes_, 1);
}

TEST_F(PortalKeys, WithdrawnBeforeTheyWereAskedForAreNotAskedFor) {
    portal_.begin();
    add();
    keys_->withdrawRegistration();
    settle();
    EXPECT_THAT(portal_.calls, IsEmpty());
}

TEST_F(PortalKeys, WithdrawnAreNotAskedForWhenThePortalComes) {
    add();
    settle();
    keys_->withdrawRegistration();
    portal_.begin();
    settle();
    EXPECT_THAT(portal_.calls, IsEmpty());
}

TEST_F(PortalKeys, ThatAreHeldCannotBeWithdrawn) {
    addAndHold();
    keys_->withdrawRegistration();
    settle();
    EXPECT_THAT(portal_.closed, IsEmpty());
    portal_.press();
    EXPECT_TRUE(waitUntil([&] { return presses_ == 1; }));
}

// Refusals.

TEST_F(PortalKeys, ThatTheUserRefusesFail) {
    portal_.begin();
    portal_.bindCode = 1;
    add();
    EXPECT_EQ(status_, hot_key_status::kPending);
    // The decision is told: the same registration, made again, has it.
    EXPECT_TRUE(waitUntil([&] { return status_ == status::kRefused; }));
    EXPECT_EQ(changes_, 1);
    EXPECT_EQ(handle_, nullptr);
    EXPECT_EQ(add(), status::kRefused);
    portal_.press();
    settle();
    EXPECT_EQ(presses_, 0);
}

TEST_F(PortalKeys, ThatThePortalRefusesFail) {
    portal_.begin();
    portal_.createCode = 2;
    add();
    settle();
    EXPECT_EQ(add(), status::kRefused);
    EXPECT_THAT(portal_.calls, ElementsAre("version", "CreateSession"));
}

TEST_F(PortalKeys, BoundByAPortalThatSaysItEndedOtherwiseAreHeld) {
    portal_.bindCode = 2;
    addAndHold();
    portal_.press();
    EXPECT_TRUE(waitUntil([&] { return presses_ == 1; }));
}

TEST_F(PortalKeys, WithoutKeysOfAPortalThatEndedOtherwiseAreRefused) {
    portal_.begin();
    portal_.bindCode = 2;
    for (const auto& list : {PortalShortcutEntries(), PortalShortcutEntries{{"another", {}}},
                             PortalShortcutEntries{{"panel-LOGO-l", {}}}}) {
        portal_.list = list;
        makeKeys(std::chrono::hours(1));
        add();
        settle();
        EXPECT_EQ(add(), status::kRefused);
    }
}

TEST_F(PortalKeys, RefusedToAProgramThatIsNotInstalledSayOnceThatItShouldBe) {
    portal_.begin();
    portal_.bindCode = 2;
    portal_.list = PortalShortcutEntries();
    isInstalled_ = false;
    for (int i = 0; i < 2; ++i) {
        add();
        settle();
        add(kK);
        settle();
    }
    EXPECT_THAT(notices_, ElementsAre("this desktop gives the shortcut to installed programs only: "
                                      "install Tarnwick"));
}

TEST_F(PortalKeys, OfACallThatFailsSayThatTheProgramShouldBeInstalled) {
    portal_.begin();
    portal_.failing = "CreateSession";
    isInstalled_ = false;
    add();
    settle();
    EXPECT_EQ(notices_.size(), 1U);
}

TEST_F(PortalKeys, RefusedSayNothingWhereAnInstallationWouldNotHelp) {
    portal_.begin();
    // The user says no.
    portal_.bindCode = 1;
    isInstalled_ = false;
    add();
    settle();
    portal_.bindCode = 2;
    portal_.list = PortalShortcutEntries();
    isInstalled_ = true;
    add(kK);
    settle();
    EXPECT_THAT(notices_, IsEmpty());
}

TEST_F(PortalKeys, ThatWereRefusedCanBeAskedForAgain) {
    makeKeys(std::chrono::milliseconds(1));
    portal_.begin();
    portal_.bindCode = 1;
    add();
    // The answer is forgotten after a moment, and its session with it.
    ASSERT_TRUE(waitUntil([&] { return !portal_.closed.isEmpty(); }));
    portal_.bindCode = 0;
    EXPECT_EQ(add(), status::kAsking);
    EXPECT_TRUE(waitUntil([&] { return status_ == kSuccess; }));
}

TEST_F(PortalKeys, OfACallThatFailsFail) {
    portal_.begin();
    for (const char* method : {"CreateSession", "BindShortcuts"}) {
        portal_.failing = method;
        makeKeys(std::chrono::hours(1));
        EXPECT_EQ(add(), status::kAsking);
        settle();
        EXPECT_EQ(add(), status::kUnavailable) << method;
        EXPECT_EQ(portal_.calls.last(), method);
    }
    EXPECT_EQ(changes_, 2);
}

TEST_F(PortalKeys, AreHeldWhateverKeysTheUserChooses) {
    for (const char* text : {"Meta+L", "<Super>l", "Windows-Taste und L", "Meta+K"}) {
        portal_.keys = text;
        makeKeys(std::chrono::hours(1));
        addAndHold();
        const int before = presses_;
        portal_.press();
        EXPECT_TRUE(waitUntil([&] { return presses_ == before + 1; })) << text;
    }
    portal_.change({{portal_.bound.last().id, {{"trigger_description", QString("Meta+J")}}}});
    EXPECT_TRUE(waitUntil([this] { return changes_ == 1; }));
    EXPECT_NE(handle_, nullptr);
}

TEST_F(PortalKeys, AreNamedWhereTheUserHasChosenOthers) {
    EXPECT_EQ(keys_->otherKeys(), "");
    addAndHold();
    EXPECT_EQ(keys_->otherKeys(), "");
    const auto change = [this](const char* keys) {
        portal_.change({{portal_.bound.last().id, {{"trigger_description", QString(keys)}}}});
    };
    change("Press <Super>k");
    EXPECT_TRUE(waitUntil([this] { return keys_->otherKeys() == "Super+K"; }));
    EXPECT_TRUE(waitUntil([this] { return changes_ == 1; }));
    // The same keys in other words.
    change("Press <Super>l");
    EXPECT_TRUE(waitUntil([this] { return keys_->otherKeys().empty(); }));
    EXPECT_TRUE(waitUntil([this] { return changes_ == 2; }));
    change("Meta+L");
    settle();
    EXPECT_EQ(changes_, 2);
    EXPECT_NE(handle_, nullptr);
}

TEST_F(PortalKeys, AreAskedForAgainWhenPlasmaTellsOfOthers) {
    portal_.areKeysFree = true;
    addAndHold();
    settle();
    portal_.keys = "Meta+K";
    portal_.changeInPlasma({"another", "panel-LOGO-l", "", ""});
    portal_.changeInPlasma({"org.tarnwick.Tarnwick", "another", "", ""});
    portal_.changeInPlasma({});
    settle();
    EXPECT_FALSE(portal_.calls.contains("ListShortcuts"));
    portal_.changeInPlasma({"org.tarnwick.Tarnwick", "panel-LOGO-l", "", ""});
    EXPECT_TRUE(waitUntil([this] { return keys_->otherKeys() == "Meta+K"; }));
    EXPECT_TRUE(waitUntil([this] { return changes_ == 1; }));
    EXPECT_NE(handle_, nullptr);
}

TEST_F(PortalKeys, ThatGnomeHasForItselfAreInConflictUntilTheirFirstPress) {
    gnomeSettings_ = "org.gnome.settings-daemon.plugins.media-keys screensaver ['<Super>l']";
    portal_.keys = "Press <Super>l";
    makeKeys(std::chrono::hours(1));
    portal_.begin();
    add();
    EXPECT_TRUE(waitUntil([&] { return status_ == hot_key_status::kExists; }));
    portal_.press();
    EXPECT_TRUE(waitUntil([&] { return presses_ == 1; }));
    EXPECT_NE(handle_, nullptr);
}

TEST_F(PortalKeys, ThatTheUserHasChosenInPlaceOfThoseOfGnomeAreHeld) {
    gnomeSettings_ = "org.gnome.settings-daemon.plugins.media-keys screensaver ['<Super>l']";
    portal_.keys = "Press <Super>k";
    makeKeys(std::chrono::hours(1));
    addAndHold();
    settle();
    EXPECT_NE(handle_, nullptr);
}

TEST_F(PortalKeys, WithoutKeysAreNotHeld) {
    portal_.begin();
    for (const auto& list :
         {PortalShortcutEntries(), PortalShortcutEntries{{"another", {}}},
          PortalShortcutEntries{{"panel-LOGO-l", {}}},
          PortalShortcutEntries{{"panel-LOGO-l", {{"trigger_description", QString(" ")}}}},
          PortalShortcutEntries{{"panel-LOGO-k", {{"trigger_description", QString("Meta+L")}}}}}) {
        portal_.list = list;
        makeKeys(std::chrono::hours(1));
        add();
        settle();
        EXPECT_EQ(add(), hot_key_status::kExists);
    }
    EXPECT_EQ(changes_, 5);
}

TEST_F(PortalKeys, OfADamagedAnswerAreNotHeld) {
    portal_.begin();
    for (const auto& results : {QVariantMap(), QVariantMap{{"shortcuts", QString("Meta+L")}},
                                QVariantMap{{"shortcuts", QStringList{"panel-LOGO-l"}}}}) {
        portal_.results = results;
        makeKeys(std::chrono::hours(1));
        add();
        settle();
        EXPECT_EQ(add(), hot_key_status::kExists);
    }
}

TEST_F(PortalKeys, ThatPlasmaHasForSomethingElseAreInConflictWhateverItsPortalSays) {
    portal_.areKeysFree = false;
    portal_.begin();
    add(kL, modifier::kCommand | modifier::kShift);
    EXPECT_TRUE(waitUntil([&] { return status_ == hot_key_status::kExists; }));
    EXPECT_THAT(portal_.keysAsked,
                ElementsAre(int(Qt::META) | int(Qt::SHIFT) | int(Qt::Key_L), 0, 0, 0));
}

TEST_F(PortalKeys, ThatPlasmaHasForTheProgramAreHeld) {
    portal_.areKeysFree = true;
    addAndHold();
    settle();
    EXPECT_FALSE(portal_.keysAsked.isEmpty());
    EXPECT_NE(handle_, nullptr);
    EXPECT_EQ(changes_, 0);
}

TEST_F(PortalKeys, WithoutKeysAreHeldFromTheirFirstPressOn) {
    portal_.begin();
    portal_.keys = "";
    add();
    settle();
    EXPECT_EQ(add(), hot_key_status::kExists);
    portal_.press();
    EXPECT_TRUE(waitUntil([&] { return presses_ == 1; }));
    EXPECT_EQ(status_, kSuccess);
    EXPECT_EQ(changes_, 2);
    portal_.press();
    EXPECT_TRUE(waitUntil([&] { return presses_ == 2; }));
    EXPECT_EQ(changes_, 2);
}

TEST_F(PortalKeys, WithoutKeysWaitForTheirFirstPressAsLongAsItTakes) {
    makeKeys(std::chrono::milliseconds(1));
    portal_.begin();
    portal_.keys = "";
    add();
    settle();
    EXPECT_THAT(portal_.closed, IsEmpty());
    portal_.press();
    EXPECT_TRUE(waitUntil([&] { return presses_ == 1; }));
}

TEST_F(PortalKeys, WithoutKeysThatNobodyWantsAnyMoreAreNotPressed) {
    portal_.begin();
    portal_.keys = "";
    add();
    settle();
    registersAgain_ = false;
    portal_.press();
    settle();
    EXPECT_EQ(changes_, 2);
    EXPECT_EQ(presses_, 0);
}

// Later changes.

TEST_F(PortalKeys, AreLostWhenTheUserTakesTheirKeysAway) {
    addAndHold();
    portal_.change({{portal_.bound.last().id, {{"trigger_description", QString()}}}});
    EXPECT_TRUE(waitUntil([&] { return status_ == hot_key_status::kExists; }));
    EXPECT_EQ(changes_, 1);
    portal_.change({{portal_.bound.last().id, {{"trigger_description", QString("Meta+L")}}}});
    EXPECT_TRUE(waitUntil([&] { return status_ == kSuccess; }));
    EXPECT_EQ(changes_, 2);
}

TEST_F(PortalKeys, AreLostWithTheirSession) {
    addAndHold();
    portal_.closeSession();
    EXPECT_TRUE(waitUntil([&] { return status_ == status::kRefused; }));
    EXPECT_EQ(changes_, 1);
    portal_.press();
    settle();
    EXPECT_EQ(presses_, 0);
    EXPECT_EQ(portal_.sessions.size(), 1);
}

TEST_F(PortalKeys, AreNotPressedOnceTheyAreLostEvenIfNobodyRegistersAgain) {
    registersAgain_ = false;
    portal_.begin();
    add();
    ASSERT_TRUE(waitUntil([&] { return changes_ == 1; }));
    ASSERT_EQ(add(), kSuccess);
    portal_.closeSession();
    ASSERT_TRUE(waitUntil([&] { return changes_ == 2; }));
    portal_.press();
    settle();
    EXPECT_EQ(presses_, 0);
}

// A portal that is not there.

TEST_F(PortalKeys, FailWithoutAPortal) {
    EXPECT_EQ(add(), status::kAsking);
    settle();
    EXPECT_EQ(add(), status::kUnavailable);
    EXPECT_EQ(changes_, 1);
}

TEST_F(PortalKeys, FailWithAPortalThatHasNoShortcuts) {
    portal_.begin();
    for (const QVariant& version : {QVariant(), QVariant(0U), QVariant("x")}) {
        portal_.version = version;
        portal_.calls.clear();
        makeKeys(std::chrono::hours(1));
        EXPECT_EQ(add(), status::kAsking);
        settle();
        EXPECT_EQ(add(), status::kUnavailable);
        EXPECT_THAT(portal_.calls, ElementsAre("version"));
    }
    EXPECT_EQ(changes_, 3);
}

TEST_F(PortalKeys, AreHeldWithAnyLaterVersion) {
    portal_.version = 2U;
    addAndHold();
    EXPECT_EQ(status_, kSuccess);
}

TEST_F(PortalKeys, AreAskedForWhenThePortalComes) {
    add();
    settle();
    EXPECT_EQ(status_, status::kUnavailable);
    portal_.begin();
    EXPECT_TRUE(waitUntil([&] { return status_ == kSuccess; }));
    portal_.press();
    EXPECT_TRUE(waitUntil([&] { return presses_ == 1; }));
}

TEST_F(PortalKeys, AreAskedForWhenThePortalComesLate) {
    makeKeys(std::chrono::milliseconds(1));
    add();
    settle();
    portal_.begin();
    EXPECT_TRUE(waitUntil([&] { return status_ == kSuccess; }));
}

TEST_F(PortalKeys, AreLostWithThePortalAndBoundAgainWhenItIsBack) {
    addAndHold();
    portal_.end();
    EXPECT_TRUE(waitUntil([&] { return changes_ == 1; }));
    settle();
    EXPECT_EQ(handle_, nullptr);
    EXPECT_EQ(add(), status::kUnavailable);
    ScriptedShortcutsPortal next(daemon_.connect());
    next.begin();
    EXPECT_TRUE(waitUntil([&] { return status_ == kSuccess; }));
    EXPECT_EQ(next.bound.last().properties.value("preferred_trigger"), "LOGO+l");
    next.press();
    EXPECT_TRUE(waitUntil([&] { return presses_ == 1; }));
}

TEST_F(PortalKeys, AreBoundAgainWhenAnotherPortalTakesOver) {
    addAndHold();
    QDBusConnection other = daemon_.connect();
    ScriptedShortcutsPortal next(other);
    next.begin();
    // It waits in line, so that the name passes to it without a gap.
    ask(other, busCall("RequestName", {QString(kPortalService), 0U}));
    portal_.end();
    EXPECT_TRUE(waitUntil([&] { return !next.bound.isEmpty() && status_ == kSuccess; }));
    next.press();
    EXPECT_TRUE(waitUntil([&] { return presses_ == 1; }));
}

TEST_F(PortalKeys, AreNotAskedForAgainWhenTheyWereGivenBack) {
    addAndHold();
    registersAgain_ = false;
    handle_.reset();
    portal_.end();
    settle();
    ScriptedShortcutsPortal next(daemon_.connect());
    next.begin();
    settle();
    EXPECT_THAT(next.calls, IsEmpty());
}

TEST_F(PortalKeys, FailWhenThePortalGoesWhileItsUserDecides) {
    portal_.begin();
    portal_.holdsResponse = true;
    add();
    settle();
    portal_.end();
    EXPECT_TRUE(waitUntil([&] { return status_ == status::kUnavailable; }));
    EXPECT_THAT(notices_,
                ElementsAre("the desktop's portal has gone while it was asked for the shortcut"));
    portal_.holdsResponse = false;
    portal_.begin();
    EXPECT_TRUE(waitUntil([&] { return status_ == kSuccess; }));
}

TEST_F(PortalKeys, FailWithoutABus) {
    PortalHotKeys alone(QDBusConnection("there is none"), layout_, {});
    const auto result = alone.registerEventHotKey(kL, modifier::kCommand, kId);
    EXPECT_EQ(result.status, status::kUnavailable);
    EXPECT_EQ(result.handle, nullptr);
}

TEST_F(PortalKeys, AreLostWithTheBus) {
    addAndHold();
    daemon_.end();
    EXPECT_TRUE(waitUntil([&] { return status_ == status::kUnavailable; }));
    EXPECT_EQ(handle_, nullptr);
    EXPECT_EQ(add(), status::kUnavailable);
}

TEST_F(PortalKeys, FailForAKeyThatHasNoName) {
    portal_.begin();
    EXPECT_EQ(add(127), status::kNoSuchKey);
    settle();
    EXPECT_THAT(portal_.calls, IsEmpty());
    EXPECT_EQ(changes_, 0);
}

TEST_F(PortalKeys, OfAKeyWithoutANameReplaceTheOnesBefore) {
    addAndHold();
    EXPECT_EQ(add(127), status::kNoSuchKey);
    EXPECT_TRUE(waitUntil([&] { return !portal_.closed.isEmpty(); }));
    portal_.press();
    settle();
    EXPECT_EQ(presses_, 0);
}

}  // namespace
}  // namespace tarnwick::platform
