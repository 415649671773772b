// SPDX-License-Identifier: MIT
#include "platform/linux/desktop/tray/status_notifier_item.h"

#include <QCoreApplication>
#include <QDBusObjectPath>
#include <QDBusVariant>
#include <QFont>
#include <QFontMetrics>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/platform/linux/desktop/private_bus.h"
#include "tests/platform/linux/desktop/tray/scripted_host.h"

namespace tarnwick::platform {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using testing::PrivateBus;
using testing::ScriptedHost;

IconPixmaps pixel(char alpha) {
    return {{.width = 1, .height = 1, .bytes = QByteArray(1, alpha) + QByteArray(3, '\1')}};
}

class NotifierItem : public ::testing::Test {
 protected:
    NotifierItem() {
        host_.registered.append(itemBus_.baseService());
        item_.setContent(content_);
        host_.properties();
        host_.signalNames.clear();
        host_.signalArguments.clear();
    }

    /// What the host hears when the item changes to `content`.
    QStringList heardAfter(const NotifierContent& content,
                           HostFetches fetches = HostFetches::named) {
        host_.signalNames.clear();
        host_.signalArguments.clear();
        item_.setContent(content, fetches);
        // The bus keeps the order, so with the answer every earlier signal is there.
        host_.properties();
        return host_.signalNames;
    }

