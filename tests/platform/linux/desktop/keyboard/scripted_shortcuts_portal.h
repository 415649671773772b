// SPDX-License-Identifier: MIT
// A shortcuts portal that does what a test says and records the requests.
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
    /// The same for the shortcut that was bound last.
    void press() { press(sessions.last(), bound.last().id); }
    /// Tells the client that the keys of the last bound shortcut have changed.
    void change(const PortalShortcutEntries& shortcuts);
    /// Plasma tells that the keys of an action, named by its program and itself, have changed.
    void changeInPlasma(const QStringList& action);
    /// Ends the session that was made last.
    void closeSession();
    /// Sends the response that `holdsResponse` kept back.
    void respond();

    /// The version property, of any type; an empty value for a portal without shortcuts.
    QVariant version = 1U;
    /// Whether it accepts the name of a program.
    bool takesNames = true;
    /// Name of the method that fails.
    QString failing;
    /// Response codes.
    uint createCode = 0;
    uint bindCode = 0;
    /// The keys in the list of shortcuts; absent: the preferred ones.
    std::optional<QString> keys;
    /// If set, this is the list of shortcuts.
    std::optional<PortalShortcutEntries> list;
    /// If set, these are the results of binding.
    std::optional<QVariantMap> results;
    /// If set, Plasma is there and says whether the keys are free for the program.
    std::optional<bool> areKeysFree;
    /// Sends each response before the answer of its call.
    bool respondsFirst = false;
    /// Gives requests other names than clients expect.
    bool choosesRequestNames = false;
    /// Gives sessions other names, too, and returns them as paths instead of texts.
    bool choosesSessionNames = false;
    /// Sends no response to binding before respond().
    bool holdsResponse = false;

    /// The keys that Plasma was asked about.
    QList<int> keysAsked;
    /// The names that programs have given, and how many other calls came before each.
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
    QVariantMap shortcuts() const;

    QDBusConnection bus_;
    bool begun_ = false;
    QString client_;
    QDBusMessage held_;
    /// What was bound last.
    PortalShortcutEntries asked_;
};

}  // namespace tarnwick::platform::testing
