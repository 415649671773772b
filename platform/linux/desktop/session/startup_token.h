// What lets a window that another program opens come to the front.
#pragma once

#include <string>
#include <vector>

namespace tarnwick::platform {

/// Variables ("NAME=value") for a program that the user has just asked for: on X11 the time of
/// that press, by which a window manager tells a wanted window from one that pushes itself in
/// between. Empty where there is nothing to hand on.
std::vector<std::string> startupToken();

}  // namespace tarnwick::platform
