#include "platform/linux/standard_error.h"

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

void StandardErrorLog::write(LogLevel level, std::string_view message) {
    notice((level == LogLevel::error ? "error: " : "info: ") + std::string(message));
}

}  // namespace tarnwick::platform
