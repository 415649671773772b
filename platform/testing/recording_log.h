// SPDX-License-Identifier: MIT
// A log handle that a test reads back.
#pragma once

#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "platform/log.h"

namespace tarnwick::platform::testing {

class RecordingLog final : public LogHandle {
 public:
    using Line = std::pair<LogLevel, std::string>;

    void write(LogLevel level, std::string_view message) override;
    /// Everything written so far, in order.
    std::vector<Line> lines() const;

 private:
    mutable std::mutex lock_;
    std::vector<Line> lines_;
};

}  // namespace tarnwick::platform::testing
