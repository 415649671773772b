// SPDX-License-Identifier: MIT
// Calls over the bus that do not wait, and the content of messages.
#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>
#include <QString>
#include <QVariantList>
#include <functional>
#include <optional>

namespace tarnwick::platform {

/// The arguments of a signal, a call or an answer. Absent if the message is an error or its
/// signature is not the expected one. The check is necessary: the sender chooses the types, and the
/// bus library ends the program if arguments are decoded as another type.
using BusArguments = std::optional<QVariantList>;

/// The arguments of `message` if it has exactly `signature`.
BusArguments argumentsOf(const QDBusMessage& message, const QString& signature);

/// Sends `call` without waiting. Calls `answered` with the answer on the main thread, but never
/// after `owner` is destroyed. An answer with another signature than `signature` counts as an
/// error. If `signature` is empty, every answer that is not an error counts, and its arguments are
/// not passed on.
void callAsync(const QDBusConnection& bus, const QDBusMessage& call, const QString& signature,
               QObject* owner, std::function<void(const BusArguments& answer)> answered);

/// The content of a bus variant; invalid if `value` is not a bus variant.
QVariant variantIn(const QVariant& value);

/// The method that is called with the types of its arguments, such as "Activate(ii)".
QString calledMethod(const QDBusMessage& call);

/// The answer to a call of a method that does not exist with these argument types.
QDBusMessage noSuchMethod(const QDBusMessage& call);

/// A call of the bus itself, such as GetNameOwner.
QDBusMessage busCall(const QString& method, const QVariantList& arguments);

}  // namespace tarnwick::platform
