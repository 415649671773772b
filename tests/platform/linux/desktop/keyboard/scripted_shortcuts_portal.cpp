// SPDX-License-Identifier: MIT
#include "tests/platform/linux/desktop/keyboard/scripted_shortcuts_portal.h"

#include <QDBusArgument>
#include <QDBusMetaType>
#include <QDBusObjectPath>
#include <QDBusVariant>
#include <utility>

#include "platform/linux/desktop/keyboard/portal_shortcut.h"

namespace tarnwick::platform::testing {
namespace {

constexpr auto kPath = "/org/freedesktop/portal/desktop";
constexpr auto kInterface = "org.freedesktop.portal.GlobalShortcuts";
constexpr auto kRegistryInterface = "org.freedesktop.host.portal.Registry";
constexpr auto kRequestInterface = "org.freedesktop.portal.Request";
constexpr auto kSessionInterface = "org.freedesktop.portal.Session";

QString pathFor(const char* kind, const QString& client, const QString& token) {
    return QString("%1/%2/%3/%4").arg(kPath, kind, client.mid(1).replace('.', '_'), token);
}

}  // namespace

ScriptedShortcutsPortal::ScriptedShortcutsPortal(QDBusConnection bus) : bus_(std::move(bus)) {
    qDBusRegisterMetaType<QList<PlasmaKeys>>();
    registerPortalTypes();
}

ScriptedShortcutsPortal::~ScriptedShortcutsPortal() {
    end();
}

void ScriptedShortcutsPortal::begin() {
    bus_.registerVirtualObject(kPath, this, QDBusConnection::SubPath);
    bus_.registerService(kPortalService);
    if (areKeysFree) {
        bus_.registerVirtualObject("/kglobalaccel", this);
        bus_.registerService("org.kde.kglobalaccel");
    }
    begun_ = true;
}

void ScriptedShortcutsPortal::end() {
    if (std::exchange(begun_, false)) {
        bus_.unregisterService(kPortalService);
        bus_.unregisterObject(kPath, QDBusConnection::UnregisterTree);
        bus_.unregisterService("org.kde.kglobalaccel");
        bus_.unregisterObject("/kglobalaccel");
    }
}

void ScriptedShortcutsPortal::press(const QString& session, const QString& shortcut) {
    signal(kPath, kInterface, "Activated",
           {QVariant::fromValue(QDBusObjectPath(session)), shortcut, qulonglong{1}, QVariantMap()});
    signal(kPath, kInterface, "Deactivated",
           {QVariant::fromValue(QDBusObjectPath(session)), shortcut, qulonglong{2}, QVariantMap()});
}

void ScriptedShortcutsPortal::change(const PortalShortcutEntries& shortcuts) {
    signal(kPath, kInterface, "ShortcutsChanged",
           {QVariant::fromValue(QDBusObjectPath(sessions.last())), QVariant::fromValue(shortcuts)});
}

void ScriptedShortcutsPortal::closeSession() {
    signal(sessions.last(), kSessionInterface, "Closed", {QVariantMap()});
}

void ScriptedShortcutsPortal::respond() {
    bus_.send(held_);
}

QString ScriptedShortcutsPortal::introspect(const QString&) const {
    return {};
}

void ScriptedShortcutsPortal::signal(const QString& path, const char* interface, const char* member,
                                     const QVariantList& arguments) {
    QDBusMessage message = QDBusMessage::createTargetedSignal(client_, path, interface, member);
    message.setArguments(arguments);
    bus_.send(message);
}

bool ScriptedShortcutsPortal::handleMessage(const QDBusMessage& message, const QDBusConnection&) {
    const QString member = message.member();
    if (member == "Close") {
        closed.append(message.path());
        return true;
    }
    if (member == "Get") {
        answerVersion(message);
        return true;
    }
    if (message.interface() == kRegistryInterface && member == "Register") {
        answerName(message);
        return true;
    }
    if (member == "globalShortcutAvailable" && message.signature() == "(ai)s") {
        keysAsked = qdbus_cast<PlasmaKeys>(message.arguments()[0]).keys;
        bus_.send(message.createReply(*areKeysFree));
        return true;
    }
    if (message.interface() != kInterface) {
        return false;
    }
    calls.append(member);
    client_ = message.service();
    if (member == failing) {
        bus_.send(message.createErrorReply("org.freedesktop.portal.Error.Failed", "as told"));
    } else if (member == "CreateSession") {
        answerRequest(message, createCode,
                      createSession(qdbus_cast<QVariantMap>(message.arguments().value(0))), false);
    } else if (member == "ListShortcuts") {
        answerRequest(message, 0, shortcuts(), false);
    } else if (member == "BindShortcuts") {
        answerRequest(message, bindCode, bind(message), holdsResponse);
    } else {
        return false;
    }
    return true;
}

void ScriptedShortcutsPortal::answerName(const QDBusMessage& message) {
    names.append({message.arguments().value(0).toString(), calls.size()});
    bus_.send(takesNames ? message.createReply()
                         : message.createErrorReply("org.freedesktop.DBus.Error.UnknownMethod",
                                                    "No such interface"));
}

void ScriptedShortcutsPortal::answerVersion(const QDBusMessage& message) {
    calls.append("version");
    if (version.isValid() && message.arguments().value(0).toString() == kInterface &&
        message.arguments().value(1).toString() == "version") {
        bus_.send(message.createReply(QVariant::fromValue(QDBusVariant(version))));
    } else {
        bus_.send(message.createErrorReply("org.freedesktop.DBus.Error.InvalidArgs",
                                           "No such interface"));
    }
}

void ScriptedShortcutsPortal::answerRequest(const QDBusMessage& message, uint code,
                                            const QVariantMap& with, bool isHeld) {
    const auto options = qdbus_cast<QVariantMap>(message.arguments().last());
    request = choosesRequestNames
                  ? QString("%1/request/chosen_%2").arg(kPath).arg(calls.size())
                  : pathFor("request", client_, options.value("handle_token").toString());
    QDBusMessage response =
        QDBusMessage::createTargetedSignal(client_, request, kRequestInterface, "Response");
    response.setArguments({code, with});
    const QDBusMessage reply = message.createReply(QVariant::fromValue(QDBusObjectPath(request)));
    if (isHeld) {
        held_ = response;
        bus_.send(reply);
    } else {
        bus_.send(respondsFirst ? response : reply);
        bus_.send(respondsFirst ? reply : response);
    }
}

QVariantMap ScriptedShortcutsPortal::createSession(const QVariantMap& options) {
    sessions.append(
        choosesSessionNames
            ? QString("%1/session/chosen_%2").arg(kPath).arg(calls.size())
            : pathFor("session", client_, options.value("session_handle_token").toString()));
    const QVariant handle = choosesSessionNames
                                ? QVariant::fromValue(QDBusObjectPath(sessions.last()))
                                : QVariant(sessions.last());
    return {{"session_handle", handle}};
}

QVariantMap ScriptedShortcutsPortal::bind(const QDBusMessage& message) {
    boundSession = message.arguments().value(0).value<QDBusObjectPath>().path();
    asked_ = shortcutEntriesIn(message.arguments().value(1));
    bound += asked_;
    return shortcuts();
}

QVariantMap ScriptedShortcutsPortal::shortcuts() const {
    if (results) {
        return *results;
    }
    PortalShortcutEntries entries;
    for (const PortalShortcutEntry& each : asked_) {
        const QString preferred = each.properties.value("preferred_trigger").toString();
        entries.append({each.id,
                        {{"description", each.properties.value("description")},
                         {"trigger_description", keys.value_or(preferred)}}});
    }
    return {{"shortcuts", QVariant::fromValue(list.value_or(entries))}};
}

void ScriptedShortcutsPortal::changeInPlasma(const QStringList& action) {
    signal("/kglobalaccel", "org.kde.KGlobalAccel", "yourShortcutsChanged",
           {action, QVariant::fromValue(QList<PlasmaKeys>())});
}

}  // namespace tarnwick::platform::testing
