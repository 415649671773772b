// SPDX-License-Identifier: MIT
// Converts texts to and from Foundation. For Objective-C++ only.
#pragma once

#import <Foundation/Foundation.h>
#include <optional>
#include <string>

namespace tarnwick::platform {

/// UTF-8; empty for nil. The text may hold zero characters.
std::string text(NSString* value);

/// Absent for nil.
std::optional<std::string> optionalText(NSString* value);

/// `value` is UTF-8; invalid parts become replacement characters. The result is never nil.
NSString* foundationText(const std::string& value);

}  // namespace tarnwick::platform
