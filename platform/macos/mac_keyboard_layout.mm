// SPDX-License-Identifier: MIT
#import <Carbon/Carbon.h>
#import <Foundation/Foundation.h>
#include <array>

#include "platform/macos/foundation_text.h"
#include "platform/macos/mac_machine.h"
#include "platform/macos/owned.h"

namespace tarnwick::platform {

std::optional<std::string> MacKeyboardLayout::displayText(std::uint16_t virtualKeyCode) {
    const CFOwned source(TISCopyCurrentKeyboardInputSource());
    if (!source) {
        return std::nullopt;
    }
    // The source owns the data.
    const auto data = static_cast<CFDataRef>(
        TISGetInputSourceProperty(source.get(), kTISPropertyUnicodeKeyLayoutData));
    if (data == nullptr) {
        return std::nullopt;
    }
    const auto* layout = reinterpret_cast<const UCKeyboardLayout*>(CFDataGetBytePtr(data));
    UInt32 deadKeys = 0;
    std::array<UniChar, 8> characters{};
    UniCharCount length = 0;
    const OSStatus status = UCKeyTranslate(layout, virtualKeyCode, kUCKeyActionDisplay, 0,
                                           LMGetKbdType(), kUCKeyTranslateNoDeadKeysMask, &deadKeys,
                                           characters.size(), &length, characters.data());
    if (status != noErr || length < 1) {
        return std::nullopt;
    }
    @autoreleasepool {
        return text(
            [NSString stringWithCharacters:characters.data() length:length].uppercaseString);
    }
}

}  // namespace tarnwick::platform
