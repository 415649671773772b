// SPDX-License-Identifier: MIT
// What the compositor of the toolkit's connection offers.
#pragma once

#include <string>
#include <vector>

namespace tarnwick::wayland {

/// The names of the compositor's global objects, such as "zwlr_layer_shell_v1", which tell what it
/// can do. Empty if the program does not run under a compositor. Takes one round trip to it. Main
/// thread.
std::vector<std::string> globals();

}  // namespace tarnwick::wayland
