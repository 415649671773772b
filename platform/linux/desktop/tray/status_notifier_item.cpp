// SPDX-License-Identifier: MIT
#include "platform/linux/desktop/tray/status_notifier_item.h"

#include <QDBusObjectPath>
#include <utility>

#include "platform/linux/desktop/session/bus_calls.h"
#include "platform/linux/desktop/tray/property_calls.h"
#include "platform/linux/identifier.h"

namespace tarnwick::platform {
namespace {

constexpr auto kItemIntrospection = R"xml(
<interface name="org.kde.StatusNotifierItem">
  <property name="Category" type="s" access="read"/>
  <property name="Id" type="s" access="read"/>
  <property name="Title" type="s" access="read"/>
  <property name="Status" type="s" access="read"/>
  <property name="WindowId" type="i" access="read"/>
  <property name="IconThemePath" type="s" access="read"/>
  <property name="IconName" type="s" access="read"/>
  <property name="IconPixmap" type="a(iiay)" access="read"/>
  <property name="IconAccessibleDesc" type="s" access="read"/>
  <property name="OverlayIconName" type="s" access="read"/>
  <property name="OverlayIconPixmap" type="a(iiay)" access="read"/>
  <property name="AttentionIconName" type="s" access="read"/>
  <property name="AttentionIconPixmap" type="a(iiay)" access="read"/>
  <property name="AttentionAccessibleDesc" type="s" access="read"/>
  <property name="AttentionMovieName" type="s" access="read"/>
  <property name="ToolTip" type="(sa(iiay)ss)" access="read"/>
  <property name="ItemIsMenu" type="b" access="read"/>
  <property name="Menu" type="o" access="read"/>
  <property name="XAyatanaOrderingIndex" type="u" access="read"/>%1
  <method name="Activate">
    <arg name="x" type="i" direction="in"/><arg name="y" type="i" direction="in"/>
  </method>
  <method name="SecondaryActivate">
    <arg name="x" type="i" direction="in"/><arg name="y" type="i" direction="in"/>
  </method>
  <method name="XAyatanaSecondaryActivate"><arg name="timestamp" type="u" direction="in"/></method>
  <method name="ContextMenu">
    <arg name="x" type="i" direction="in"/><arg name="y" type="i" direction="in"/>
  </method>
  <method name="ProvideXdgActivationToken"><arg name="token" type="s" direction="in"/></method>
  <method name="Scroll">
    <arg name="delta" type="i" direction="in"/><arg name="orientation" type="s" direction="in"/>
  </method>
  <signal name="NewTitle"/>
  <signal name="NewIcon"/>
  <signal name="NewAttentionIcon"/>
  <signal name="NewOverlayIcon"/>
  <signal name="NewToolTip"/>
  <signal name="NewStatus"><arg name="status" type="s"/></signal>
  <signal name="XAyatanaNewLabel">
    <arg name="label" type="s"/><arg name="guide" type="s"/>
  </signal>
</interface>
)xml";
constexpr auto kLabelIntrospection = R"xml(
  <property name="XAyatanaLabel" type="s" access="read"/>
  <property name="XAyatanaLabelGuide" type="s" access="read"/>)xml";

// The widest possible text. Hosts reserve this width, so that items beside the label do not move.
constexpr auto kLabelGuide = "Disk 100%";

QVariantList labelArguments(const std::optional<QString>& label) {
    return {label.value_or(QString()), QString(label ? kLabelGuide : "")};
}

QString statusWord(const NotifierContent& content) {
    return content.needsAttention ? "NeedsAttention" : "Active";
}

}  // namespace

StatusNotifierItem::StatusNotifierItem(QDBusConnection bus, QString menuPath,
                                       NotifierActions actions)
    : bus_(std::move(bus)), menuPath_(std::move(menuPath)), actions_(std::move(actions)) {
    registerBusTypes();
    // GNOME's extension looks at the label once, before it can show one, then asks for the
    // description, and from then on passes over a label that is equal to the one it knows.
    described_.setSingleShot(true);
    described_.setInterval(0);
    connect(&described_, &QTimer::timeout, this, [this] {
        if (content_.label) {
            announceLabel({});
            announceLabel(*content_.label);
        }
    });
    bus_.registerVirtualObject(kPath, this);
}

StatusNotifierItem::~StatusNotifierItem() {
    bus_.unregisterObject(kPath);
}

