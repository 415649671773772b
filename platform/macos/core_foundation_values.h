// The values of property lists, as plain ones.
#pragma once

#include <CoreFoundation/CoreFoundation.h>
#include <cstdint>
#include <optional>
#include <string>

#include "platform/accelerators.h"

namespace tarnwick::platform {

/// UTF-8. Absent for null and for a value that is no text.
std::optional<std::string> textIn(CFTypeRef value);

/// Absent for null and for a value that is no number without a fraction; a boolean is none.
std::optional<std::int64_t> integerIn(CFTypeRef value);

/// Absent for null and for a value that is no boolean.
std::optional<bool> booleanIn(CFTypeRef value);

/// Any value. Of a dictionary every entry, or std::monostate when not all its keys are texts.
PropertyValue propertyIn(CFTypeRef value);

}  // namespace tarnwick::platform
