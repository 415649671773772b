// SPDX-License-Identifier: MIT
#include "platform/linux/desktop/session/xsettings.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>

namespace tarnwick::platform {
namespace {

/// Reads the property from front to back. Every read past its end is absent.
class Cursor {
 public:
    Cursor(std::span<const std::byte> bytes, bool bigEndian)
        : bytes_(bytes), bigEndian_(bigEndian) {}

    std::optional<std::uint32_t> number(std::size_t size) {
        const auto taken = take(size);
        if (!taken) {
            return std::nullopt;
        }
        std::uint32_t value = 0;
        for (std::size_t i = 0; i < size; ++i) {
            const std::byte byte = (*taken)[bigEndian_ ? i : size - 1 - i];
            value = value << 8 | std::to_integer<std::uint32_t>(byte);
        }
        return value;
    }
    std::optional<std::string_view> text(std::size_t size) {
        const auto taken = take(size);
        if (!taken) {
            return std::nullopt;
        }
        return std::string_view(reinterpret_cast<const char*>(taken->data()), size);
    }
    bool skip(std::size_t size) { return take(size).has_value(); }

 private:
    std::optional<std::span<const std::byte>> take(std::size_t size) {
        if (size > bytes_.size()) {
            return std::nullopt;
        }
        const auto taken = bytes_.first(size);
        bytes_ = bytes_.subspan(size);
        return taken;
    }

    std::span<const std::byte> bytes_;
    bool bigEndian_;
};

enum class SettingType : std::uint32_t { integer = 0, text = 1, color = 2 };

/// Names and texts are filled up to a multiple of four bytes.
constexpr std::size_t padding(std::size_t size) {
    return (4 - size % 4) % 4;
}

bool isStyleWord(std::string_view word) {
    static constexpr std::array<std::string_view, 25> kWords = {
        "Thin",     "Ultra-Light",    "Extra-Light",   "Light",           "Semi-Light",
        "Book",     "Regular",        "Normal",        "Medium",          "Semi-Bold",
        "Bold",     "Ultra-Bold",     "Extra-Bold",    "Heavy",           "Black",
        "Italic",   "Oblique",        "Roman",         "Small-Caps",      "Condensed",
        "Expanded", "Semi-Condensed", "Semi-Expanded", "Extra-Condensed", "SemiBold"};
    return std::find(kWords.begin(), kWords.end(), word) != kWords.end();
}

/// Removes the last word from the text and returns it; empty if there is none.
std::string_view takeLastWord(std::string_view& text) {
    while (text.ends_with(' ')) {
        text.remove_suffix(1);
    }
    const std::size_t space = text.find_last_of(' ');
    const std::string_view word = space == text.npos ? text : text.substr(space + 1);
    text.remove_suffix(word.size());
    return word;
}

}  // namespace

std::optional<std::string> xsettingsText(std::span<const std::byte> property,
                                         std::string_view name) {
    if (property.empty() || std::to_integer<int>(property[0]) > 1) {
        return std::nullopt;
    }
    Cursor cursor(property, std::to_integer<int>(property[0]) == 1);
    // Byte order and padding, then the serial number.
    if (!cursor.skip(8)) {
        return std::nullopt;
    }
    const auto count = cursor.number(4);
    for (std::uint32_t i = 0; count && i < *count; ++i) {
        const auto type = cursor.number(1);
        cursor.skip(1);
        const auto nameLength = cursor.number(2);
        if (!type || !nameLength) {
            return std::nullopt;
        }
        const auto settingName = cursor.text(*nameLength);
        // The padding of the name, then the serial number of the last change.
        if (!settingName || !cursor.skip(padding(*nameLength) + 4)) {
            return std::nullopt;
        }
        switch (static_cast<SettingType>(*type)) {
            case SettingType::integer:
                cursor.skip(4);
                break;
            case SettingType::color:
                cursor.skip(8);
                break;
            case SettingType::text: {
                const auto length = cursor.number(4);
                const auto value = length ? cursor.text(*length) : std::nullopt;
                if (!value) {
                    return std::nullopt;
                }
                if (*settingName == name) {
                    return std::string(*value);
                }
                cursor.skip(padding(*length));
                break;
            }
            default:
                return std::nullopt;
        }
    }
    return std::nullopt;
}

std::optional<InterfaceFont> interfaceFont(std::string_view description) {
    const std::string_view size = takeLastWord(description);
    double points = 0;
    const auto [end, error] = std::from_chars(size.data(), size.data() + size.size(), points);
    if (error != std::errc() || end != size.data() + size.size() || !(points >= 4) ||
        !(points <= 72)) {
        return std::nullopt;
    }
    for (std::string_view rest = description; isStyleWord(takeLastWord(rest));) {
        description = rest;
    }
    while (description.ends_with(' ') || description.ends_with(',')) {
        description.remove_suffix(1);
    }
    while (description.starts_with(' ')) {
        description.remove_prefix(1);
    }
    if (description.empty()) {
        return std::nullopt;
    }
    return InterfaceFont{std::string(description), points};
}

}  // namespace tarnwick::platform
