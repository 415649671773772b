// SPDX-License-Identifier: MIT
// The compound values of the shortcuts portal, and their marshalling.
#pragma once

#include <QList>
#include <QMetaType>
#include <QString>
#include <QVariantMap>
#include <tuple>

#include "platform/linux/desktop/session/bus_struct.h"

namespace tarnwick::platform {

/// A shortcut by its identifier: (sa{sv}).
struct PortalShortcutEntry {
    QString id;
    QVariantMap properties;

    static auto fields(auto& value) { return std::tie(value.id, value.properties); }
};
using PortalShortcutEntries = QList<PortalShortcutEntry>;

/// A combination of keys for Plasma, as the toolkit numbers them, the unused places 0: (ai).
struct PlasmaKeys {
    QList<int> keys;

    static auto fields(auto& value) { return std::tie(value.keys); }
};

/// The list that a value from the bus holds; empty when it holds something else.
PortalShortcutEntries shortcutEntriesIn(const QVariant& value);

/// Registers the types with the bus library. Needed once; further calls do no harm.
void registerPortalTypes();

}  // namespace tarnwick::platform

Q_DECLARE_METATYPE(tarnwick::platform::PortalShortcutEntry)
Q_DECLARE_METATYPE(tarnwick::platform::PlasmaKeys)
