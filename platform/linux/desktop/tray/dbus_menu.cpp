// SPDX-License-Identifier: MIT
#include "platform/linux/desktop/tray/dbus_menu.h"

#include <QDBusError>
#include <QMetaObject>
#include <functional>
#include <numeric>
#include <utility>

#include "platform/linux/desktop/session/bus_calls.h"
#include "platform/linux/desktop/tray/property_calls.h"

namespace tarnwick::platform {
namespace {

// The menu never changes, so there is one revision only.
constexpr uint kRevision = 1;
/// Greatest number of wrong entry numbers in an answer: hosts know which entries exist.
constexpr qsizetype kMostUnknown = 16;

constexpr auto kMenuIntrospection = R"xml(
<interface name="com.canonical.dbusmenu">
  <property name="Version" type="u" access="read"/>
  <property name="TextDirection" type="s" access="read"/>
  <property name="Status" type="s" access="read"/>
  <property name="IconThemePath" type="as" access="read"/>
  <method name="GetLayout">
    <arg name="parentId" type="i" direction="in"/>
    <arg name="recursionDepth" type="i" direction="in"/>
    <arg name="propertyNames" type="as" direction="in"/>
    <arg name="revision" type="u" direction="out"/>
    <arg name="layout" type="(ia{sv}av)" direction="out"/>
  </method>
  <method name="GetGroupProperties">
    <arg name="ids" type="ai" direction="in"/>
    <arg name="propertyNames" type="as" direction="in"/>
    <arg name="properties" type="a(ia{sv})" direction="out"/>
  </method>
  <method name="GetProperty">
    <arg name="id" type="i" direction="in"/>
    <arg name="name" type="s" direction="in"/>
    <arg name="value" type="v" direction="out"/>
  </method>
  <method name="Event">
    <arg name="id" type="i" direction="in"/>
    <arg name="eventId" type="s" direction="in"/>
    <arg name="data" type="v" direction="in"/>
    <arg name="timestamp" type="u" direction="in"/>
  </method>
  <method name="EventGroup">
    <arg name="events" type="a(isvu)" direction="in"/>
    <arg name="idErrors" type="ai" direction="out"/>
  </method>
  <method name="AboutToShow">
    <arg name="id" type="i" direction="in"/>
    <arg name="needUpdate" type="b" direction="out"/>
  </method>
  <method name="AboutToShowGroup">
    <arg name="ids" type="ai" direction="in"/>
    <arg name="updatesNeeded" type="ai" direction="out"/>
    <arg name="idErrors" type="ai" direction="out"/>
  </method>
  <signal name="ItemsPropertiesUpdated">
    <arg name="updatedProps" type="a(ia{sv})"/><arg name="removedProps" type="a(ias)"/>
  </signal>
  <signal name="LayoutUpdated"><arg name="revision" type="u"/><arg name="parent" type="i"/></signal>
  <signal name="ItemActivationRequested">
    <arg name="id" type="i"/><arg name="timestamp" type="u"/>
  </signal>
</interface>
)xml";

// Doubles underscores, because a single one marks the access key of an entry.
QString escaped(QString label) {
    return label.replace("_", "__");
}

/// Reads a list from the bus one value at a time, because a host may send millions. Requires:
/// `list` is a list.
template <typename Value>
void forEachIn(const QVariant& list, const std::function<void(const Value&)>& visit) {
    const auto values = list.value<QDBusArgument>();
    values.beginArray();
    while (!values.atEnd()) {
        Value each;
        values >> each;
        visit(each);
    }
    values.endArray();
}

/// Appends `value` if it is not in the list yet. False if it is.
template <typename Value>
bool appendOnce(QList<Value>& list, const Value& value) {
    if (list.contains(value)) {
        return false;
    }
    list.append(value);
    return true;
}

QDBusMessage noEntry(const QDBusMessage& message, int id) {
    return message.createErrorReply(QDBusError::InvalidArgs, QString("No menu entry %1").arg(id));
}

}  // namespace

DBusMenu::DBusMenu(QDBusConnection bus, QString path, std::vector<MenuEntry> entries,
                   std::function<void()> opening)
    : bus_(std::move(bus)),
      path_(std::move(path)),
      entries_(std::move(entries)),
      opening_(std::move(opening)) {
    registerBusTypes();
    bus_.registerVirtualObject(path_, this);
}

DBusMenu::~DBusMenu() {
    bus_.unregisterObject(path_);
}

QString DBusMenu::introspect(const QString& path) const {
    return path == path_ ? QString(kMenuIntrospection) : QString();
}

QVariantMap DBusMenu::properties(int id, const QStringList& names) const {
    QVariantMap map;
    if (id == 0) {
        map.insert("children-display", "submenu");
    } else if (const MenuEntry& entry = entries_[static_cast<std::size_t>(id) - 1];
               entry.label.isEmpty()) {
        map.insert("type", "separator");
    } else {
        map.insert("label", escaped(entry.label));
        map.insert("enabled", true);
        map.insert("visible", true);
    }
    if (!names.isEmpty()) {
        map.removeIf([&](const auto& property) { return !names.contains(property.key()); });
    }
    return map;
}

