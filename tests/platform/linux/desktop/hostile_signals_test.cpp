// SPDX-License-Identifier: MIT
// Signals from a wrong sender, and signals from the right sender with wrong arguments. They change
// nothing, and later true signals still have their effect.
#include <QDBusObjectPath>
#include <QDBusVariant>
#include <gtest/gtest.h>
#include <memory>

#include "platform/linux/desktop/keyboard/portal_hot_keys.h"
#include "platform/linux/desktop/session/appearance.h"
#include "platform/linux/desktop/session/bus_calls.h"
#include "platform/linux/desktop/session/sleep_signals.h"
#include "platform/linux/desktop/tray/notifier_registration.h"
#include "tests/platform/linux/desktop/keyboard/installed_layout.h"
#include "tests/platform/linux/desktop/keyboard/scripted_shortcuts_portal.h"
#include "tests/platform/linux/desktop/private_bus.h"
#include "tests/platform/linux/desktop/random_bodies.h"
#include "tests/platform/linux/desktop/session/scripted_settings_portal.h"
#include "tests/platform/linux/desktop/tray/scripted_host.h"

namespace tarnwick::platform {
namespace {

using testing::ask;
using testing::InstalledLayout;
using testing::PrivateBus;
using testing::RandomBodies;
using testing::ScriptedHost;
using testing::ScriptedSettingsPortal;
using testing::ScriptedShortcutsPortal;
using testing::signatureOf;
using testing::waitUntil;

/// Of each signal, from each sender.
constexpr int kBodiesEach = 300;
constexpr std::uint32_t kKeyL = 37;

struct TrueSignal {
    QString path;
    QString interface;
    QString member;
    QVariantList body;
};

class HostileSignals : public ::testing::Test {
 protected:
    void send(const QDBusConnection& from, const TrueSignal& signal, const QVariantList& body) {
        // To the program alone, which needs no subscription to reach it.
        QDBusMessage message = QDBusMessage::createTargetedSignal(bus_.baseService(), signal.path,
                                                                  signal.interface, signal.member);
        message.setArguments(body);
        ASSERT_TRUE(from.send(message)) << signatureOf(body).toStdString();
    }
    /// Sends all kinds of bodies, and the true one, from a sender that must not send this signal.
    void forge(const TrueSignal& signal) {
        for (int i = 0; i < kBodiesEach; ++i) {
            send(stranger_, signal, bodies_.next(signal.body));
        }
        send(stranger_, signal, signal.body);
        settle();
    }
    /// Sends all kinds of bodies of a wrong type from the sender of the true signal.
    void sendIllFormed(const TrueSignal& signal) {
        for (int i = 0; i < kBodiesEach;) {
            const QVariantList body = bodies_.next(signal.body);
            if (signatureOf(body) != signatureOf(signal.body)) {
                send(service_, signal, body);
                ++i;
            }
        }
        settle();
    }
    /// Bodies of the signal's type, with anything in their variants.
    void sendWellFormed(const TrueSignal& signal) {
        for (int i = 0; i < kBodiesEach; ++i) {
            const QVariantList body = bodies_.next(signal.body);
            if (signatureOf(body) == signatureOf(signal.body)) {
                send(service_, signal, body);
            }
        }
        settle();
    }
    /// Calls there and back, more than any conversation here takes.
    void settle() {
        for (int i = 0; i < 12; ++i) {
            for (const QDBusConnection& each : {service_, stranger_, bus_}) {
                ask(each, busCall("GetId", {}));
            }
        }
    }

