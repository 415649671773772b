#include "platform/linux/desktop/session/toolkit_environment.h"

#include <cstdlib>

namespace tarnwick::platform {

ToolkitEnvironment::ToolkitEnvironment() {
    for (const char* name : {"XDG_CURRENT_DESKTOP", "DESKTOP_SESSION", "KDE_FULL_SESSION",
                             "GNOME_DESKTOP_SESSION_ID", "QT_QPA_PLATFORMTHEME"}) {
        if (const char* value = std::getenv(name)) {
            hidden_.emplace_back(name, value);
            ::unsetenv(name);
        }
    }
}

ToolkitEnvironment::~ToolkitEnvironment() {
    for (const auto& [name, value] : hidden_) {
        ::setenv(name, value.c_str(), 1);
    }
}

}  // namespace tarnwick::platform
