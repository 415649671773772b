// SPDX-License-Identifier: MIT
#import <Foundation/Foundation.h>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <unistd.h>

#include "platform/macos/core_foundation_values.h"
#include "platform/macos/foundation_text.h"
#include "platform/macos/mac_platform.h"
#include "tools/probe_system.h"

namespace tarnwick::probe {
namespace {

/// A property list that nobody changes.
class PropertyList final : public platform::UserDefaults {
 public:
    explicit PropertyList(NSDictionary* values) : values_(values) {}

    std::optional<platform::DefaultsValue> object(std::string_view key) override {
        @autoreleasepool {
            id value = values_[platform::foundationText(std::string(key))];
            return platform::defaultsValueIn((__bridge CFTypeRef)value);
        }
    }
    void set(std::string_view, const platform::DefaultsValue&) override {}

 private:
    NSDictionary* const values_;
};

}  // namespace

std::variant<Sources, UsageError> makeSources(const Options& options) {
    if (options.root != "/") {
        return UsageError{"--root: a recorded machine can be read on Linux only"};
    }
    if (options.home) {
        return UsageError{"--home: another volume can be measured on Linux only"};
    }
    // The system ends its threads with the process.
    return Sources{.machine = platform::makeMacPlatform(), .end = [] {}};
}

std::string usersSettingsFile() {
    @autoreleasepool {
        NSURL* library = [NSFileManager.defaultManager URLsForDirectory:NSLibraryDirectory
                                                              inDomains:NSUserDomainMask]
                             .firstObject;
        return platform::text(
            [library URLByAppendingPathComponent:@"Preferences/" TARNWICK_MACOS_IDENTIFIER ".plist"]
                .path);
    }
}

StoredSettings readSettings(const std::string& file) {
    @autoreleasepool {
        NSData* bytes = [NSData dataWithContentsOfFile:platform::foundationText(file)];
        if (bytes == nil) {
            return {.trouble = "it cannot be read"};
        }
        NSObject* values = [NSPropertyListSerialization propertyListWithData:bytes
                                                                     options:NSPropertyListImmutable
                                                                      format:nil
                                                                       error:nil];
        if (![values isKindOfClass:NSDictionary.class]) {
            return {.trouble = "it holds no settings"};
        }
        return {.values = std::make_unique<PropertyList>(static_cast<NSDictionary*>(values))};
    }
}

void makeLasting(const std::filesystem::path& folder) {
    const int descriptor = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor >= 0) {
        ::fsync(descriptor);
        ::close(descriptor);
    }
}

// std::to_chars for floating point is missing in macOS 13.0.
std::string numberText(double value) {
    constexpr int kDigitsOfAnyNumber = 17;
    std::array<char, 32> text{};
    for (int digits = 15; digits <= kDigitsOfAnyNumber; ++digits) {
        std::snprintf(text.data(), text.size(), "%.*g", digits, value);
        if (std::strtod(text.data(), nullptr) == value) {
            break;
        }
    }
    return text.data();
}

}  // namespace tarnwick::probe
