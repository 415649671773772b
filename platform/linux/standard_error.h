// Lines on standard error: what a user should know about, and the log where somebody wants it.
#pragma once

#include <string_view>

#include "platform/log.h"

namespace tarnwick::platform {

/// Tells the user one thing in one line, "tarnwick: ..."; line breaks inside become spaces. For
/// what is not worth a window and must not be silent: a damaged store, no tray. Any thread.
void notice(std::string_view message);

/// A log handle that writes to standard error.
class StandardErrorLog final : public LogHandle {
 public:
    void write(LogLevel level, std::string_view message) override;
};

}  // namespace tarnwick::platform
