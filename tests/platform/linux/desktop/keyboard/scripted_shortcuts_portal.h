// A portal for shortcuts that does what a test says and remembers what it was asked.
#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QList>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <QVariantMap>
#include <optional>
#include <utility>

#include "platform/linux/desktop/keyboard/portal_types.h"

namespace tarnwick::platform::testing {

/// Owns the portal's name from begin() to end().
class ScriptedShortcutsPortal final : public QDBusVirtualObject {
    Q_OBJECT

 public:
    explicit ScriptedShortcutsPortal(QDBusConnection bus);
    ~ScriptedShortcutsPortal() override;

    void begin();
    void end();

    /// Tells the client that the keys of a shortcut were pressed.
    void press(const QString& session, const QString& shortcut);
    /// The same for the one that was bound last.
    void press() { press(sessions.last(), bound.last().id); }
    /// Tells that the keys of the shortcut that was bound last are others now.
    void change(const PortalShortcutEntries& shortcuts);
    /// Ends the session that was made last.
    void closeSession();
    /// Sends the response that `holdsResponse` kept back.
    void respond();

    /// Any value; none stands for a portal without shortcuts.
    QVariant version = 1U;
    /// Whether it takes a program's name.
    bool takesNames = true;
    /// A method that fails.
    QString failing;
    /// Response codes.
    uint createCode = 0;
    uint bindCode = 0;
    /// What the list says about the keys; absent: what was preferred.
    std::optional<QString> keys;
    /// The list is this one instead.
    std::optional<PortalShortcutEntries> list;
    /// Results of binding are these instead.
    std::optional<QVariantMap> results;
    /// Responses come before the answers of the calls that they belong to.
    bool respondsFirst = false;
    /// Requests have other names than clients expect.
    bool choosesRequestNames = false;
    /// Sessions do, too, and are told as paths instead of texts.
    bool choosesSessionNames = false;
    /// Binding is not responded to before respond().
    bool holdsResponse = false;

    /// Names of the programs that have called, and how many other calls had come before each.
    QList<std::pair<QString, qsizetype>> names;
    /// Methods in the order of their calls.
    QStringList calls;
    QStringList sessions;
    PortalShortcutEntries bound;
    /// The last session to bind to, as the client named it.
    QString boundSession;
    /// Name of the last request.
    QString request;
    /// Objects that the client has closed.
    QStringList closed;

    QString introspect(const QString& path) const override;
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override;

 private:
    void signal(const QString& path, const char* interface, const char* member,
                const QVariantList& arguments);
    void answerName(const QDBusMessage& message);
    void answerVersion(const QDBusMessage& message);
    void answerRequest(const QDBusMessage& message, uint code, const QVariantMap& results,
                       bool isHeld);
    QVariantMap createSession(const QVariantMap& options);
    QVariantMap bind(const QDBusMessage& message);

    QDBusConnection bus_;
    bool begun_ = false;
    QString client_;
    QDBusMessage held_;
};

}  // namespace tarnwick::platform::testing
