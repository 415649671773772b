// SPDX-License-Identifier: MIT
#import <Foundation/Foundation.h>

#include "platform/macos/mac_machine.h"

namespace tarnwick::platform {

std::int64_t MacProcessInfo::activeProcessorCount() {
    @autoreleasepool {
        return static_cast<std::int64_t>(NSProcessInfo.processInfo.activeProcessorCount);
    }
}

std::int64_t MacProcessInfo::thermalState() {
    @autoreleasepool {
        return NSProcessInfo.processInfo.thermalState;
    }
}

}  // namespace tarnwick::platform
