// SPDX-License-Identifier: MIT
// The compound values that tray hosts exchange over the bus, and their marshalling.
#pragma once

#include <QByteArray>
#include <QDBusVariant>
#include <QImage>
#include <QList>
#include <QMetaType>
#include <QString>
#include <QVariantMap>
#include <tuple>

#include "platform/linux/desktop/session/bus_struct.h"

namespace tarnwick::platform {

/// One picture of an icon: 32-bit ARGB, not premultiplied, most significant byte first, rows
/// without padding. On the bus: (iiay).
struct IconPixmap {
    int width = 0;
    int height = 0;
    QByteArray bytes;

    static auto fields(auto& value) { return std::tie(value.width, value.height, value.bytes); }

    bool operator==(const IconPixmap&) const = default;
};
using IconPixmaps = QList<IconPixmap>;

/// A tool tip: (sa(iiay)ss).
struct ToolTip {
    QString iconName;
    IconPixmaps icon;
    QString title;
    QString description;

    static auto fields(auto& value) {
        return std::tie(value.iconName, value.icon, value.title, value.description);
    }

    bool operator==(const ToolTip&) const = default;
};

/// A menu entry with its descendants: (ia{sv}av).
struct MenuNode {
    int id = 0;
    QVariantMap properties;
    QList<QDBusVariant> children;

    static auto fields(auto& value) { return std::tie(value.id, value.properties, value.children); }
};

/// The properties of one menu entry: (ia{sv}).
struct MenuProperties {
    int id = 0;
    QVariantMap properties;

    static auto fields(auto& value) { return std::tie(value.id, value.properties); }
};
using MenuPropertiesList = QList<MenuProperties>;

/// An event of a menu entry: (isvu).
struct MenuEvent {
    int id = 0;
    QString type;
    QDBusVariant data;
    uint timestamp = 0;

    static auto fields(auto& value) {
        return std::tie(value.id, value.type, value.data, value.timestamp);
    }
};
using MenuEvents = QList<MenuEvent>;

/// The picture in the bus's format; any QImage format is taken.
IconPixmap toPixmap(const QImage& image);

/// Registers the types with the bus library. Needed once; further calls do no harm.
void registerBusTypes();

}  // namespace tarnwick::platform

Q_DECLARE_METATYPE(tarnwick::platform::IconPixmap)
Q_DECLARE_METATYPE(tarnwick::platform::ToolTip)
Q_DECLARE_METATYPE(tarnwick::platform::MenuNode)
Q_DECLARE_METATYPE(tarnwick::platform::MenuProperties)
Q_DECLARE_METATYPE(tarnwick::platform::MenuEvent)
