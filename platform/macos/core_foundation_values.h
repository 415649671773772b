// SPDX-License-Identifier: MIT
// Converts the values of property lists to plain ones.
#pragma once

#include <CoreFoundation/CoreFoundation.h>
#include <cstdint>
#include <optional>
#include <string>

#include "platform/accelerators.h"
#include "platform/user_defaults.h"

namespace tarnwick::platform {

/// The text in UTF-8. Absent for null and for a value that is not a text.
std::optional<std::string> textIn(CFTypeRef value);

/// The integer. Absent for null, for a value that is not a number, and for a number with a
/// fraction. A boolean is not a number.
std::optional<std::int64_t> integerIn(CFTypeRef value);

/// The boolean. Absent for null and for a value that is not a boolean.
std::optional<bool> booleanIn(CFTypeRef value);

/// Converts any value. A dictionary keeps every entry; it becomes std::monostate if one of its keys
/// is not a text.
PropertyValue propertyIn(CFTypeRef value);

/// A value of the user's settings. Absent for null and for a value that no setting has.
std::optional<DefaultsValue> defaultsValueIn(CFTypeRef value);

}  // namespace tarnwick::platform
