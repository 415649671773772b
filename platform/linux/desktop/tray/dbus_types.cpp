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

QDBusArgument& operator<<(QDBusArgument& argument, const IconPixmap& value) {
    argument.beginStructure();
    argument << value.width << value.height << value.bytes;
    argument.endStructure();
    return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, IconPixmap& value) {
    argument.beginStructure();
    argument >> value.width >> value.height >> value.bytes;
    argument.endStructure();
    return argument;
}

QDBusArgument& operator<<(QDBusArgument& argument, const ToolTip& value) {
    argument.beginStructure();
    argument << value.iconName << value.icon << value.title << value.description;
    argument.endStructure();
    return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, ToolTip& value) {
    argument.beginStructure();
    argument >> value.iconName >> value.icon >> value.title >> value.description;
    argument.endStructure();
    return argument;
}

QDBusArgument& operator<<(QDBusArgument& argument, const MenuNode& value) {
    argument.beginStructure();
    argument << value.id << value.properties << value.children;
    argument.endStructure();
    return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, MenuNode& value) {
    argument.beginStructure();
    argument >> value.id >> value.properties >> value.children;
    argument.endStructure();
    return argument;
}

QDBusArgument& operator<<(QDBusArgument& argument, const MenuProperties& value) {
    argument.beginStructure();
    argument << value.id << value.properties;
    argument.endStructure();
    return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, MenuProperties& value) {
    argument.beginStructure();
    argument >> value.id >> value.properties;
    argument.endStructure();
    return argument;
}

QDBusArgument& operator<<(QDBusArgument& argument, const MenuEvent& value) {
    argument.beginStructure();
    argument << value.id << value.type << value.data << value.timestamp;
    argument.endStructure();
    return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, MenuEvent& value) {
    argument.beginStructure();
    argument >> value.id >> value.type >> value.data >> value.timestamp;
    argument.endStructure();
    return argument;
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