    PrivateBus daemon_;
    QDBusConnection bus_ = daemon_.connect();
    QDBusConnection service_ = daemon_.connect();
    QDBusConnection stranger_ = daemon_.connect();
    RandomBodies bodies_;
};

TEST_F(HostileSignals, WakeNobody) {
    ASSERT_TRUE(service_.registerService("org.freedesktop.login1"));
    int woken = 0;
    const SleepSignals waking(bus_, [&] { ++woken; });
    settle();
    const TrueSignal woke{
        "/org/freedesktop/login1", "org.freedesktop.login1.Manager", "PrepareForSleep", {false}};
    forge(woke);
    sendIllFormed(woke);
    EXPECT_EQ(woken, 0);
    send(service_, woke, woke.body);
    settle();
    EXPECT_EQ(woken, 1);
}

TEST_F(HostileSignals, ChangeNoSetting) {
    ScriptedSettingsPortal portal(service_);
    portal.begin();
    const ColorScheme scheme(bus_, {});
    const HighContrast contrast(bus_, {});
    const ReducedMotion motion(bus_, {});
    settle();
    const auto changed = [](const char* space, const char* key, const QVariant& value) {
        return TrueSignal{ScriptedSettingsPortal::kPath,
                          ScriptedSettingsPortal::kInterface,
                          "SettingChanged",
                          {space, key, QVariant::fromValue(QDBusVariant(value))}};
    };
    const TrueSignal turnedDark = changed("org.freedesktop.appearance", "color-scheme", 1U);
    const TrueSignal settings[] = {
        turnedDark,
        changed("org.freedesktop.appearance", "contrast", 1U),
        changed("org.gnome.desktop.a11y.interface", "high-contrast", true),
        changed("org.freedesktop.appearance", "reduced-motion", 1U),
        changed("org.gnome.desktop.interface", "enable-animations", false),
        changed("org.kde.kdeglobals.KDE", "AnimationDurationFactor", "0")};
    for (const TrueSignal& each : settings) {
        forge(each);
        sendIllFormed(each);
    }
    EXPECT_FALSE(scheme.dark());
    EXPECT_FALSE(contrast.isHigh());
    EXPECT_FALSE(motion.isReduced());
    for (const TrueSignal& each : settings) {
        sendWellFormed(each);
        send(service_, each, each.body);
    }
    settle();
    EXPECT_TRUE(scheme.dark());
    EXPECT_TRUE(contrast.isHigh());
    EXPECT_TRUE(motion.isReduced());
}

TEST_F(HostileSignals, NeitherBringNorTakeAHost) {
    ScriptedHost host(service_);
    host.begin();
    using State = NotifierRegistration::State;
    NotifierRegistration registration(bus_, [](unsigned) { return "a host"; },
                                      {.first = 1, .longest = 1});
    registration.start({});
    const auto signal = [](const char* member) {
        return TrueSignal{"/StatusNotifierWatcher", "org.kde.StatusNotifierWatcher", member, {}};
    };
    const TrueSignal came = signal("StatusNotifierHostRegistered");
    const TrueSignal went = signal("StatusNotifierHostUnregistered");
    ASSERT_TRUE(waitUntil([&] { return registration.state() == State::present; }));
    // A program that asks the watcher now is told that there is no host.
    host.hasHost = false;
    forge(went);
    EXPECT_EQ(registration.state(), State::present);
    host.announceHost(false);
    settle();
    EXPECT_EQ(registration.state(), State::absent);
    forge(came);
    EXPECT_EQ(registration.state(), State::absent);
    host.announceHost(true);
    settle();
    EXPECT_EQ(registration.state(), State::present);
}

TEST_F(HostileSignals, DoNotStandForTheBus) {
    ASSERT_TRUE(service_.registerService("org.freedesktop.login1"));
    int woken = 0;
    const SleepSignals waking(bus_, [&] { ++woken; });
    settle();
    forge({"/org/freedesktop/DBus",
           "org.freedesktop.DBus",
           "NameOwnerChanged",
           {"org.freedesktop.login1", service_.baseService(), stranger_.baseService()}});
    const TrueSignal woke{
        "/org/freedesktop/login1", "org.freedesktop.login1.Manager", "PrepareForSleep", {false}};
    send(stranger_, woke, woke.body);
    settle();
    EXPECT_EQ(woken, 0);
    send(service_, woke, woke.body);
    settle();
    EXPECT_EQ(woken, 1);
}

TEST_F(HostileSignals, DoNotEndTheBus) {
    ScriptedHost host(service_);
    host.begin();
    using State = NotifierRegistration::State;
    NotifierRegistration registration(bus_, [](unsigned) { return "a host"; },
                                      {.first = 1, .longest = 1});
    registration.start({});
    ASSERT_TRUE(waitUntil([&] { return registration.state() == State::present; }));
    send(stranger_,
         {"/org/freedesktop/DBus/Local", "org.freedesktop.DBus.Local", "Disconnected", {}}, {});
    // The bus disconnects a client that sends this.
    EXPECT_TRUE(waitUntil([&] { return !stranger_.isConnected(); }));
    settle();
    EXPECT_EQ(registration.state(), State::present);
}

class HostileShortcutSignals : public HostileSignals {
 protected:
    HostileShortcutSignals() {
        keys_.setRegistrationChanged([this] { add(); });
        handler_ = keys_
                       .installEventHandler([this](const HotKeyEvent*) {
                           ++presses_;
                           return hot_key_status::kSuccess;
                       })
                       .handle;
        portal_.begin();
    }
    std::int32_t add() {
        handle_.reset();
        auto result = keys_.registerEventHotKey(kKeyL, hot_key_modifier::kCommand, {1, 1});
        handle_ = std::move(result.handle);
        return result.status;
    }
    TrueSignal pressed() const {
        return {"/org/freedesktop/portal/desktop",
                "org.freedesktop.portal.GlobalShortcuts",
                "Activated",
                {QVariant::fromValue(QDBusObjectPath(portal_.sessions.last())),
                 portal_.bound.last().id, qulonglong{1}, QVariantMap{{"activation_token", "a"}}}};
    }
    PortalShortcutEntries shortcuts(const QString& keys) const {
        return {{portal_.bound.last().id, {{"trigger_description", keys}}}};
    }
    TrueSignal changed(const QString& keys) const {
        return {"/org/freedesktop/portal/desktop",
                "org.freedesktop.portal.GlobalShortcuts",
                "ShortcutsChanged",
                {QVariant::fromValue(QDBusObjectPath(portal_.sessions.last())),
                 QVariant::fromValue(shortcuts(keys))}};
    }
    TrueSignal closed() const {
        return {portal_.sessions.last(),
                "org.freedesktop.portal.Session",
                "Closed",
                {QVariantMap{{"why", "no reason"}}}};
    }
    TrueSignal response(const QVariantMap& results) const {
        return {portal_.request, "org.freedesktop.portal.Request", "Response", {0U, results}};
    }

