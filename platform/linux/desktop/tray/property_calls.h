// Answers to org.freedesktop.DBus.Properties for objects that keep their properties in a map.
#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QString>
#include <QVariantMap>

namespace tarnwick::platform {

/// Answers Get, GetAll and Set (nothing can be written) when `message` is a call of the
/// properties interface; false when it is another call. `properties` belong to `interface`.
bool answerPropertyCall(const QDBusMessage& message, const QDBusConnection& bus,
                        const QString& interface, const QVariantMap& properties);

}  // namespace tarnwick::platform
