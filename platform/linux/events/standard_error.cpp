// SPDX-License-Identifier: MIT
#include "platform/linux/events/standard_error.h"

#include <algorithm>
#include <cstdio>
#include <string>

namespace tarnwick::platform {

void notice(std::string_view message) {
    std::string line = "tarnwick: ";
    line += message;
    std::replace(line.begin(), line.end(), '\n', ' ');
    line += '\n';
    std::fwrite(line.data(), 1, line.size(), stderr);
}

}  // namespace tarnwick::platform