    ScriptedShortcutsPortal portal_{service_};
    InstalledLayout layout_{"us"};
    PortalHotKeys keys_{bus_, layout_, {.patience = std::chrono::hours(1)}};
    int presses_ = 0;
    std::unique_ptr<HotKeyHandle> handler_;
    std::unique_ptr<HotKeyHandle> handle_;
};

TEST_F(HostileShortcutSignals, NeitherPressNorTakeAShortcut) {
    add();
    ASSERT_TRUE(waitUntil([&] { return handle_ != nullptr; }));
    for (const TrueSignal& each : {pressed(), changed("Meta+K"), closed(), response({})}) {
        forge(each);
        sendIllFormed(each);
        EXPECT_NE(handle_, nullptr) << each.member.toStdString();
    }
    EXPECT_EQ(presses_, 0);
    portal_.press();
    settle();
    EXPECT_EQ(presses_, 1);
}

TEST_F(HostileShortcutSignals, OfThePortalWithAnythingInTheirVariantsAreSurvived) {
    add();
    ASSERT_TRUE(waitUntil([&] { return handle_ != nullptr; }));
    for (const TrueSignal& each : {pressed(), changed("Meta+K"), closed()}) {
        sendWellFormed(each);
        // Whatever the signals did, a new registration asks the portal again.
        handle_.reset();
        keys_.withdrawRegistration();
        add();
        ASSERT_TRUE(waitUntil([&] { return handle_ != nullptr; }));
        const int before = presses_;
        portal_.press();
        settle();
        EXPECT_EQ(presses_, before + 1);
    }
}

TEST_F(HostileShortcutSignals, DoNotStandForPlasma) {
    // Plasma's service is there.
    portal_.areKeysFree = true;
    portal_.end();
    portal_.begin();
    add();
    ASSERT_TRUE(waitUntil([&] { return handle_ != nullptr; }));
    const TrueSignal changed{"/kglobalaccel",
                             "org.kde.KGlobalAccel",
                             "yourShortcutsChanged",
                             {QStringList{"org.tarnwick.Tarnwick", portal_.bound.last().id, "", ""},
                              QVariant::fromValue(QList<PlasmaKeys>())}};
    forge(changed);
    sendIllFormed(changed);
    EXPECT_FALSE(portal_.calls.contains("ListShortcuts"));
    send(service_, changed, changed.body);
    settle();
    EXPECT_TRUE(portal_.calls.contains("ListShortcuts"));
}

TEST_F(HostileShortcutSignals, DoNotDecideForTheUser) {
    portal_.holdsResponse = true;
    add();
    settle();
    ASSERT_FALSE(portal_.bound.isEmpty());
    const TrueSignal granted = response({{"shortcuts", QVariant::fromValue(shortcuts("Meta+L"))}});
    forge(granted);
    sendIllFormed(granted);
    EXPECT_EQ(add(), portal_hot_key_status::kAsking);
    portal_.respond();
    EXPECT_TRUE(waitUntil([&] { return handle_ != nullptr; }));
}

}  // namespace
}  // namespace tarnwick::platform
