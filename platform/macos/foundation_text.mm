// SPDX-License-Identifier: MIT
#include "platform/macos/foundation_text.h"

#include "platform/utf8.h"

namespace tarnwick::platform {

std::string text(NSString* value) {
    NSData* bytes = [value dataUsingEncoding:NSUTF8StringEncoding allowLossyConversion:YES];
    return bytes == nil ? std::string()
                        : std::string(static_cast<const char*>(bytes.bytes), bytes.length);
}

std::optional<std::string> optionalText(NSString* value) {
    return value == nil ? std::nullopt : std::optional(text(value));
}

NSString* foundationText(const std::string& value) {
    const std::string valid = repairedUTF8(value);
    return [[NSString alloc] initWithBytes:valid.data()
                                    length:valid.size()
                                  encoding:NSUTF8StringEncoding];
}

}  // namespace tarnwick::platform
