// SPDX-License-Identifier: MIT
#include "platform/linux/desktop/keyboard/portal_shortcut.h"

#include <QCoreApplication>
#include <QDBusArgument>
#include <QDBusObjectPath>
#include <QKeySequence>
#include <QProcess>
#include <utility>

#include "platform/linux/desktop/keyboard/key_names.h"
#include "platform/linux/desktop/keyboard/portal_types.h"
#include "platform/linux/desktop/session/bus_calls.h"
#include "platform/linux/desktop/session/portal_introduction.h"
#include "platform/linux/identifier.h"

namespace tarnwick::platform {
namespace {

constexpr auto kPath = "/org/freedesktop/portal/desktop";
constexpr auto kInterface = "org.freedesktop.portal.GlobalShortcuts";
constexpr auto kRequestInterface = "org.freedesktop.portal.Request";
constexpr auto kSessionInterface = "org.freedesktop.portal.Session";
constexpr auto kProperties = "org.freedesktop.DBus.Properties";
constexpr uint kFirstVersion = 1;

constexpr auto kPlasmaService = "org.kde.kglobalaccel";
constexpr auto kPlasmaPath = "/kglobalaccel";
constexpr auto kPlasmaInterface = "org.kde.KGlobalAccel";

constexpr auto kDescription = "Open or close the panel";

/// Response codes; every other one is a refusal by the user.
constexpr uint kGranted = 0;
/// "Ended in some other way". GNOME's portal says so also when it has bound a shortcut.
constexpr uint kEnded = 2;

/// A new name for each object that the portal makes for this process.
QString newToken() {
    static int count = 0;
    return QString("tarnwick_%1").arg(++count);
}

/// The keys of a trigger such as "SHIFT+LOGO+l"; empty if they have no other name.
QKeySequence plasmaKeys(QString trigger) {
    return QKeySequence(trigger.replace("LOGO", "Meta"), QKeySequence::PortableText);
}

/// A path on the bus, which portals give as a path or as a text.
QString pathIn(const QVariant& value) {
    if (value.metaType() == QMetaType::fromType<QString>()) {
        return value.toString();
    }
    return value.value<QDBusObjectPath>().path();
}

}  // namespace

PortalShortcut::PortalShortcut(QDBusConnection bus, const QString& trigger,
                               QStringList gnomeSettings)
    : bus_(std::move(bus)),
      signals_(bus_, kPortalService),
      plasma_(bus_, kPlasmaService),
      trigger_(trigger),
      gnomeSettings_(std::move(gnomeSettings)),
      id_("panel-" + QString(trigger).replace('+', '-')) {
    registerPortalTypes();
}

void PortalShortcut::close() {
    isClosed_ = true;
    const auto send = [this](const QString& path, const char* interface) {
        if (!path.isEmpty()) {
            bus_.send(QDBusMessage::createMethodCall(portal_, path, interface, "Close"));
        }
    };
    send(std::exchange(request_, {}), kRequestInterface);
    send(std::exchange(session_, {}), kSessionInterface);
    hasSession_ = false;
    changed_ = nullptr;
    pressed_ = nullptr;
}

QString PortalShortcut::otherKeys() const {
    return keyParts(keys_) == keyParts(trigger_) ? QString() : plainKeys(keys_);
}

void PortalShortcut::start(std::function<void()> changed, std::function<void()> pressed) {
    changed_ = std::move(changed);
    pressed_ = std::move(pressed);
    // Connects to all signals before the first request, so that no answer is missed.
    hear(kRequestInterface, "Response", "ua{sv}", &PortalShortcut::responded);
    hear(kInterface, "Activated", "osta{sv}", &PortalShortcut::activated);
    hear(kInterface, "ShortcutsChanged", "oa(sa{sv})", &PortalShortcut::shortcutsChanged);
    hear(kSessionInterface, "Closed", "a{sv}", &PortalShortcut::sessionClosed);
    plasma_.hear({.path = kPlasmaPath,
                  .interface = kPlasmaInterface,
                  .member = "yourShortcutsChanged",
                  .signature = "asa(ai)"},
                 [this](const QDBusMessage& signal) { plasmaKeysChanged(signal); });

    introduceToPortal(bus_, this, [this] {
        if (!isClosed_) {
            askVersion();
        }
    });
}

void PortalShortcut::askVersion() {
    QDBusMessage call = QDBusMessage::createMethodCall(kPortalService, kPath, kProperties, "Get");
    call.setArguments({QString(kInterface), QString("version")});
    callAsync(bus_, call, "v", this, [this](const BusArguments& answer) {
        if (isClosed_) {
            return;
        }
        // The bus told of the portal before the portal answered; it may have gone since.
        portal_ = signals_.owner();
        if (!answer || variantIn(answer->first()).toUInt() < kFirstVersion || portal_.isEmpty()) {
            portal_.clear();
            set(State::unavailable);
            return;
        }
        createSession();
    });
}

void PortalShortcut::hear(const char* interface, const char* signal, const char* signature,
                          void (PortalShortcut::*heard)(const QDBusMessage& signal)) {
    signals_.hear({.path = {}, .interface = interface, .member = signal, .signature = signature},
                  [this, heard](const QDBusMessage& message) { (this->*heard)(message); });
}

void PortalShortcut::createSession() {
    const QString token = newToken();
    // The expected name. The portal's answer has the final one.
    session_ =
        QString("%1/session/%2/%3").arg(kPath, bus_.baseService().mid(1).replace('.', '_'), token);
    ask("CreateSession", {}, {{"session_handle_token", token}});
}

void PortalShortcut::bind() {
    const PortalShortcutEntries shortcuts = {
        {id_, {{"description", QString(kDescription)}, {"preferred_trigger", trigger_}}}};
    ask("BindShortcuts",
        {QVariant::fromValue(QDBusObjectPath(session_)), QVariant::fromValue(shortcuts), QString()},
        {});
}

void PortalShortcut::ask(const char* method, const QVariantList& arguments, QVariantMap options) {
    const QString token = newToken();
    request_ =
        QString("%1/request/%2/%3").arg(kPath, bus_.baseService().mid(1).replace('.', '_'), token);
    options.insert("handle_token", token);
    QDBusMessage call = QDBusMessage::createMethodCall(portal_, kPath, kInterface, method);
    call.setArguments(arguments + QVariantList{options});
    callAsync(bus_, call, "o", this, [this, predicted = request_](const BusArguments& answer) {
        // The response may have arrived before this reply.
        if (request_ != predicted) {
            return;
        }
        if (!answer) {
            request_.clear();
            isRefusedByPortal_ = true;
            set(State::unavailable);
            return;
        }
        // Portals of old choose the name themselves.
        request_ = pathIn(answer->first());
    });
}

void PortalShortcut::responded(const QDBusMessage& signal) {
    if (request_.isEmpty() || signal.path() != request_) {
        return;
    }
    request_.clear();
    const QVariantList arguments = signal.arguments();
    const uint code = arguments[0].toUInt();
    const auto results = qdbus_cast<QVariantMap>(arguments[1]);
    const QString keys = hasSession_ ? keysIn(results.value("shortcuts")) : QString();
    if (code != kGranted && (code != kEnded || keys.isEmpty())) {
        isRefusedByPortal_ = code == kEnded;
        set(State::refused);
        return;
    }
    if (hasSession_) {
        const bool isFirst = state_ == State::asking;
        take(keys);
        if (isFirst) {
            askForHolder();
            askGnomeForHolder();
        }
        return;
    }
    if (const QString path = pathIn(results.value("session_handle")); !path.isEmpty()) {
        session_ = path;
    }
    hasSession_ = true;
    bind();
}

bool PortalShortcut::isOfSession(const QDBusMessage& signal) const {
    return hasSession_ && pathIn(signal.arguments()[0]) == session_;
}

void PortalShortcut::activated(const QDBusMessage& signal) {
    if (isOfSession(signal) && signal.arguments()[1] == id_ &&
        (state_ == State::bound || state_ == State::unbound)) {
        set(State::bound);
        // Calls a copy: the callback may call close().
        if (const auto pressed = pressed_) {
            pressed();
        }
    }
}

void PortalShortcut::shortcutsChanged(const QDBusMessage& signal) {
    if (isOfSession(signal) && (state_ == State::bound || state_ == State::unbound)) {
        take(keysIn(signal.arguments()[1]));
    }
}

void PortalShortcut::plasmaKeysChanged(const QDBusMessage& signal) {
    const QStringList action = signal.arguments()[0].toStringList();
    if (hasSession_ && request_.isEmpty() && action.size() > 1 && action[0] == kIdentifier &&
        action[1] == id_) {
        ask("ListShortcuts", {QVariant::fromValue(QDBusObjectPath(session_))}, {});
    }
}

void PortalShortcut::sessionClosed(const QDBusMessage& signal) {
    if (hasSession_ && signal.path() == session_) {
        hasSession_ = false;
        session_.clear();
        request_.clear();
        set(State::closed);
    }
}

void PortalShortcut::askForHolder() {
    const QKeySequence keys = plasmaKeys(trigger_);
    if (state_ != State::bound || keys.isEmpty()) {
        return;
    }
    // At the first time Plasma's portal names the wished keys even if another program has them.
    QDBusMessage call = QDBusMessage::createMethodCall(kPlasmaService, kPlasmaPath,
                                                       kPlasmaInterface, "globalShortcutAvailable");
    call.setAutoStartService(false);
    call.setArguments(
        {QVariant::fromValue(PlasmaKeys{{keys[0].toCombined(), 0, 0, 0}}), QString(kIdentifier)});
    callAsync(bus_, call, "b", this, [this](const BusArguments& answer) {
        if (answer && !answer->first().toBool() && state_ == State::bound) {
            set(State::unbound);
        }
    });
}

void PortalShortcut::askGnomeForHolder() {
    // GNOME's portal says that it has bound keys that the shell has for itself. Only it names keys
    // in this way.
    if (state_ != State::bound || !keys_.contains('<')) {
        return;
    }
    // Not a child of this object: a process that is destroyed while it runs prints a warning.
    auto* process = new QProcess(QCoreApplication::instance());
    connect(process, &QProcess::finished, this, [this, process, keys = keys_] {
        if (keys == keys_ && state_ == State::bound &&
            isOfGnome(process->readAllStandardOutput(), keyParts(keys))) {
            set(State::unbound);
        }
    });
    connect(process, &QProcess::finished, process, &QObject::deleteLater);
    connect(process, &QProcess::errorOccurred, process, &QObject::deleteLater);
    process->start(gnomeSettings_.front(), gnomeSettings_.mid(1));
}

QString PortalShortcut::keysIn(const QVariant& shortcuts) const {
    // Portals also list shortcuts from earlier requests.
    for (const PortalShortcutEntry& each : shortcutEntriesIn(shortcuts)) {
        if (each.id == id_) {
            return each.properties.value("trigger_description").toString().trimmed();
        }
    }
    return {};
}

void PortalShortcut::take(const QString& keys) {
    const bool isOther = std::exchange(keys_, keys) != keys;
    const State state = keys.isEmpty() ? State::unbound : State::bound;
    if (isOther && state == state_) {
        tell();
    }
    set(state);
}

void PortalShortcut::set(State state) {
    if (state_ != state) {
        state_ = state;
        tell();
    }
}

void PortalShortcut::tell() const {
    // Calls a copy: the callback may call close().
    if (const auto changed = changed_) {
        changed();
    }
}

}  // namespace tarnwick::platform
