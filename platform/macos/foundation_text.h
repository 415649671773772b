// Texts across the border to Foundation. For Objective-C++ only.
#pragma once

#import <Foundation/Foundation.h>
#include <optional>
#include <string>

namespace tarnwick::platform {

/// UTF-8; empty for nil. The text may hold zero characters.
std::string text(NSString* value);

/// Absent for nil.
std::optional<std::string> optionalText(NSString* value);

/// `value` is UTF-8; what is not becomes replacement characters. Never nil.
NSString* foundationText(const std::string& value);

}  // namespace tarnwick::platform
