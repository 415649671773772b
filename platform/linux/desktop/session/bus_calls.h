// Calls over the bus that nobody waits for.
#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>
#include <QString>
#include <QVariantList>
#include <functional>

namespace tarnwick::platform {

/// Sends `call` and hands its answer, an error included, to `answered` on the main thread; never
/// once `owner` is gone.
void callAsync(const QDBusConnection& bus, const QDBusMessage& call, QObject* owner,
               std::function<void(const QDBusMessage& answer)> answered);

/// A call of the bus itself, such as GetNameOwner.
QDBusMessage busCall(const QString& method, const QVariantList& arguments);

}  // namespace tarnwick::platform
