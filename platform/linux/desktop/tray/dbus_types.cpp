// SPDX-License-Identifier: MIT
#include "platform/linux/desktop/tray/dbus_types.h"

#include <QDBusMetaType>
#include <QtEndian>

namespace tarnwick::platform {

IconPixmap toPixmap(const QImage& image) {
    const QImage source = image.convertToFormat(QImage::Format_ARGB32);
    IconPixmap pixmap{.width = source.width(), .height = source.height(), .bytes = {}};
    pixmap.bytes.resize(qsizetype{4} * pixmap.width * pixmap.height);
    char* target = pixmap.bytes.data();
    for (int y = 0; y < pixmap.height; ++y) {
        qToBigEndian<quint32>(source.constScanLine(y), pixmap.width, target);
        target += qsizetype{4} * pixmap.width;
    }
    return pixmap;
}

void registerBusTypes() {
    qDBusRegisterMetaType<IconPixmap>();
    qDBusRegisterMetaType<IconPixmaps>();
    qDBusRegisterMetaType<ToolTip>();
    qDBusRegisterMetaType<MenuNode>();
    qDBusRegisterMetaType<MenuProperties>();
    qDBusRegisterMetaType<MenuPropertiesList>();
    qDBusRegisterMetaType<MenuEvent>();
    qDBusRegisterMetaType<MenuEvents>();
    qDBusRegisterMetaType<QList<int>>();
    qDBusRegisterMetaType<QList<QDBusVariant>>();
}

}  // namespace tarnwick::platform