MenuNode DBusMenu::node(int id, int depth, const QStringList& names) const {
    MenuNode result{.id = id, .properties = properties(id, names), .children = {}};
    if (id == 0 && depth != 0) {
        for (int child = 1; exists(child); ++child) {
            result.children.append(
                QDBusVariant(QVariant::fromValue(node(child, depth - 1, names))));
        }
    }
    return result;
}

void DBusMenu::aboutToShow(int id) {
    if (id == 0 && opening_) {
        opening_();
    }
}

void DBusMenu::event(int id, const QString& type) {
    if (type == "opened") {
        aboutToShow(id);
    }
    if (type != "clicked" || id < 1 || !exists(id)) {
        return;
    }
    if (const auto& chosen = entries_[static_cast<std::size_t>(id) - 1].chosen) {
        QMetaObject::invokeMethod(this, chosen, Qt::QueuedConnection);
    }
}

void DBusMenu::mention(int id, Mentioned& mentioned) const {
    if (exists(id)) {
        appendOnce(mentioned.entries, id);
    } else if (mentioned.unknown.size() < kMostUnknown) {
        appendOnce(mentioned.unknown, id);
    }
}

DBusMenu::Mentioned DBusMenu::mentionedIn(const QVariant& ids) const {
    Mentioned mentioned;
    forEachIn<int>(ids, [&](int id) { mention(id, mentioned); });
    return mentioned;
}

QDBusMessage DBusMenu::answerEvents(const QDBusMessage& message) {
    Mentioned mentioned;
    QList<std::pair<int, QString>> taken;
    forEachIn<MenuEvent>(message.arguments().first(), [&](const MenuEvent& each) {
        mention(each.id, mentioned);
        // All other types are ignored. There may be any number of them.
        const bool matters = each.type == "clicked" || each.type == "opened";
        if (matters && exists(each.id) && appendOnce(taken, {each.id, each.type})) {
            event(each.id, each.type);
        }
    });
    if (mentioned.entries.isEmpty() && !mentioned.unknown.isEmpty()) {
        return noEntry(message, mentioned.unknown.first());
    }
    return message.createReply(QVariant::fromValue(mentioned.unknown));
}

QDBusMessage DBusMenu::answer(const QDBusMessage& message) {
    const QVariantList arguments = message.arguments();
    const QString call = calledMethod(message);
    const int id = arguments.value(0).toInt();
    if (call == "GetLayout(iias)") {
        if (!exists(id)) {
            return noEntry(message, id);
        }
        const MenuNode layout = node(id, arguments[1].toInt(), arguments[2].toStringList());
        return message.createReply({kRevision, QVariant::fromValue(layout)});
    }
    if (call == "GetGroupProperties(aias)") {
        Mentioned mentioned = mentionedIn(arguments[0]);
        if (mentioned.entries.isEmpty() && mentioned.unknown.isEmpty()) {
            // If no entry is named, all entries are meant.
            mentioned.entries.resize(static_cast<qsizetype>(entries_.size()) + 1);
            std::iota(mentioned.entries.begin(), mentioned.entries.end(), 0);
        }
        const QStringList names = arguments[1].toStringList();
        MenuPropertiesList list;
        for (const int each : mentioned.entries) {
            list.append({each, properties(each, names)});
        }
        return message.createReply(QVariant::fromValue(list));
    }
    if (call == "GetProperty(is)") {
        const QString name = arguments[1].toString();
        const QVariantMap map = exists(id) ? properties(id, {}) : QVariantMap();
        if (!map.contains(name)) {
            return message.createErrorReply(QDBusError::InvalidArgs, "No property " + name);
        }
        return message.createReply(QVariant::fromValue(QDBusVariant(map.value(name))));
    }
    if (call == "Event(isvu)") {
        if (!exists(id)) {
            return noEntry(message, id);
        }
        event(id, arguments[1].toString());
        return message.createReply();
    }
    if (call == "EventGroup(a(isvu))") {
        return answerEvents(message);
    }
    if (call == "AboutToShow(i)") {
        aboutToShow(id);
        return exists(id) ? message.createReply(false) : noEntry(message, id);
    }
    if (call == "AboutToShowGroup(ai)") {
        const Mentioned mentioned = mentionedIn(arguments[0]);
        for (const int each : mentioned.entries) {
            aboutToShow(each);
        }
        return message.createReply(
            {QVariant::fromValue(QList<int>()), QVariant::fromValue(mentioned.unknown)});
    }
    return noSuchMethod(message);
}

bool DBusMenu::handleMessage(const QDBusMessage& message, const QDBusConnection& connection) {
    if (answerPropertyCall(message, connection, kInterface,
                           {{"Version", 3U},
                            {"TextDirection", "ltr"},
                            {"Status", "normal"},
                            {"IconThemePath", QStringList()}})) {
        return true;
    }
    if (!message.interface().isEmpty() && message.interface() != kInterface) {
        return false;
    }
    const QDBusMessage reply = answer(message);
    if (message.isReplyRequired()) {
        connection.send(reply);
    }
    return true;
}

}  // namespace tarnwick::platform
