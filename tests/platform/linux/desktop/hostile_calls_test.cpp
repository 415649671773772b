// SPDX-License-Identifier: MIT
// Calls of the program's objects with arguments that they do not take.
#include <QDBusVariant>
#include <gtest/gtest.h>

#include "platform/linux/desktop/session/single_instance.h"
#include "platform/linux/desktop/tray/dbus_menu.h"
#include "platform/linux/desktop/tray/status_notifier_item.h"
#include "tests/platform/linux/desktop/private_bus.h"
#include "tests/platform/linux/desktop/random_bodies.h"

namespace tarnwick::platform {
namespace {

using testing::ask;
using testing::PrivateBus;
using testing::RandomBodies;
using testing::signatureOf;
using testing::waitUntil;

/// Of each method.
constexpr int kBodies = 200;
constexpr auto kMenuPath = "/Menu";
constexpr auto kProperties = "org.freedesktop.DBus.Properties";

struct Method {
    QString path;
    QString interface;
    QString member;
    QVariantList truth;
};

QVariant data() {
    return QVariant::fromValue(QDBusVariant(QString()));
}

class HostileCalls : public ::testing::Test {
 protected:
    QDBusMessage call(const Method& method, const QVariantList& body) {
        QDBusMessage message = QDBusMessage::createMethodCall(bus_.baseService(), method.path,
                                                              method.interface, method.member);
        message.setArguments(body);
        return ask(stranger_, message);
    }
    static QList<Method> methods() {
        const QString item = StatusNotifierItem::kInterface;
        const QString menu = DBusMenu::kInterface;
        const QString itemPath = StatusNotifierItem::kPath;
        QList<Method> all{
            {itemPath, item, "Activate", {1, 2}},
            {itemPath, item, "SecondaryActivate", {1, 2}},
            {itemPath, item, "XAyatanaSecondaryActivate", {1U}},
            {itemPath, item, "ProvideXdgActivationToken", {"token"}},
            {itemPath, item, "ContextMenu", {1, 2}},
            {itemPath, item, "Scroll", {1, "vertical"}},
            {kMenuPath, menu, "GetLayout", {0, -1, QStringList{"label"}}},
            {kMenuPath,
             menu,
             "GetGroupProperties",
             {QVariant::fromValue(QList<int>{0, 1}), QStringList{"label"}}},
            {kMenuPath, menu, "GetProperty", {1, "label"}},
            {kMenuPath, menu, "Event", {1, "clicked", data(), 0U}},
            {kMenuPath,
             menu,
             "EventGroup",
             {QVariant::fromValue(MenuEvents{
                 {.id = 1, .type = "clicked", .data = QDBusVariant(""), .timestamp = 0}})}},
            {kMenuPath, menu, "AboutToShow", {0}},
            {kMenuPath, menu, "AboutToShowGroup", {QVariant::fromValue(QList<int>{0})}},
            {SingleInstance::kPath, SingleInstance::kInterface, "Activate", {QVariantMap()}},
            {SingleInstance::kPath,
             SingleInstance::kInterface,
             "Open",
             {QStringList{"address"}, QVariantMap()}},
            {SingleInstance::kPath,
             SingleInstance::kInterface,
             "ActivateAction",
             {"settings", QVariantList(), QVariantMap()}},
        };
        for (const auto& [path, interface, property] :
             {std::tuple{itemPath, item, "Title"},
              std::tuple{QString(kMenuPath), menu, "Status"}}) {
            all.append({path, kProperties, "Get", {interface, property}});
            all.append({path, kProperties, "GetAll", {interface}});
        }
        return all;
    }
    int runs() const { return activated_ + secondary_ + tokens_ + chosen_ + opening_ + requests_; }

    PrivateBus daemon_;
    QDBusConnection bus_ = daemon_.connect();
    QDBusConnection stranger_ = daemon_.connect();
    RandomBodies bodies_;
    int activated_ = 0;
    int secondary_ = 0;
    int tokens_ = 0;
    int chosen_ = 0;
    int opening_ = 0;
    int requests_ = 0;
    DBusMenu menu_{
        bus_, kMenuPath, {{.label = "Open Panel", .chosen = [this] { ++chosen_; }}}, [this] {
            ++opening_;
        }};
    StatusNotifierItem item_{bus_,
                             kMenuPath,
                             {.activate = [this](const QPoint&) { ++activated_; },
                              .secondaryActivate = [this] { ++secondary_; },
                              .activationToken = [this](const QString&) { ++tokens_; }}};
};

TEST_F(HostileCalls, AreRefusedAndDoNothing) {
    SingleInstance instance(bus_, {});
    ASSERT_EQ(instance.claim(), SingleInstance::Claim::first);
    instance.setPerform([this](Request, const QString&) { ++requests_; });
    for (const Method& method : methods()) {
        for (int i = 0; i < kBodies; ++i) {
            const QVariantList body = bodies_.next(method.truth);
            if (signatureOf(body) != signatureOf(method.truth)) {
                EXPECT_EQ(call(method, body).errorName(),
                          "org.freedesktop.DBus.Error.UnknownMethod")
                    << method.member.toStdString() << ' ' << signatureOf(body).toStdString();
            }
        }
    }
    EXPECT_EQ(runs(), 0);
    for (const Method& method : methods()) {
        EXPECT_EQ(call(method, method.truth).type(), QDBusMessage::ReplyMessage)
            << method.member.toStdString();
    }
    EXPECT_TRUE(waitUntil([this] { return chosen_ == 2; }));
    EXPECT_EQ(activated_, 1);
    EXPECT_EQ(secondary_, 2);
    EXPECT_EQ(tokens_, 1);
    EXPECT_EQ(opening_, 2);
    EXPECT_EQ(requests_, 3);
}

TEST_F(HostileCalls, AreAnsweredWhateverIsInTheirVariants) {
    const Method event = {kMenuPath, DBusMenu::kInterface, "Event", {1, "hovered", data(), 0U}};
    for (int i = 0; i < kBodies; ++i) {
        const QVariantList body = bodies_.next(event.truth);
        if (signatureOf(body) == signatureOf(event.truth)) {
            EXPECT_NE(call(event, body).errorName(), "test.NoAnswer");
        }
    }
    EXPECT_EQ(runs(), 0);
}

}  // namespace
}  // namespace tarnwick::platform
