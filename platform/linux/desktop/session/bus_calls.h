// Calls over the bus that nobody waits for, and what messages hold.
#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>
#include <QString>
#include <QVariantList>
#include <functional>
#include <optional>

namespace tarnwick::platform {

/// The arguments of a signal, a call or an answer; absent when it is an error or has any other
/// signature than the expected one. The bus library ends the program when arguments are decoded as
/// another type than theirs, and whoever sent them chose it.
using BusArguments = std::optional<QVariantList>;

/// The arguments of `message` if it has exactly `signature`.
BusArguments argumentsOf(const QDBusMessage& message, const QString& signature);

/// Sends `call` and hands its answer to `answered` on the main thread; never once `owner` is gone.
/// An answer of another signature than `signature` counts as an error. With an empty one every
/// answer counts that is no error, and what is in it is not handed on.
void callAsync(const QDBusConnection& bus, const QDBusMessage& call, const QString& signature,
               QObject* owner, std::function<void(const BusArguments& answer)> answered);

/// What is in a variant of the bus; invalid when `value` is none.
QVariant variantIn(const QVariant& value);

/// The method that is called with the types of its arguments, such as "Activate(ii)".
QString calledMethod(const QDBusMessage& call);

/// Answer to the call of a method that is not there with such arguments.
QDBusMessage noSuchMethod(const QDBusMessage& call);

/// A call of the bus itself, such as GetNameOwner.
QDBusMessage busCall(const QString& method, const QVariantList& arguments);

}  // namespace tarnwick::platform
