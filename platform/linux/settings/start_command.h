// How this program is started again.
#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

namespace tarnwick::platform {

/// File of the running program, to which the kernel's `link` leads; empty when the system does not
/// tell, or when it is gone.
std::filesystem::path runningProgram(const std::filesystem::path& link = "/proc/self/exe");

/// The program and its arguments that start `program`, the running one, again after a login: what
/// is around it where it came in an image (AppImage) or runs in a sandbox (Flatpak, Snap), else the
/// program itself: by a link to it in one of the PATH's folders where it lies in none of them,
/// since an update may put it elsewhere and change the link. `environment` gives a variable's value
/// or null; `root` is "/". Empty when `program` is.
std::vector<std::string> startCommand(const std::filesystem::path& program,
                                      const std::function<const char*(const char*)>& environment,
                                      const std::filesystem::path& root = "/");

}  // namespace tarnwick::platform
