// SPDX-License-Identifier: MIT
#include "platform/linux/desktop/keyboard/portal_types.h"

#include <QDBusMetaType>

namespace tarnwick::platform {

PortalShortcutEntries shortcutEntriesIn(const QVariant& value) {
    if (value.metaType() == QMetaType::fromType<PortalShortcutEntries>()) {
        return value.value<PortalShortcutEntries>();
    }
    if (value.metaType() != QMetaType::fromType<QDBusArgument>() ||
        value.value<QDBusArgument>().currentSignature() != "a(sa{sv})") {
        return {};
    }
    return qdbus_cast<PortalShortcutEntries>(value);
}

void registerPortalTypes() {
    qDBusRegisterMetaType<PortalShortcutEntry>();
    qDBusRegisterMetaType<PortalShortcutEntries>();
    qDBusRegisterMetaType<PlasmaKeys>();
}

}  // namespace tarnwick::platform
