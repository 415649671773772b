// SPDX-License-Identifier: MIT
#include "platform/linux/desktop/tray/dbus_menu.h"

#include <QDBusArgument>
#include <QDBusVariant>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <numeric>
#include <optional>

#include "tests/platform/linux/desktop/private_bus.h"

namespace tarnwick::platform {
namespace {

using testing::ask;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using testing::PrivateBus;
using testing::waitUntil;

/// Of one kind in one call.
constexpr qsizetype kMany = 50'000;

class ItemMenu : public ::testing::Test {
 protected:
    QDBusMessage call(const QString& member, const QVariantList& arguments,
                      const QString& interface = DBusMenu::kInterface) {
        QDBusMessage message =
            QDBusMessage::createMethodCall(menuBus_.baseService(), "/Menu", interface, member);
        message.setArguments(arguments);
        return ask(hostBus_, message);
    }
    std::optional<MenuNode> layout(int parent, int depth, const QStringList& names = {}) {
        const QDBusMessage answer = call("GetLayout", {parent, depth, names});
        if (answer.type() != QDBusMessage::ReplyMessage) {
            return std::nullopt;
        }
        EXPECT_EQ(answer.signature(), "u(ia{sv}av)");
        return qdbus_cast<MenuNode>(answer.arguments().value(1));
    }
    static MenuNode child(const MenuNode& node, int index) {
        return qdbus_cast<MenuNode>(node.children.value(index).variant());
    }
    static QVariant event(int id, const QString& type) {
        return QVariant::fromValue(
            MenuEvents{{.id = id, .type = type, .data = QDBusVariant(""), .timestamp = 0}});
    }
    static QVariant noData() { return QVariant::fromValue(QDBusVariant(QString())); }