    PrivateBus bus_;
    QDBusConnection itemBus_ = bus_.connect();
    ScriptedHost host_{bus_.connect()};
    int activated_ = 0;
    QPoint place_;
    int secondary_ = 0;
    QStringList tokens_;
    NotifierContent content_{
        .text = "Tarnwick status: CPU 12%", .icon = pixel('\xff'), .iconName = {}, .label = {}};
    StatusNotifierItem item_{
        itemBus_,
        "/TheMenu",
        {.activate =
             [this](const QPoint& place) {
                 ++activated_;
                 place_ = place;
             },
         .secondaryActivate = [this] { ++secondary_; },
         .activationToken = [this](const QString& token) { tokens_.append(token); }}};
};

TEST_F(NotifierItem, HasEveryPropertyThatHostsRead) {
    const QVariantMap all = host_.properties();
    EXPECT_EQ(all.value("Category"), QVariant("SystemServices"));
    EXPECT_EQ(all.value("Id"), QVariant("org.tarnwick.Tarnwick"));
    EXPECT_EQ(all.value("Title"), QVariant("Tarnwick status: CPU 12%"));
    EXPECT_EQ(all.value("IconAccessibleDesc"), QVariant("Tarnwick status: CPU 12%"));
    EXPECT_EQ(all.value("AttentionAccessibleDesc"), QVariant(""));
    EXPECT_EQ(all.value("XAyatanaOrderingIndex"), QVariant(0U));
    EXPECT_EQ(all.value("Status"), QVariant("Active"));
    EXPECT_EQ(all.value("WindowId"), QVariant(0));
    EXPECT_EQ(all.value("ItemIsMenu"), QVariant(false));
    EXPECT_EQ(all.value("IconName"), QVariant(""));
    for (const char* name :
         {"OverlayIconName", "AttentionIconName", "AttentionMovieName", "IconThemePath"}) {
        EXPECT_EQ(all.value(name), QVariant("")) << name;
    }
    EXPECT_EQ(qdbus_cast<IconPixmaps>(all.value("IconPixmap")), pixel('\xff'));
    for (const char* name : {"OverlayIconPixmap", "AttentionIconPixmap"}) {
        ASSERT_TRUE(all.contains(name)) << name;
        EXPECT_THAT(qdbus_cast<IconPixmaps>(all.value(name)), IsEmpty()) << name;
    }
    EXPECT_EQ(qvariant_cast<QDBusObjectPath>(all.value("Menu")).path(), "/TheMenu");
    const ToolTip tip = qdbus_cast<ToolTip>(all.value("ToolTip"));
    EXPECT_EQ(tip.title, "Tarnwick status: CPU 12%");
    EXPECT_EQ(tip.description, "");
}

TEST_F(NotifierItem, AnswersForEachPropertyAlone) {
    const QVariantMap all = host_.properties();
    for (const QString& name : all.keys()) {
        const QDBusMessage answer = host_.call("org.freedesktop.DBus.Properties", "Get",
                                               {QString("org.kde.StatusNotifierItem"), name});
        ASSERT_EQ(answer.type(), QDBusMessage::ReplyMessage) << name.toStdString();
        EXPECT_EQ(answer.signature(), "v") << name.toStdString();
    }
    EXPECT_EQ(host_
                  .call("org.freedesktop.DBus.Properties", "Get",
                        {QString("org.kde.StatusNotifierItem"), QString("Unknown")})
                  .errorName(),
              "org.freedesktop.DBus.Error.UnknownProperty");
    EXPECT_EQ(host_
                  .call("org.freedesktop.DBus.Properties", "Set",
                        {QString("org.kde.StatusNotifierItem"), QString("Title"),
                         QVariant::fromValue(QDBusVariant("x"))})
                  .errorName(),
              "org.freedesktop.DBus.Error.PropertyReadOnly");
}

TEST_F(NotifierItem, DescribesExactlyTheSignalsItSendsAndThePropertiesItHas) {
    const auto xml = [this] {
        return host_.call("org.freedesktop.DBus.Introspectable", "Introspect", {})
            .arguments()
            .value(0)
            .toString();
    };
    for (const QString& name : host_.properties().keys()) {
        EXPECT_TRUE(xml().contains("<property name=\"" + name + "\"")) << name.toStdString();
    }
    EXPECT_FALSE(xml().contains("XAyatanaLabelGuide"));
    content_.label = "CPU 12%";
    item_.setContent(content_);
    EXPECT_TRUE(xml().contains("XAyatanaLabelGuide"));
}

TEST_F(NotifierItem, SaysNothingWhenTheContentIsTheSame) {
    EXPECT_THAT(heardAfter(content_), IsEmpty());
}

TEST_F(NotifierItem, SignalsOnlyTheTextWhenOnlyTheTextChanged) {
    content_.text = "Tarnwick status: CPU 13%";
    EXPECT_THAT(heardAfter(content_), ElementsAre("NewToolTip", "NewTitle"));
    EXPECT_EQ(host_.properties().value("Title"), QVariant("Tarnwick status: CPU 13%"));
}

TEST_F(NotifierItem, SignalsOnlyTheIconWhenOnlyThePictureChanged) {
    content_.icon = pixel('\x7f');
    EXPECT_THAT(heardAfter(content_), ElementsAre("NewIcon"));
    content_.iconName = "/some/file.png";
    EXPECT_THAT(heardAfter(content_), ElementsAre("NewIcon"));
    EXPECT_EQ(host_.properties().value("IconName"), QVariant("/some/file.png"));
}

TEST_F(NotifierItem, SignalsTheLabelWithItsTextWhenTheLabelChanged) {
    content_.label = "CPU 12%";
    EXPECT_THAT(heardAfter(content_), ElementsAre("XAyatanaNewLabel"));
    EXPECT_EQ(host_.signalArguments.last().value(0), QVariant("CPU 12%"));
    EXPECT_EQ(host_.properties().value("XAyatanaLabel"), QVariant("CPU 12%"));
    EXPECT_NE(host_.properties().value("XAyatanaLabelGuide").toString(), "");
}

TEST_F(NotifierItem, ReservesRoomForTheWidestLabel) {
    content_.label = "";
    item_.setContent(content_);
    const QFontMetrics metrics{QFont()};
    const int room =
        metrics.horizontalAdvance(host_.properties().value("XAyatanaLabelGuide").toString());
    for (const char* text : {"Loading...", "CPU 100%", "GPU 100%", "RAM 100%", "Disk 100%"}) {
        EXPECT_LE(metrics.horizontalAdvance(text), room) << text;
    }
}

TEST_F(NotifierItem, DoesNotAnnounceATitleThatTheHostHasNoUseFor) {
    content_.text = "Tarnwick status: CPU 13%";
    content_.icon = pixel('\x7f');
    EXPECT_THAT(heardAfter(content_, HostFetches::namedButTitle),
                ElementsAre("NewIcon", "NewToolTip"));
    EXPECT_EQ(host_.properties().value("Title"), QVariant("Tarnwick status: CPU 13%"));
}

TEST_F(NotifierItem, SendsOneSignalToAHostThatThenFetchesEverything) {
    content_.text = "Tarnwick status: CPU 13%";
    EXPECT_THAT(heardAfter(content_, HostFetches::everything), ElementsAre("NewToolTip"));
    content_.text = "Tarnwick status: CPU 14%";
    content_.icon = pixel('\x7f');
    EXPECT_THAT(heardAfter(content_, HostFetches::everything), ElementsAre("NewIcon"));
    EXPECT_THAT(heardAfter(content_, HostFetches::everything), IsEmpty());
}

TEST_F(NotifierItem, HasNoLabelPropertyAtAllWithoutALabel) {
    EXPECT_FALSE(host_.properties().contains("XAyatanaLabel"));
    content_.label = "CPU 12%";
    item_.setContent(content_);
    EXPECT_TRUE(host_.properties().contains("XAyatanaLabel"));
    content_.label.reset();
    EXPECT_THAT(heardAfter(content_), ElementsAre("XAyatanaNewLabel"));
    EXPECT_EQ(host_.signalArguments.last().value(0), QVariant(""));
    EXPECT_FALSE(host_.properties().contains("XAyatanaLabel"));
    EXPECT_FALSE(host_.properties().contains("XAyatanaLabelGuide"));
}

TEST_F(NotifierItem, AnnouncesItsLabelAnewToAHostThatHasReadItsDescription) {
    const auto describe = [this] {
        host_.signalNames.clear();
        host_.signalArguments.clear();
        EXPECT_EQ(host_.call("org.freedesktop.DBus.Introspectable", "Introspect", {}).type(),
                  QDBusMessage::ReplyMessage);
        QCoreApplication::processEvents();
        host_.properties();
    };
    describe();
    EXPECT_THAT(host_.signalNames, IsEmpty());
    content_.label = "CPU 12%";
    heardAfter(content_);
    describe();
    // Hosts pass over a value that is equal to the one they know.
    ASSERT_THAT(host_.signalNames, ElementsAre("XAyatanaNewLabel", "XAyatanaNewLabel"));
    EXPECT_EQ(host_.signalArguments[0].value(0), QVariant(""));
    EXPECT_EQ(host_.signalArguments[1].value(0), QVariant("CPU 12%"));
}

TEST_F(NotifierItem, AsksForAttentionInASignalOfItsOwn) {
    EXPECT_EQ(host_.properties().value("Status"), QVariant("Active"));
    content_.needsAttention = true;
    content_.text = "CPU 99%";
    item_.setContent(content_, HostFetches::everything);
    host_.properties();
    EXPECT_THAT(host_.signalNames, ElementsAre("NewStatus", "NewToolTip"));
    EXPECT_EQ(host_.signalArguments.first().value(0), QVariant("NeedsAttention"));
    EXPECT_EQ(host_.properties().value("Status"), QVariant("NeedsAttention"));
    content_.needsAttention = false;
    EXPECT_THAT(heardAfter(content_), ElementsAre("NewStatus"));
    EXPECT_EQ(host_.signalArguments.last().value(0), QVariant("Active"));
}

TEST_F(NotifierItem, ReportsPressesOfEachKind) {
    EXPECT_EQ(host_.callItem("Activate", {10, 20}).type(), QDBusMessage::ReplyMessage);
    EXPECT_EQ(activated_, 1);
    EXPECT_EQ(place_, QPoint(10, 20));
    EXPECT_EQ(host_.callItem("SecondaryActivate", {10, 20}).type(), QDBusMessage::ReplyMessage);
    EXPECT_EQ(host_.callItem("XAyatanaSecondaryActivate", {7U}).type(), QDBusMessage::ReplyMessage);
    EXPECT_EQ(secondary_, 2);
    EXPECT_EQ(activated_, 1);
}

TEST_F(NotifierItem, HandsOnTheTokenThatTheCompositorGaveForAPress) {
    EXPECT_EQ(host_.callItem("ProvideXdgActivationToken", {"a token"}).type(),
              QDBusMessage::ReplyMessage);
    EXPECT_EQ(tokens_, QStringList{"a token"});
    EXPECT_EQ(activated_, 0);
}

TEST_F(NotifierItem, AnswersScrollingAndTheMenusCallWithoutDoingAnything) {
    EXPECT_EQ(host_.callItem("Scroll", {120, QString("vertical")}).type(),
              QDBusMessage::ReplyMessage);
    EXPECT_EQ(host_.callItem("ContextMenu", {1, 2}).type(), QDBusMessage::ReplyMessage);
    EXPECT_EQ(activated_ + secondary_, 0);
}

TEST_F(NotifierItem, RefusesWhatItDoesNotKnow) {
    EXPECT_EQ(host_.callItem("Explode", {}).type(), QDBusMessage::ErrorMessage);
    EXPECT_EQ(host_.call("some.other.interface", "Activate", {1, 2}).type(),
              QDBusMessage::ErrorMessage);
    EXPECT_EQ(activated_, 0);
}

}  // namespace
}  // namespace tarnwick::platform
