// SPDX-License-Identifier: MIT
// What the probe has of its system. Each system implements it in a file of its own.
#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <variant>

#include "platform/platform.h"
#include "platform/user_defaults.h"
#include "tools/probe_options.h"

namespace tarnwick::probe {

/// The machine that is measured.
struct Sources {
    /// Has the sources of the samplers and `workers`; the rest may be null. All objects live as
    /// long as the process, because a source that hangs may use them until it ends.
    platform::Platform machine;
    /// Ends the threads of `workers`. One that hangs is left behind after a moment. Call it once,
    /// after the last reading.
    std::function<void()> end;
};

/// The machine that `options` name, or why this system cannot read it.
std::variant<Sources, UsageError> makeSources(const Options& options);

/// The file with the user's settings; empty where there is no place for one.
std::string usersSettingsFile();

/// The values of a settings file.
struct StoredSettings {
    /// Null when the file cannot be used. set() does nothing.
    std::unique_ptr<platform::UserDefaults> values{};
    /// Why it cannot be used.
    std::string trouble{};
};

/// Requires: `file` is a regular file. Blocks as long as the disk does.
StoredSettings readSettings(const std::string& file);

/// After this call, files made or renamed in `folder` survive a power cut, as far as the file
/// system allows.
void makeLasting(const std::filesystem::path& folder);

/// The shortest text that reads as this number again, with a point in every language. Requires:
/// `value` is finite.
std::string numberText(double value);

}  // namespace tarnwick::probe
