// SPDX-License-Identifier: MIT
#include "platform/testing/recording_log.h"

namespace tarnwick::platform::testing {

void RecordingLog::write(LogLevel level, std::string_view message) {
    const std::lock_guard guard(lock_);
    lines_.emplace_back(level, message);
}

std::vector<RecordingLog::Line> RecordingLog::lines() const {
    const std::lock_guard guard(lock_);
    return lines_;
}

}  // namespace tarnwick::platform::testing
