// SPDX-License-Identifier: MIT
#import <Foundation/Foundation.h>

#include "platform/macos/core_foundation_values.h"
#include "platform/macos/foundation_text.h"
#include "platform/macos/mac_machine.h"

namespace tarnwick::platform {
namespace {

NSUserDefaults* store() {
    return NSUserDefaults.standardUserDefaults;
}

id stored(std::string_view key) {
    return [store() objectForKey:foundationText(std::string(key))];
}

id boxed(bool value) {
    return @(static_cast<BOOL>(value));
}
id boxed(std::int64_t value) {
    return @(value);
}
id boxed(double value) {
    return @(value);
}
id boxed(const std::string& value) {
    return foundationText(value);
}
id boxed(Date value) {
    return [NSDate dateWithTimeIntervalSince1970:value.secondsSince1970];
}

}  // namespace

std::optional<DefaultsValue> MacUserDefaults::object(std::string_view key) {
    @autoreleasepool {
        return defaultsValueIn((__bridge CFTypeRef)stored(key));
    }
}

void MacUserDefaults::set(std::string_view key, const DefaultsValue& value) {
    @autoreleasepool {
        id object = std::visit([](const auto& plain) { return boxed(plain); }, value);
        [store() setObject:object forKey:foundationText(std::string(key))];
        // Makes the value durable before the call returns, even if the process ends right after it.
        [store() synchronize];
    }
}

bool MacUserDefaults::contains(std::string_view key) {
    @autoreleasepool {
        return stored(key) != nil;
    }
}

}  // namespace tarnwick::platform
