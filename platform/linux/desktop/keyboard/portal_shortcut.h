// SPDX-License-Identifier: MIT
// One shortcut, requested from the desktop through the portal, which asks the user.
#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QVariantList>
#include <QVariantMap>
#include <functional>

#include "platform/linux/desktop/session/service_signals.h"

namespace tarnwick::platform {

/// Bus name of the portal. Its owner can come and go.
inline constexpr auto kPortalService = "org.freedesktop.portal.Desktop";

/// Sends its request after start(). The trigger is a wish: the portal and its user choose the keys.
/// Never waits for the bus. Main thread.
class PortalShortcut final : public QObject {
    Q_OBJECT

 public:
    enum class State {
        /// The portal has not decided; it waits for its user without a time limit.
        asking,
        /// The shortcut delivers presses.
        bound,
        /// The portal took it but names no keys for it. The first press makes it bound.
        unbound,
        /// The user or the portal said no.
        refused,
        /// There is no portal, or none that has shortcuts.
        unavailable,
        /// The portal has ended it.
        closed,
    };

    /// `trigger` is the combination as desktops have agreed to write it, such as "SHIFT+LOGO+l".
    /// `gnomeSettings` is the command that prints the settings of GNOME, which is asked where the
    /// portal is GNOME's.
    PortalShortcut(QDBusConnection bus, const QString& trigger,
                   QStringList gnomeSettings = {"gsettings", "list-recursively"});

    /// `changed` is called for every change of the state or the keys, `pressed` for every press;
    /// both from the event loop.
    void start(std::function<void()> changed, std::function<void()> pressed);
    /// Gives the shortcut back to the portal. No callback is called afterwards.
    void close();

    State state() const { return state_; }
    /// Whether the portal, not its user, has said no.
    bool isRefusedByPortal() const { return isRefusedByPortal_; }
    /// The keys in the desktop's words, where the user has chosen others than the trigger. Empty
    /// if they are the same, or there are none.
    QString otherKeys() const;
    /// Unique name of the portal on the bus; empty until it has answered.
    const QString& portal() const { return portal_; }

 private:
    void askVersion();
    void createSession();
    void bind();
    void ask(const char* method, const QVariantList& arguments, QVariantMap options);
    void hear(const char* interface, const char* signal, const char* signature,
              void (PortalShortcut::*heard)(const QDBusMessage& signal));
    void responded(const QDBusMessage& signal);
    void activated(const QDBusMessage& signal);
    void shortcutsChanged(const QDBusMessage& signal);
    void sessionClosed(const QDBusMessage& signal);
    bool isOfSession(const QDBusMessage& signal) const;
    /// Asks Plasma or GNOME who has the keys of a shortcut that their portals say is bound.
    void askForHolder();
    void askGnomeForHolder();
    /// Asks for the keys again that Plasma's user has changed: its portal does not tell.
    void plasmaKeysChanged(const QDBusMessage& signal);
    /// The keys of this shortcut in the portal's list; empty if it names none.
    QString keysIn(const QVariant& shortcuts) const;
    void take(const QString& keys);
    void set(State state);
    void tell() const;

    QDBusConnection bus_;
    ServiceSignals signals_;
    ServiceSignals plasma_;
    const QString trigger_;
    const QStringList gnomeSettings_;
    /// Different for each combination, because the portal remembers the user's choice for an
    /// identifier.
    const QString id_;
    std::function<void()> changed_;
    std::function<void()> pressed_;
    State state_ = State::asking;
    /// What the portal says of the keys; empty while it names none.
    QString keys_;
    QString portal_;
    /// The request that waits for its response; empty when none does.
    QString request_;
    /// Path of the session: the expected one until the portal has answered, then the portal's.
    /// Empty if there is no session.
    QString session_;
    bool hasSession_ = false;
    bool isClosed_ = false;
    bool isRefusedByPortal_ = false;
};

}  // namespace tarnwick::platform
