// SPDX-License-Identifier: MIT
// Programs that own the names of services and answer anything.
#include <QDBusArgument>
#include <QDBusObjectPath>
#include <QDBusVariant>
#include <QDBusVirtualObject>
#include <QMap>
#include <gtest/gtest.h>
#include <memory>
#include <utility>

#include "platform/linux/desktop/keyboard/portal_hot_keys.h"
#include "platform/linux/desktop/session/appearance.h"
#include "platform/linux/desktop/session/bus_calls.h"
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
using testing::waitUntil;

constexpr int kRounds = 100;
constexpr std::uint32_t kL = 37;
constexpr auto kWatcher = "org.kde.StatusNotifierWatcher";

QVariant inVariant(const QVariant& value) {
    return QVariant::fromValue(QDBusVariant(value));
}

/// Portal and watcher in one. Its answers are true often enough for a conversation to go on.
class Liar final : public QDBusVirtualObject {
 public:
    explicit Liar(QDBusConnection bus) : bus_(std::move(bus)) {}

    void begin() {
        bus_.registerVirtualObject("/", this, QDBusConnection::SubPath);
        bus_.registerService(kPortalService);
        bus_.registerService(kWatcher);
    }
    void end() {
        bus_.unregisterService(kPortalService);
        bus_.unregisterService(kWatcher);
        bus_.unregisterObject("/", QDBusConnection::UnregisterTree);
    }

    QString introspect(const QString&) const override { return {}; }
    bool handleMessage(const QDBusMessage& call, const QDBusConnection&) override {
        ++answers[call.member()];
        const QVariantList truth = truthFor(call);
        bus_.send(call.createReply(lieOr(truth)));
        if (call.member() == "CreateSession" || call.member() == "BindShortcuts") {
            QDBusMessage response = QDBusMessage::createTargetedSignal(
                call.service(), truth.first().value<QDBusObjectPath>().path(),
                "org.freedesktop.portal.Request", "Response");
            response.setArguments(
                lieOr({0U, QVariantMap{{"session_handle", QString("/a/session")},
                                       {"shortcuts", QVariant::fromValue(PortalShortcutEntries{
                                                         {"panel-LOGO-l", {}}})}}}));
            bus_.send(response);
        }
        return true;
    }

    /// How often each method was called.
    QMap<QString, int> answers;

 private:
    QVariantList truthFor(const QDBusMessage& call) const {
        const QString member = call.member();
        if (member == "Get") {
            return {call.path() == "/StatusNotifierWatcher" ? inVariant(true) : inVariant(1U)};
        }
        if (member == "Read") {
            return {inVariant(inVariant(1U))};
        }
        if (member == "CreateSession" || member == "BindShortcuts") {
            const auto options = qdbus_cast<QVariantMap>(call.arguments().last());
            return {
                QVariant::fromValue(QDBusObjectPath("/org/freedesktop/portal/desktop/request/" +
                                                    call.service().mid(1).replace('.', '_') + '/' +
                                                    options.value("handle_token").toString()))};
        }
        return {};
    }
    QVariantList lieOr(const QVariantList& truth) {
        return bodies_.roll(3) == 0 ? bodies_.next(truth) : truth;
    }

    QDBusConnection bus_;
    RandomBodies bodies_;
};

TEST(HostileAnswers, EndNothingThatHearsTheTruthLater) {
    PrivateBus daemon;
    const QDBusConnection bus = daemon.connect();
    const QDBusConnection service = daemon.connect();
    // Calls there and back, more than any conversation here takes.
    const auto settle = [&] {
        for (int i = 0; i < 12; ++i) {
            ask(bus, busCall("GetId", {}));
            ask(service, busCall("GetId", {}));
        }
    };

    const ColorScheme scheme(bus, {});
    const ReducedMotion motion(bus, {});
    NotifierRegistration registration(bus, [](unsigned) { return "a host"; },
                                      {.first = 1, .longest = 1});
    registration.start({});
    InstalledLayout layout("us");
    PortalHotKeys keys(bus, layout, {.patience = std::chrono::milliseconds(0)});
    std::unique_ptr<HotKeyHandle> handle;
    const auto add = [&] {
        handle.reset();
        handle = keys.registerEventHotKey(kL, hot_key_modifier::kCommand, {1, 1}).handle;
    };
    keys.setRegistrationChanged(add);

    Liar liar(service);
    for (int round = 0; round < kRounds; ++round) {
        liar.begin();
        keys.withdrawRegistration();
        add();
        settle();
        liar.end();
        settle();
    }
    for (const char* method : {"Register", "Read", "Get", "CreateSession", "BindShortcuts",
                               "RegisterStatusNotifierItem"}) {
        EXPECT_GT(liar.answers[method], kRounds / 5) << method;
    }

    {
        ScriptedSettingsPortal portal(service);
        portal.values["org.freedesktop.appearance color-scheme"] = 1U;
        portal.values["org.gnome.desktop.interface enable-animations"] = false;
        portal.begin();
        EXPECT_TRUE(waitUntil([&] { return scheme.dark(); }));
        EXPECT_TRUE(waitUntil([&] { return motion.isReduced(); }));
    }
    ScriptedShortcutsPortal portal(service);
    portal.begin();
    add();
    EXPECT_TRUE(waitUntil([&] { return handle != nullptr; }));
    ScriptedHost host(service);
    host.begin();
    EXPECT_TRUE(
        waitUntil([&] { return registration.state() == NotifierRegistration::State::present; }));
    EXPECT_FALSE(host.registered.isEmpty());
}

}  // namespace
}  // namespace tarnwick::platform
