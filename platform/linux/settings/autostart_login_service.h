// SPDX-License-Identifier: MIT
// Start at login by an entry in the user's autostart folder.
#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "platform/login_service.h"

namespace tarnwick::platform {

/// What starts `program`, the running one, again after a login: the image (AppImage) that it lies
/// in; else the path under which the PATH finds it, because an update may change the target of a
/// link there; else its own path. `environment` returns a variable's value or null.
std::filesystem::path startedAtLogin(const std::filesystem::path& program,
                                     const std::function<const char*(const char*)>& environment);

/// At login desktops start the programs named by entries in the autostart folders: the user's in
/// $XDG_CONFIG_HOME, then the system's in $XDG_CONFIG_DIRS. If several entries have one name, the
/// first decides. Keeps nothing between two calls. Any thread, one at a time; waits for the disk.
class AutostartLoginService final : public LoginService {
 public:
    using Environment = std::function<const char*(const char*)>;

    /// `program` is the running program; startedAtLogin() tells what starts at login.
    /// `environment` returns a variable's value or null at each call.
    AutostartLoginService(std::filesystem::path program, Environment environment);

    /// `enabled` when there is an entry that is not switched off and is meant for the session's
    /// desktop, and its program can be executed.
    /// `notFound` when only the program is missing.
    LoginServiceStatus status() override;
    /// Writes the user's entry and replaces any file with its name.
    std::optional<LoginServiceError> registerService() override;
    /// Removes the user's entry. If the system has an entry that is not hidden, the user's entry is
    /// replaced by one that switches it off.
    std::optional<LoginServiceError> unregisterService() override;

 private:
    std::string value(const char* name) const;
    /// The user's entry; empty when the user has no folder for it.
    std::filesystem::path ownFile() const;
    /// Text of the first of the system's entries; absent when there is none.
    std::optional<std::string> systemText() const;
    std::optional<LoginServiceError> write(std::string_view text) const;

    const std::filesystem::path program_;
    const Environment environment_;
};

}  // namespace tarnwick::platform
