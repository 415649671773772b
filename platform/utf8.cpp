// SPDX-License-Identifier: MIT
#include "platform/utf8.h"

#include <algorithm>
#include <cstddef>

namespace tarnwick::platform {
namespace {

constexpr std::string_view kReplacement = "\xEF\xBF\xBD";

/// The rules for the bytes after the first byte of a character.
struct Lead {
    /// Bytes after the first; 0 for a byte that cannot begin a character of several bytes.
    std::size_t following = 0;
    /// Bounds of the second byte: they shut out overlong forms, surrogates and what lies above
    /// U+10FFFF.
    unsigned char low = 0x80;
    unsigned char high = 0xBF;
};

Lead leadOf(unsigned char byte) {
    if (byte >= 0xC2 && byte <= 0xDF) {
        return {.following = 1};
    }
    if (byte >= 0xE0 && byte <= 0xEF) {
        return {.following = 2,
                .low = static_cast<unsigned char>(byte == 0xE0 ? 0xA0 : 0x80),
                .high = static_cast<unsigned char>(byte == 0xED ? 0x9F : 0xBF)};
    }
    if (byte >= 0xF0 && byte <= 0xF4) {
        return {.following = 3,
                .low = static_cast<unsigned char>(byte == 0xF0 ? 0x90 : 0x80),
                .high = static_cast<unsigned char>(byte == 0xF4 ? 0x8F : 0xBF)};
    }
    return {};
}

bool isASCII(char character) {
    return static_cast<unsigned char>(character) < 0x80;
}

}  // namespace

std::string repairedUTF8(std::string_view bytes) {
    if (std::ranges::all_of(bytes, isASCII)) {
        return std::string(bytes);
    }
    std::string text;
    text.reserve(bytes.size());
    std::size_t position = 0;
    while (position < bytes.size()) {
        if (isASCII(bytes[position])) {
            text += bytes[position++];
            continue;
        }
        const Lead lead = leadOf(static_cast<unsigned char>(bytes[position]));
        std::size_t length = 1;
        while (length <= lead.following && position + length < bytes.size()) {
            const auto byte = static_cast<unsigned char>(bytes[position + length]);
            const bool fits =
                length == 1 ? byte >= lead.low && byte <= lead.high : byte >= 0x80 && byte <= 0xBF;
            if (!fits) {
                break;
            }
            ++length;
        }
        const bool whole = lead.following > 0 && length == lead.following + 1;
        text += whole ? bytes.substr(position, length) : kReplacement;
        position += length;
    }
    return text;
}

}  // namespace tarnwick::platform
