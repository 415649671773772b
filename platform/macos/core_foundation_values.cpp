// SPDX-License-Identifier: MIT
#include "platform/macos/core_foundation_values.h"

#include <cstddef>
#include <utility>
#include <vector>

namespace tarnwick::platform {
namespace {

bool isOfType(CFTypeRef value, CFTypeID type) {
    return value != nullptr && CFGetTypeID(value) == type;
}

std::vector<std::byte> bytesOf(CFDataRef data) {
    const auto* first = reinterpret_cast<const std::byte*>(CFDataGetBytePtr(data));
    return {first, first + CFDataGetLength(data)};
}

PropertyValue numberOf(CFNumberRef number) {
    if (!CFNumberIsFloatType(number)) {
        if (const auto integer = integerIn(number)) {
            return *integer;
        }
    }
    double value = 0;
    CFNumberGetValue(number, kCFNumberDoubleType, &value);
    return value;
}

PropertyValue dictionaryOf(CFDictionaryRef dictionary) {
    const auto count = static_cast<std::size_t>(CFDictionaryGetCount(dictionary));
    std::vector<const void*> keys(count);
    std::vector<const void*> values(count);
    CFDictionaryGetKeysAndValues(dictionary, keys.data(), values.data());
    PropertyDictionary properties;
    for (std::size_t i = 0; i < count; ++i) {
        std::optional<std::string> key = textIn(keys[i]);
        if (!key) {
            return std::monostate();
        }
        properties.push_back({std::move(*key), propertyIn(values[i])});
    }
    return properties;
}

}  // namespace

std::optional<std::string> textIn(CFTypeRef value) {
    if (!isOfType(value, CFStringGetTypeID())) {
        return std::nullopt;
    }
    const auto string = static_cast<CFStringRef>(value);
    const CFRange all = CFRangeMake(0, CFStringGetLength(string));
    // Replaces characters without a form in UTF-8 (half a character) by a question mark.
    constexpr UInt8 kLossByte = '?';
    CFIndex size = 0;
    CFStringGetBytes(string, all, kCFStringEncodingUTF8, kLossByte, false, nullptr, 0, &size);
    std::string text(static_cast<std::size_t>(size), '\0');
    CFStringGetBytes(string, all, kCFStringEncodingUTF8, kLossByte, false,
                     reinterpret_cast<UInt8*>(text.data()), size, nullptr);
    return text;
}

std::optional<std::int64_t> integerIn(CFTypeRef value) {
    std::int64_t integer = 0;
    if (!isOfType(value, CFNumberGetTypeID()) ||
        !CFNumberGetValue(static_cast<CFNumberRef>(value), kCFNumberSInt64Type, &integer)) {
        return std::nullopt;
    }
    return integer;
}

std::optional<bool> booleanIn(CFTypeRef value) {
    if (!isOfType(value, CFBooleanGetTypeID())) {
        return std::nullopt;
    }
    return CFBooleanGetValue(static_cast<CFBooleanRef>(value)) != 0;
}

PropertyValue propertyIn(CFTypeRef value) {
    if (isOfType(value, CFNumberGetTypeID())) {
        return numberOf(static_cast<CFNumberRef>(value));
    }
    if (auto text = textIn(value)) {
        return std::move(*text);
    }
    if (isOfType(value, CFDataGetTypeID())) {
        return bytesOf(static_cast<CFDataRef>(value));
    }
    if (isOfType(value, CFDictionaryGetTypeID())) {
        return dictionaryOf(static_cast<CFDictionaryRef>(value));
    }
    return std::monostate();
}

std::optional<DefaultsValue> defaultsValueIn(CFTypeRef value) {
    if (const auto boolean = booleanIn(value)) {
        return *boolean;
    }
    if (auto text = textIn(value)) {
        return std::move(*text);
    }
    if (isOfType(value, CFDateGetTypeID())) {
        return Date{CFDateGetAbsoluteTime(static_cast<CFDateRef>(value)) +
                    kCFAbsoluteTimeIntervalSince1970};
    }
    const PropertyValue number = propertyIn(value);
    if (const auto* integer = std::get_if<std::int64_t>(&number)) {
        return *integer;
    }
    if (const auto* real = std::get_if<double>(&number)) {
        return *real;
    }
    return std::nullopt;
}

}  // namespace tarnwick::platform
