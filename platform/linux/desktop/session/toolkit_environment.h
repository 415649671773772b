// Hides parts of the environment from the toolkit while it starts.
#pragma once

#include <string>
#include <utility>
#include <vector>

namespace tarnwick::platform {

/// The constructor hides the variables by which the toolkit chooses a desktop's theme plug-in; the
/// destructor restores them for child processes. Such a plug-in needs up to 70 MB, and the program
/// draws its own look. Requires: made before the application object, while there is only one
/// thread.
class ToolkitEnvironment {
 public:
    ToolkitEnvironment();
    ~ToolkitEnvironment();
    ToolkitEnvironment(const ToolkitEnvironment&) = delete;
    ToolkitEnvironment& operator=(const ToolkitEnvironment&) = delete;

 private:
    std::vector<std::pair<const char*, std::string>> hidden_;
};

}  // namespace tarnwick::platform
