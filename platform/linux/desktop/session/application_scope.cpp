#include "platform/linux/desktop/session/application_scope.h"

#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusVariant>
#include <QList>
#include <QString>

namespace tarnwick::platform {

/// A property of a unit: "(sv)".
struct UnitProperty {
    QString name;
    QDBusVariant value;
};

/// A further unit to start: "(sa(sv))".
struct FurtherUnit {
    QString name;
    QList<UnitProperty> properties;
};

QDBusArgument& operator<<(QDBusArgument& argument, const UnitProperty& property) {
    argument.beginStructure();
    argument << property.name << property.value;
    argument.endStructure();
    return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, UnitProperty& property) {
    argument.beginStructure();
    argument >> property.name >> property.value;
    argument.endStructure();
    return argument;
}

QDBusArgument& operator<<(QDBusArgument& argument, const FurtherUnit& unit) {
    argument.beginStructure();
    argument << unit.name << unit.properties;
    argument.endStructure();
    return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, FurtherUnit& unit) {
    argument.beginStructure();
    argument >> unit.name >> unit.properties;
    argument.endStructure();
    return argument;
}

namespace {

/// A part of a unit's name: what could be taken for something else there is written as "\x2d".
std::string escaped(std::string_view part) {
    constexpr std::string_view digits = "0123456789abcdef";
    std::string text;
    for (const char character : part) {
        const bool isPlain = (character >= 'a' && character <= 'z') ||
                             (character >= 'A' && character <= 'Z') ||
                             (character >= '0' && character <= '9') || character == '_' ||
                             (character == '.' && !text.empty());
        if (isPlain) {
            text += character;
        } else {
            const auto byte = static_cast<unsigned char>(character);
            text += {'\\', 'x', digits[byte / 16], digits[byte % 16]};
        }
    }
    return text;
}

}  // namespace

std::string applicationScopeName(std::string_view entry, pid_t process) {
    return "app-tarnwick-" + escaped(entry) + '-' + std::to_string(process) + ".scope";
}

void moveToApplicationScope(const QDBusConnection& bus, std::string_view entry, pid_t process) {
    qDBusRegisterMetaType<UnitProperty>();
    qDBusRegisterMetaType<QList<UnitProperty>>();
    qDBusRegisterMetaType<FurtherUnit>();
    qDBusRegisterMetaType<QList<FurtherUnit>>();
    QDBusMessage call =
        QDBusMessage::createMethodCall("org.freedesktop.systemd1", "/org/freedesktop/systemd1",
                                       "org.freedesktop.systemd1.Manager", "StartTransientUnit");
    call.setAutoStartService(false);
    const auto property = [](const char* name, const QVariant& value) {
        return UnitProperty{name, QDBusVariant(value)};
    };
    const QList<UnitProperty> properties = {
        property("PIDs", QVariant::fromValue(QList<quint32>{static_cast<quint32>(process)})),
        property("Slice", "app.slice"), property("CollectMode", "inactive-or-failed")};
    call.setArguments({QString::fromStdString(applicationScopeName(entry, process)), "fail",
                       QVariant::fromValue(properties), QVariant::fromValue(QList<FurtherUnit>())});
    // The program runs whatever the answer is.
    bus.send(call);
}

}  // namespace tarnwick::platform
