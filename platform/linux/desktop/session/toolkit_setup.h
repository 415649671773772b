// SPDX-License-Identifier: MIT
// What the toolkit is told of the desktop when the program starts.
#pragma once

#include <string>
#include <utility>
#include <vector>

namespace tarnwick::platform {

/// Whether the compositor or the X server that the environment names takes connections. The toolkit
/// ends the program with a crash where none does. True where the environment names a platform of
/// the toolkit, which may need neither.
bool displayAnswers();

/// The constructor hides the variables by which the toolkit chooses a desktop's theme plug-in; the
/// destructor restores them for child processes. Such a plug-in needs up to 70 MB, and the program
/// draws its own look. Where the toolkit cannot start meanwhile, the program ends with status 1 and
/// one line; by itself the toolkit would crash. Requires: made before the application object, while
/// there is only one thread.
class ToolkitEnvironment {
 public:
    ToolkitEnvironment();
    ~ToolkitEnvironment();
    ToolkitEnvironment(const ToolkitEnvironment&) = delete;
    ToolkitEnvironment& operator=(const ToolkitEnvironment&) = delete;

 private:
    std::vector<std::pair<const char*, std::string>> hidden_;
};

/// Sets the desktop's interface font for the application. Reads it from the settings daemon of the
/// X11 display; without a daemon, the toolkit's own font stays, in the common size of desktops. The
/// toolkit could read it only through plug-ins that need more memory than the whole program. Main
/// thread. Requires: the application object exists.
void applyInterfaceFont();

}  // namespace tarnwick::platform
