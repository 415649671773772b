#include "platform/linux/desktop/keyboard/portal_shortcut.h"

#include <QDBusArgument>
#include <QDBusObjectPath>
#include <QDBusVariant>
#include <utility>

#include "platform/linux/desktop/keyboard/portal_types.h"
#include "platform/linux/desktop/session/bus_calls.h"
#include "platform/linux/desktop/session/portal_introduction.h"

namespace tarnwick::platform {
namespace {

constexpr auto kPath = "/org/freedesktop/portal/desktop";
constexpr auto kInterface = "org.freedesktop.portal.GlobalShortcuts";
constexpr auto kRequestInterface = "org.freedesktop.portal.Request";
constexpr auto kSessionInterface = "org.freedesktop.portal.Session";
constexpr auto kProperties = "org.freedesktop.DBus.Properties";
constexpr uint kFirstVersion = 1;

constexpr auto kDescription = "Open or close the panel";

/// Response codes; every other one is a refusal.
constexpr uint kGranted = 0;

bool isError(const QDBusMessage& message) {
    return message.type() == QDBusMessage::ErrorMessage;
}

/// Another name for each object that the portal is to make for this process.
QString newToken() {
    static int count = 0;
    return QString("tarnwick_%1").arg(++count);
}

/// A path on the bus, which portals give as a path or as a text.
QString pathIn(const QVariant& value) {
    return value.metaType() == QMetaType::fromType<QDBusObjectPath>()
               ? value.value<QDBusObjectPath>().path()
               : value.toString();
}

}  // namespace

PortalShortcut::PortalShortcut(QDBusConnection bus, const QString& trigger)
    : bus_(std::move(bus)), trigger_(trigger), id_("panel-" + QString(trigger).replace('+', '-')) {
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

void PortalShortcut::start(std::function<void()> changed, std::function<void()> pressed) {
    changed_ = std::move(changed);
    pressed_ = std::move(pressed);
    // All signals are heard before anything is asked: an answer cannot come too early. No sender is
    // named: the library would ask the bus for its owner and wait for the answer.
    connectTo(kRequestInterface, "Response", SLOT(responded(QDBusMessage)));
    connectTo(kInterface, "Activated", SLOT(activated(QDBusMessage)));
    connectTo(kInterface, "ShortcutsChanged", SLOT(shortcutsChanged(QDBusMessage)));
    connectTo(kSessionInterface, "Closed", SLOT(sessionClosed(QDBusMessage)));

    introduceToPortal(bus_, this, [this] {
        if (!isClosed_) {
            askVersion();
        }
    });
}

void PortalShortcut::askVersion() {
    QDBusMessage call = QDBusMessage::createMethodCall(kPortalService, kPath, kProperties, "Get");
    call.setArguments({QString(kInterface), QString("version")});
    callAsync(bus_, call, this, [this](const QDBusMessage& answer) {
        if (isClosed_) {
            return;
        }
        const QVariant version = answer.arguments().value(0).value<QDBusVariant>().variant();
        if (isError(answer) || version.toUInt() < kFirstVersion) {
            set(State::unavailable);
            return;
        }
        portal_ = answer.service();
        createSession();
    });
}

void PortalShortcut::connectTo(const char* interface, const char* signal, const char* slot) {
    bus_.connect("", "", interface, signal, this, slot);
}

void PortalShortcut::createSession() {
    const QString token = newToken();
    // What the portal will call it; its answer has the name that counts.
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
    callAsync(bus_, call, this, [this, predicted = request_](const QDBusMessage& answer) {
        // The response may have been here first.
        if (request_ != predicted) {
            return;
        }
        if (isError(answer)) {
            request_.clear();
            set(State::unavailable);
            return;
        }
        // Portals of old choose the name themselves.
        const QString path = pathIn(answer.arguments().value(0));
        request_ = path.isEmpty() ? predicted : path;
    });
}

void PortalShortcut::responded(const QDBusMessage& signal) {
    if (request_.isEmpty() || signal.service() != portal_ || signal.path() != request_) {
        return;
    }
    request_.clear();
    const QVariantList arguments = signal.arguments();
    if (arguments.value(0).metaType() != QMetaType::fromType<uint>() ||
        arguments.value(0).toUInt() != kGranted) {
        set(State::refused);
        return;
    }
    const auto results = qdbus_cast<QVariantMap>(arguments.value(1));
    if (hasSession_) {
        set(judged(results.value("shortcuts")));
        return;
    }
    if (const QString path = pathIn(results.value("session_handle")); !path.isEmpty()) {
        session_ = path;
    }
    hasSession_ = true;
    bind();
}

bool PortalShortcut::isOfSession(const QDBusMessage& signal) const {
    return hasSession_ && signal.service() == portal_ &&
           pathIn(signal.arguments().value(0)) == session_;
}

void PortalShortcut::activated(const QDBusMessage& signal) {
    if (isOfSession(signal) && signal.arguments().value(1).toString() == id_ &&
        (state_ == State::bound || state_ == State::unbound)) {
        set(State::bound);
        // The call may end in close().
        if (const auto pressed = pressed_) {
            pressed();
        }
    }
}

void PortalShortcut::shortcutsChanged(const QDBusMessage& signal) {
    if (isOfSession(signal) && (state_ == State::bound || state_ == State::unbound)) {
        set(judged(signal.arguments().value(1)));
    }
}

void PortalShortcut::sessionClosed(const QDBusMessage& signal) {
    if (hasSession_ && signal.service() == portal_ && signal.path() == session_) {
        hasSession_ = false;
        session_.clear();
        request_.clear();
        set(State::closed);
    }
}

PortalShortcut::State PortalShortcut::judged(const QVariant& shortcuts) const {
    // Portals also list what was asked for in the past.
    for (const PortalShortcutEntry& each : shortcutEntriesIn(shortcuts)) {
        const QString keys = each.properties.value("trigger_description").toString().trimmed();
        if (each.id == id_ && !keys.isEmpty()) {
            return State::bound;
        }
    }
    return State::unbound;
}

void PortalShortcut::set(State state) {
    if (state_ != state) {
        state_ = state;
        if (const auto changed = changed_) {
            changed();
        }
    }
}

}  // namespace tarnwick::platform
