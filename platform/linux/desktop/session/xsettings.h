// SPDX-License-Identifier: MIT
// Reads the settings that a desktop's settings daemon stores on an X11 display, and the interface
// font among them.
#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace tarnwick::platform {

/// The text setting `name` ("Gtk/FontName") in the content of the _XSETTINGS_SETTINGS property.
/// Absent if there is no setting with this name and type, or if the content before it ends early or
/// is invalid.
std::optional<std::string> xsettingsText(std::span<const std::byte> property,
                                         std::string_view name);

/// A font as the desktop's settings describe it.
struct InterfaceFont {
    std::string family;
    /// Points.
    double pointSize = 0;

    bool operator==(const InterfaceFont&) const = default;
};

/// Reads a description such as "Noto Sans Medium Italic 10.5": the last word is the size; style
/// words before it are not part of the family. Absent without a family or a size from 4 to 72
/// points.
std::optional<InterfaceFont> interfaceFont(std::string_view description);

}  // namespace tarnwick::platform
