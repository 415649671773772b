// SPDX-License-Identifier: MIT
// Answers to org.freedesktop.DBus.Properties for objects that keep their properties in a map.
#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QString>
#include <QVariantMap>

namespace tarnwick::platform {

/// Answers `message` if it is Get, GetAll or Set of the properties interface; Set is refused,
/// because nothing can be written. False if it is another call. `properties` belong to `interface`.
bool answerPropertyCall(const QDBusMessage& message, const QDBusConnection& bus,
                        const QString& interface, const QVariantMap& properties);

}  // namespace tarnwick::platform
