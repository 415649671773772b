// The command line of a desktop entry.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tarnwick::platform {

/// What an entry's command line may ask for.
struct DesktopCommandFields {
    /// The entry's name in the user's language.
    std::string name;
    /// Name of its icon; empty when it has none.
    std::string icon;
    /// Its file.
    std::string file;
};

/// The program and its arguments for the value `exec` of an entry's key Exec, when it is started
/// without files to open. Empty when the line is damaged: a quotation that does not end, a field
/// that nobody knows.
std::vector<std::string> desktopCommand(std::string_view exec, const DesktopCommandFields& fields);

}  // namespace tarnwick::platform
