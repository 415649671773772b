// SPDX-License-Identifier: MIT
// Structures of the bus, marshalled by the list of their fields.
#pragma once

#include <QDBusArgument>
#include <tuple>

namespace tarnwick::platform {

/// A type whose `fields(value)` ties the members of `value` in the order of the bus's structure.
template <typename Type>
concept BusStruct = requires(Type& value) {
    Type::fields(value);
};

template <BusStruct Type>
QDBusArgument& operator<<(QDBusArgument& argument, const Type& value) {
    argument.beginStructure();
    std::apply([&](const auto&... each) { (argument << ... << each); }, Type::fields(value));
    argument.endStructure();
    return argument;
}

template <BusStruct Type>
const QDBusArgument& operator>>(const QDBusArgument& argument, Type& value) {
    argument.beginStructure();
    std::apply([&](auto&... each) { (argument >> ... >> each); }, Type::fields(value));
    argument.endStructure();
    return argument;
}

}  // namespace tarnwick::platform
