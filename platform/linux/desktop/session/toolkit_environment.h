// What the toolkit should not see of the environment while it starts.
#pragma once

#include <string>
#include <utility>
#include <vector>

namespace tarnwick::platform {

/// Hides the variables by which the toolkit picks a desktop's theme plug-in, and puts them back
/// when destroyed, for child processes. Such a plug-in costs up to 70 MB; the program draws its own
/// look. To be made before the application object, while there is one thread.
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
