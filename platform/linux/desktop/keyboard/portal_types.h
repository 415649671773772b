// The compound values of the shortcuts portal, and their marshalling.
#pragma once

#include <QDBusArgument>
#include <QList>
#include <QMetaType>
#include <QString>
#include <QVariantMap>

namespace tarnwick::platform {

/// A shortcut by its identifier: (sa{sv}).
struct PortalShortcutEntry {
    QString id;
    QVariantMap properties;
};
using PortalShortcutEntries = QList<PortalShortcutEntry>;

/// The list that a value from the bus holds; empty when it holds something else.
PortalShortcutEntries shortcutEntriesIn(const QVariant& value);

QDBusArgument& operator<<(QDBusArgument& argument, const PortalShortcutEntry& value);
const QDBusArgument& operator>>(const QDBusArgument& argument, PortalShortcutEntry& value);

/// Registers the types with the bus library. Needed once; further calls do no harm.
void registerPortalTypes();

}  // namespace tarnwick::platform

Q_DECLARE_METATYPE(tarnwick::platform::PortalShortcutEntry)
