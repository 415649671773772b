// SPDX-License-Identifier: MIT
// What the program is asked for when it is started.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace tarnwick::platform {

/// What the running program can be asked for by another start, by a launcher or by a key.
enum class Request { openPanel, togglePanel, showSettings };

struct CommandLine {
    /// The last request; absent for a plain start.
    std::optional<Request> request;
    /// The text to print instead of starting.
    std::optional<std::string> text;
};

/// Requires: `arguments` is the command line of main(), including the program's name. Options that
/// are unknown are passed over: those of the toolkit, and what a desktop may add.
CommandLine parseCommandLine(int count, char* const* arguments, std::string_view version);

}  // namespace tarnwick::platform
