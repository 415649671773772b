// SPDX-License-Identifier: MIT
#import <Foundation/Foundation.h>

#include "platform/macos/foundation_text.h"
#include "platform/macos/mac_machine.h"

namespace tarnwick::platform {

std::string MacByteCountFormatter::stringFromByteCount(std::int64_t byteCount,
                                                       CountStyle style) const {
    @autoreleasepool {
        return text([NSByteCountFormatter
            stringFromByteCount:byteCount
                     countStyle:style == CountStyle::file ? NSByteCountFormatterCountStyleFile
                                                          : NSByteCountFormatterCountStyleMemory]);
    }
}

}  // namespace tarnwick::platform