    PrivateBus bus_;
    QDBusConnection menuBus_ = bus_.connect();
    QDBusConnection hostBus_ = bus_.connect();
    int opened_ = 0;
    int settings_ = 0;
    int quit_ = 0;
    int opening_ = 0;
    DBusMenu menu_{menuBus_,
                   "/Menu",
                   {{.label = "Open Panel", .chosen = [this] { ++opened_; }},
                    {.label = "Set_tings", .chosen = [this] { ++settings_; }},
                    {.label = {}, .chosen = nullptr},
                    {.label = "Quit", .chosen = [this] { ++quit_; }}},
                   [this] { ++opening_; }};
};

TEST_F(ItemMenu, LaysOutItsEntriesInOrder) {
    const auto root = layout(0, -1);
    ASSERT_TRUE(root);
    EXPECT_EQ(root->id, 0);
    EXPECT_EQ(root->properties.value("children-display"), QVariant("submenu"));
    ASSERT_EQ(root->children.size(), 4);
    EXPECT_EQ(child(*root, 0).id, 1);
    EXPECT_EQ(child(*root, 0).properties.value("label"), QVariant("Open Panel"));
    EXPECT_EQ(child(*root, 0).properties.value("enabled"), QVariant(true));
    EXPECT_EQ(child(*root, 1).properties.value("enabled"), QVariant(true));
    EXPECT_EQ(child(*root, 1).properties.value("visible"), QVariant(true));
    EXPECT_EQ(child(*root, 2).properties.value("type"), QVariant("separator"));
    EXPECT_EQ(child(*root, 3).id, 4);
    EXPECT_EQ(child(*root, 3).properties.value("label"), QVariant("Quit"));
    EXPECT_THAT(child(*root, 3).children, IsEmpty());
}

TEST_F(ItemMenu, WritesAnUnderscoreTwiceBecauseOneMarksAKey) {
    const auto entry = layout(2, -1);
    ASSERT_TRUE(entry);
    EXPECT_EQ(entry->properties.value("label"), QVariant("Set__tings"));
}

TEST_F(ItemMenu, KeepsToTheAskedDepthAndProperties) {
    const auto flat = layout(0, 0);
    ASSERT_TRUE(flat);
    EXPECT_THAT(flat->children, IsEmpty());
    const auto one = layout(0, 1, {"label"});
    ASSERT_TRUE(one);
    ASSERT_EQ(one->children.size(), 4);
    EXPECT_EQ(child(*one, 0).properties.keys(), QStringList("label"));
    EXPECT_EQ(child(*one, 2).properties.keys(), QStringList());
    EXPECT_FALSE(layout(5, -1));
    EXPECT_FALSE(layout(-1, -1));
}

TEST_F(ItemMenu, GivesThePropertiesOfAGroup) {
    const auto group = [this](const QList<int>& ids) {
        const QDBusMessage answer =
            call("GetGroupProperties", {QVariant::fromValue(ids), QStringList("label")});
        EXPECT_EQ(answer.signature(), "a(ia{sv})");
        QStringList texts;
        for (const MenuProperties& each :
             qdbus_cast<MenuPropertiesList>(answer.arguments().value(0))) {
            texts.append(
                QString("%1=%2").arg(each.id).arg(each.properties.value("label").toString()));
        }
        return texts;
    };
    EXPECT_THAT(group({4, 1}), ElementsAre("4=Quit", "1=Open Panel"));
    EXPECT_THAT(group({9, 4}), ElementsAre("4=Quit"));
    EXPECT_THAT(group({}), ElementsAre("0=", "1=Open Panel", "2=Set__tings", "3=", "4=Quit"));
}

TEST_F(ItemMenu, GivesOneProperty) {
    const QDBusMessage answer = call("GetProperty", {4, QString("label")});
    EXPECT_EQ(answer.arguments().value(0).value<QDBusVariant>().variant(), QVariant("Quit"));
    EXPECT_EQ(call("GetProperty", {4, QString("icon-name")}).type(), QDBusMessage::ErrorMessage);
    EXPECT_EQ(call("GetProperty", {7, QString("label")}).type(), QDBusMessage::ErrorMessage);
}

TEST_F(ItemMenu, RunsTheEntryThatWasClicked) {
    EXPECT_EQ(call("Event", {1, QString("clicked"), noData(), 0U}).type(),
              QDBusMessage::ReplyMessage);
    EXPECT_TRUE(waitUntil([&] { return opened_ == 1; }));
    EXPECT_EQ(call("Event", {4, QString("clicked"), noData(), 0U}).type(),
              QDBusMessage::ReplyMessage);
    EXPECT_TRUE(waitUntil([&] { return quit_ == 1; }));
    EXPECT_EQ(opened_, 1);
}

TEST_F(ItemMenu, TakesEventsInAGroup) {
    const QDBusMessage answer = call("EventGroup", {event(4, "clicked")});
    EXPECT_EQ(answer.signature(), "ai");
    EXPECT_THAT(qdbus_cast<QList<int>>(answer.arguments().value(0)), IsEmpty());
    EXPECT_TRUE(waitUntil([&] { return quit_ == 1; }));
    EXPECT_EQ(call("EventGroup", {event(8, "clicked")}).type(), QDBusMessage::ErrorMessage);
}

TEST_F(ItemMenu, DoesNothingForSeparatorsAndOtherEvents) {
    call("Event", {3, QString("clicked"), noData(), 0U});
    call("Event", {0, QString("clicked"), noData(), 0U});
    call("Event", {1, QString("hovered"), noData(), 0U});
    call("Event", {2, QString("closed"), noData(), 0U});
    EXPECT_EQ(opening_, 0);
    EXPECT_EQ(call("Event", {5, QString("clicked"), noData(), 0U}).type(),
              QDBusMessage::ErrorMessage);
    EXPECT_EQ(opened_ + settings_ + quit_, 0);
}

TEST_F(ItemMenu, TellsWhenItIsAboutToBeShown) {
    call("AboutToShow", {1});
    EXPECT_EQ(opening_, 0);
    call("AboutToShow", {0});
    EXPECT_EQ(opening_, 1);
    call("AboutToShowGroup", {QVariant::fromValue(QList<int>{0, 1})});
    EXPECT_EQ(opening_, 2);
    call("Event", {0, QString("opened"), noData(), 0U});
    EXPECT_EQ(opening_, 3);
    EXPECT_EQ(opened_ + settings_ + quit_, 0);
}

TEST_F(ItemMenu, NeedsNoUpdateBeforeItIsShown) {
    const QDBusMessage one = call("AboutToShow", {0});
    EXPECT_EQ(one.arguments().value(0), QVariant(false));
    EXPECT_EQ(call("AboutToShow", {12}).type(), QDBusMessage::ErrorMessage);
    const QDBusMessage group =
        call("AboutToShowGroup", {QVariant::fromValue(QList<int>{0, 1, 12})});
    EXPECT_EQ(group.signature(), "aiai");
    EXPECT_THAT(qdbus_cast<QList<int>>(group.arguments().value(0)), IsEmpty());
    EXPECT_THAT(qdbus_cast<QList<int>>(group.arguments().value(1)), ElementsAre(12));
}

TEST_F(ItemMenu, AnswersForEachEntryOnceHoweverOftenItIsNamed) {
    QList<int> ids(kMany, 4);
    ids += QList<int>(kMany, 77);
    ids += {1, 0, 4, 1};
    const QDBusMessage answer =
        call("GetGroupProperties", {QVariant::fromValue(ids), QStringList("label")});
    QStringList texts;
    for (const MenuProperties& each : qdbus_cast<MenuPropertiesList>(answer.arguments().value(0))) {
        texts.append(QString("%1=%2").arg(each.id).arg(each.properties.value("label").toString()));
    }
    EXPECT_THAT(texts, ElementsAre("4=Quit", "1=Open Panel", "0="));
}

TEST_F(ItemMenu, FindsAPropertyAmongManyNames) {
    QStringList names(kMany, "x");
    names.append("label");
    const auto root = layout(0, -1, names);
    ASSERT_TRUE(root);
    EXPECT_EQ(child(*root, 3).properties, (QVariantMap{{"label", "Quit"}}));
}

TEST_F(ItemMenu, IsAboutToBeShownOnceACall) {
    QList<int> ids(kMany, 0);
    ids += QList<int>(kMany, 77);
    ids += {1, -1, 77};
    const QDBusMessage answer = call("AboutToShowGroup", {QVariant::fromValue(ids)});
    EXPECT_EQ(opening_, 1);
    EXPECT_THAT(qdbus_cast<QList<int>>(answer.arguments().value(1)), ElementsAre(77, -1));
}

TEST_F(ItemMenu, TakesEachEventOfAnEntryOnceACall) {
    MenuEvents events;
    const auto add = [&events](int id, const char* type) {
        events +=
            MenuEvents(kMany, {.id = id, .type = type, .data = QDBusVariant(""), .timestamp = 0});
    };
    add(0, "opened");
    add(1, "clicked");
    add(77, "clicked");
    add(4, "clicked");
    add(1, "clicked");
    const QDBusMessage answer = call("EventGroup", {QVariant::fromValue(events)});
    EXPECT_THAT(qdbus_cast<QList<int>>(answer.arguments().value(0)), ElementsAre(77));
    EXPECT_EQ(opening_, 1);
    // Actions run in their order: with the next one, all of these have.
    call("Event", {2, QString("clicked"), noData(), 0U});
    EXPECT_TRUE(waitUntil([&] { return settings_ == 1; }));
    EXPECT_EQ(opened_, 1);
    EXPECT_EQ(quit_, 1);
}

TEST_F(ItemMenu, NamesNoMoreThanAFewNumbersThatNoEntryHas) {
    QList<int> ids(kMany);
    std::iota(ids.begin(), ids.end(), 1000);
    const QDBusMessage answer = call("AboutToShowGroup", {QVariant::fromValue(ids)});
    const auto unknown = qdbus_cast<QList<int>>(answer.arguments().value(1));
    EXPECT_EQ(unknown, ids.first(unknown.size()));
    EXPECT_GE(unknown.size(), 10);
    EXPECT_LE(unknown.size(), 100);
}

TEST_F(ItemMenu, SaysItsVersionAndRefusesIllFormedCalls) {
    const QDBusMessage all =
        call("GetAll", {QString(DBusMenu::kInterface)}, "org.freedesktop.DBus.Properties");
    const auto properties = qdbus_cast<QVariantMap>(all.arguments().value(0));
    EXPECT_EQ(properties.value("Version"), QVariant(3U));
    EXPECT_EQ(properties.value("Status"), QVariant("normal"));
    EXPECT_EQ(properties.value("TextDirection"), QVariant("ltr"));
    EXPECT_EQ(call("GetLayout", {QString("zero")}).type(), QDBusMessage::ErrorMessage);
    EXPECT_EQ(call("GetGroupProperties", {}).type(), QDBusMessage::ErrorMessage);
    EXPECT_EQ(call("Event", {1}).type(), QDBusMessage::ErrorMessage);
    EXPECT_EQ(call("EventGroup", {1}).type(), QDBusMessage::ErrorMessage);
    EXPECT_EQ(opened_ + quit_, 0);
}

}  // namespace
}  // namespace tarnwick::platform
