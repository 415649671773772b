// Start at login by an entry in the user's autostart folder.
#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/login_service.h"

namespace tarnwick::platform {

/// The program and its arguments that start `program`, the running one, again after a login: what
/// is around it where it came in an image (AppImage) or runs in a sandbox (Flatpak, Snap), else the
/// program by the path by which the PATH finds it, since an update may change what a link there
/// leads to, else by its own. `environment` gives a variable's value or null; `root` is "/".
std::vector<std::string> startCommand(const std::filesystem::path& program,
                                      const std::function<const char*(const char*)>& environment,
                                      const std::filesystem::path& root = "/");

/// Desktops start at login what the entries in the autostart folders name: the user's in
/// $XDG_CONFIG_HOME, then the system's in $XDG_CONFIG_DIRS. Of several entries of one name the
/// first one decides. Nothing is kept between two calls. Main thread.
class AutostartLoginService final : public LoginService {
 public:
    using Environment = std::function<const char*(const char*)>;

    /// `command` starts this program: a path, or a name that is looked for, and its arguments. It
    /// is never empty. `environment` gives a variable's value or null at each call.
    AutostartLoginService(std::vector<std::string> command, Environment environment);

    /// `enabled` when there is an entry that is not switched off and is meant for the session's
    /// desktop, and its program can be executed. `notFound` when only the program is missing.
    LoginServiceStatus status() override;
    /// Writes the user's entry, in place of whatever file has its name.
    std::optional<LoginServiceError> registerService() override;
    /// Removes the user's entry; where the system has one, the user's becomes one that switches it
    /// off.
    std::optional<LoginServiceError> unregisterService() override;

 private:
    std::string value(const char* name) const;
    /// The program runs in a Flatpak, which shows only some of the user's folders.
    bool isSandboxed() const;
    /// The user's entry; empty when the user has no folder for it.
    std::filesystem::path ownFile() const;
    /// Text of the first of the system's entries; absent when there is none.
    std::optional<std::string> systemText() const;
    std::optional<LoginServiceError> write(std::string_view text) const;

    const std::vector<std::string> command_;
    const Environment environment_;
};

}  // namespace tarnwick::platform
