// SPDX-License-Identifier: MIT
#include "platform/utf8.h"

#include <algorithm>
#include <array>
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

/// A range of characters, the last one included.
struct Range {
    char32_t first = 0;
    char32_t last = 0;
};

constexpr std::array kDirectionMarks{Range{0x61C, 0x61C}, Range{0x200E, 0x200F},
                                     Range{0x202A, 0x202E}, Range{0x2066, 0x2069}};
constexpr std::array kLineEndsAndControls{Range{0x00, 0x1F}, Range{0x7F, 0x9F},
                                          Range{0x2028, 0x2029}};
constexpr std::array kSpacesAndInvisible{
    Range{0x20, 0x20},     Range{0xA0, 0xA0},     Range{0xAD, 0xAD},     Range{0x34F, 0x34F},
    Range{0x115F, 0x1160}, Range{0x1680, 0x1680}, Range{0x180B, 0x180F}, Range{0x2000, 0x200F},
    Range{0x2028, 0x202F}, Range{0x205F, 0x206F}, Range{0x2800, 0x2800}, Range{0x3000, 0x3000},
    Range{0x3164, 0x3164}, Range{0xFE00, 0xFE0F}, Range{0xFEFF, 0xFEFF}, Range{0xFFA0, 0xFFA0}};

template <std::size_t count>
bool isIn(const std::array<Range, count>& ranges, char32_t character) {
    return std::ranges::any_of(ranges, [character](const Range& range) {
        return character >= range.first && character <= range.last;
    });
}

/// Calls `visit` with each character of valid UTF-8 and its bytes.
template <class Visit>
void visitCharacters(std::string_view text, Visit visit) {
    while (!text.empty()) {
        const auto first = static_cast<unsigned char>(text.front());
        const std::size_t following = leadOf(first).following;
        // A lead byte has one bit less for each byte that follows.
        char32_t character = following == 0 ? first : first & (0x3FU >> following);
        for (std::size_t i = 1; i <= following; ++i) {
            character = character << 6 | (static_cast<unsigned char>(text[i]) & 0x3F);
        }
        visit(character, text.substr(0, following + 1));
        text.remove_prefix(following + 1);
    }
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

std::string repairedName(std::string_view bytes) {
    std::string name;
    name.reserve(bytes.size());
    visitCharacters(repairedUTF8(bytes), [&name](char32_t character, std::string_view own) {
        if (isIn(kLineEndsAndControls, character)) {
            name += ' ';
        } else if (!isIn(kDirectionMarks, character)) {
            name += own;
        }
    });
    return name;
}

std::string_view firstCharacters(std::string_view text, std::size_t count) {
    std::size_t length = 0;
    for (; length < text.size() && count > 0; --count) {
        length += leadOf(static_cast<unsigned char>(text[length])).following + 1;
    }
    return text.substr(0, length);
}

bool canBeSeen(std::string_view text) {
    bool isSeen = false;
    visitCharacters(text, [&isSeen](char32_t character, std::string_view) {
        isSeen =
            isSeen || !(isIn(kSpacesAndInvisible, character) ||
                        isIn(kLineEndsAndControls, character) || isIn(kDirectionMarks, character));
    });
    return isSeen;
}

}  // namespace tarnwick::platform