void StatusNotifierItem::setContent(NotifierContent content, HostFetches fetches) {
    const NotifierContent old = std::exchange(content_, std::move(content));
    struct Signal {
        bool due;
        const char* name;
        QVariantList arguments;
    };
    // By itself, because no host that takes everything after any signal takes this.
    if (content_.needsAttention != old.needsAttention) {
        emitSignal("NewStatus", {statusWord(content_)});
    }
    const bool newText = content_.text != old.text;
    const Signal candidates[] = {
        {content_.icon != old.icon || content_.iconName != old.iconName, "NewIcon", {}},
        {content_.label != old.label, "XAyatanaNewLabel", labelArguments(content_.label)},
        {newText, "NewToolTip", {}},
        {newText && fetches == HostFetches::named, "NewTitle", {}},
    };
    for (const Signal& each : candidates) {
        if (each.due) {
            emitSignal(each.name, each.arguments);
            if (fetches == HostFetches::everything) {
                return;
            }
        }
    }
}

QVariantMap StatusNotifierItem::properties() const {
    const QVariant noPicture = QVariant::fromValue(IconPixmaps());
    QVariantMap map{
        {"Category", "SystemServices"},
        // Hosts look up the icon for their settings by it.
        {"Id", kIdentifier},
        {"Title", content_.text},
        {"Status", statusWord(content_)},
        {"WindowId", 0},
        {"IconThemePath", ""},
        {"IconName", content_.iconName},
        {"IconPixmap", QVariant::fromValue(content_.icon)},
        {"IconAccessibleDesc", content_.text},
        {"OverlayIconName", ""},
        {"OverlayIconPixmap", noPicture},
        {"AttentionIconName", ""},
        {"AttentionIconPixmap", noPicture},
        {"AttentionAccessibleDesc", ""},
        {"AttentionMovieName", ""},
        {"ToolTip", QVariant::fromValue(ToolTip{{}, {}, content_.text, {}})},
        {"ItemIsMenu", false},
        {"Menu", QVariant::fromValue(QDBusObjectPath(menuPath_))},
        // 0 leaves the order to the host.
        {"XAyatanaOrderingIndex", 0U},
    };
    if (content_.label) {
        map.insert("XAyatanaLabel", *content_.label);
        map.insert("XAyatanaLabelGuide", kLabelGuide);
    }
    return map;
}

void StatusNotifierItem::announceLabel(const QString& label) {
    emitSignal("XAyatanaNewLabel", labelArguments(label));
}

void StatusNotifierItem::emitSignal(const QString& name, const QVariantList& arguments) {
    QDBusMessage message = QDBusMessage::createSignal(kPath, kInterface, name);
    message.setArguments(arguments);
    bus_.send(message);
}

QString StatusNotifierItem::introspect(const QString& path) const {
    if (path == kPath && content_.label) {
        described_.start();
    }
    return path == kPath
               ? QString(kItemIntrospection).arg(content_.label ? kLabelIntrospection : "")
               : QString();
}

bool StatusNotifierItem::handleMessage(const QDBusMessage& message,
                                       const QDBusConnection& connection) {
    if (message.interface() == "org.freedesktop.DBus.Properties") {
        return answerPropertyCall(message, connection, kInterface, properties());
    }
    if (!message.interface().isEmpty() && message.interface() != kInterface) {
        return false;
    }
    const QString call = calledMethod(message);
    const std::function<void()> nothing = [] {};
    const std::function<void()> takeToken = [this, &message] {
        if (actions_.activationToken) {
            actions_.activationToken(message.arguments().first().toString());
        }
    };
    const std::function<void()> activate = [this, &message] {
        if (actions_.activate) {
            actions_.activate({message.arguments()[0].toInt(), message.arguments()[1].toInt()});
        }
    };
    const std::function<void()>* action = nullptr;
    if (call == "Activate(ii)") {
        action = &activate;
    } else if (call == "SecondaryActivate(ii)" || call == "XAyatanaSecondaryActivate(u)") {
        action = &actions_.secondaryActivate;
    } else if (call == "ProvideXdgActivationToken(s)") {
        action = &takeToken;
    } else if (call == "ContextMenu(ii)" || call == "Scroll(is)") {
        // Hosts draw the menu themselves; turning the wheel means nothing here.
        action = &nothing;
    }
    // The answer first: the host must not wait while a panel is being built.
    if (message.isReplyRequired()) {
        connection.send(action ? message.createReply() : noSuchMethod(message));
    }
    if (action && *action) {
        (*action)();
    }
    return true;
}

}  // namespace tarnwick::platform
