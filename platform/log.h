// SPDX-License-Identifier: MIT
// The program's structured log: fixed English messages at two levels, written to a handle.
//
// A logger is bound to a handle when it is made. The default handle is disabled: messages are
// composed and recorded nowhere.
#pragma once

#include <string_view>

namespace tarnwick::platform {

enum class LogLevel {
    /// Progress.
    info,
    /// A failure.
    error,
};

/// Where messages go. Any thread.
class LogHandle {
 public:
    virtual ~LogHandle() = default;

    virtual void write(LogLevel level, std::string_view message) = 0;

    /// Records nothing.
    static LogHandle& disabled();
};

class Logger {
 public:
    explicit Logger(LogHandle& handle = LogHandle::disabled()) : handle_(&handle) {}

    void info(std::string_view message) const { handle_->write(LogLevel::info, message); }
    void error(std::string_view message) const { handle_->write(LogLevel::error, message); }

 private:
    LogHandle* handle_;
};

}  // namespace tarnwick::platform
