// SPDX-License-Identifier: MIT
#import <Foundation/Foundation.h>

#include "platform/macos/core_foundation_values.h"
#include "platform/macos/foundation_text.h"
#include "platform/macos/mac_machine.h"

namespace tarnwick::platform {
namespace {

std::optional<std::int64_t> integerUnder(NSString* key, NSDictionary* dictionary) {
    return integerIn((__bridge CFTypeRef)dictionary[key]);
}

std::optional<std::string> textUnder(NSString* key, NSDictionary* dictionary) {
    return textIn((__bridge CFTypeRef)dictionary[key]);
}

}  // namespace

std::string MacVolumes::homeDirectoryForCurrentUser() {
    @autoreleasepool {
        return text(NSFileManager.defaultManager.homeDirectoryForCurrentUser.path);
    }
}

std::variant<VolumeResourceValues, VolumeError> MacVolumes::resourceValues(
    const std::string& path) {
    @autoreleasepool {
        NSURL* url = [NSURL fileURLWithPath:foundationText(path) isDirectory:YES];
        NSError* error = nil;
        NSDictionary* values = [url resourceValuesForKeys:@[
            NSURLVolumeNameKey, NSURLVolumeTotalCapacityKey,
            NSURLVolumeAvailableCapacityForImportantUsageKey, NSURLVolumeAvailableCapacityKey
        ]
                                                    error:&error];
        if (values == nil) {
            return VolumeError{text(error.localizedDescription)};
        }
        return VolumeResourceValues{
            .name = textUnder(NSURLVolumeNameKey, values),
            .totalCapacity = integerUnder(NSURLVolumeTotalCapacityKey, values),
            .availableCapacityForImportantUsage =
                integerUnder(NSURLVolumeAvailableCapacityForImportantUsageKey, values),
            .availableCapacity = integerUnder(NSURLVolumeAvailableCapacityKey, values),
        };
    }
}

std::optional<FileSystemAttributes> MacVolumes::attributesOfFileSystemForPath(
    const std::string& path) {
    @autoreleasepool {
        NSDictionary* attributes =
            [NSFileManager.defaultManager attributesOfFileSystemForPath:foundationText(path)
                                                                  error:nil];
        if (attributes == nil) {
            return std::nullopt;
        }
        return FileSystemAttributes{.size = integerUnder(NSFileSystemSize, attributes),
                                    .freeSize = integerUnder(NSFileSystemFreeSize, attributes)};
    }
}

}  // namespace tarnwick::platform
