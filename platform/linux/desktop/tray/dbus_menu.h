// SPDX-License-Identifier: MIT
// The item's menu as an object on the session bus, in the protocol of com.canonical.dbusmenu.
#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QList>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <QVariantMap>
#include <functional>
#include <vector>

#include "platform/linux/desktop/tray/dbus_types.h"

namespace tarnwick::platform {

/// One entry of the item's menu.
struct MenuEntry {
    /// Empty for a separator.
    QString label;
    /// Absent for a separator.
    std::function<void()> chosen;
};

/// A flat menu that does not change once it is exported. Entries are numbered from 1 in order; 0
/// is the menu itself. Main thread.
class DBusMenu final : public QDBusVirtualObject {
    Q_OBJECT

 public:
    static constexpr auto kInterface = "com.canonical.dbusmenu";

    /// `opening` is called whenever a host says that it is about to show the menu.
    DBusMenu(QDBusConnection bus, QString path, std::vector<MenuEntry> entries,
             std::function<void()> opening);
    ~DBusMenu() override;

    QString introspect(const QString& path) const override;
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override;

 private:
    bool exists(int id) const { return id >= 0 && id <= static_cast<int>(entries_.size()); }
    QVariantMap properties(int id, const QStringList& names) const;
    MenuNode node(int id, int depth, const QStringList& names) const;
    /// The numbers in a request: each once, in the order of their first mention.
    struct Mentioned {
        QList<int> entries;
        /// Numbers without an entry; at most the first few.
        QList<int> unknown;
    };
    void mention(int id, Mentioned& mentioned) const;
    Mentioned mentionedIn(const QVariant& ids) const;
    QDBusMessage answer(const QDBusMessage& message);
    QDBusMessage answerEvents(const QDBusMessage& message);
    /// A host reports, or asks before, showing the entry with this number.
    void aboutToShow(int id);
    /// Handles an event of an entry. The action of a clicked entry is queued, so that the host gets
    /// its answer first.
    void event(int id, const QString& type);

    QDBusConnection bus_;
    QString path_;
    std::vector<MenuEntry> entries_;
    std::function<void()> opening_;
};

}  // namespace tarnwick::platform
