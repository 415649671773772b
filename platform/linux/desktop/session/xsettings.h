// The settings that a desktop's settings daemon keeps on an X11 display, and what one of them says
// of the interface font.
#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace tarnwick::platform {

/// The text setting `name` ("Gtk/FontName") in the content of the _XSETTINGS_SETTINGS property.
/// Absent when there is none of that name and type, or the content ends early or makes no sense
/// before it.
std::optional<std::string> xsettingsText(std::span<const std::byte> property,
                                         std::string_view name);

/// A font as the desktop's settings describe it.
struct InterfaceFont {
    std::string family;
    /// Points.
    double pointSize = 0;

    bool operator==(const InterfaceFont&) const = default;
};

/// Reads "Noto Sans Medium Italic 10.5": the size is the last word, words of style before it are
/// left out of the family. Absent without a family or a size from 4 to 72 points.
std::optional<InterfaceFont> interfaceFont(std::string_view description);

}  // namespace tarnwick::platform
