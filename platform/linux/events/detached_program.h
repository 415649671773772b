// Starting another program that has nothing to do with this one any more.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <sys/types.h>
#include <vector>

namespace tarnwick::platform {

/// What a program is started with.
struct DetachedProgram {
    /// The program and its arguments. A name without a folder is looked for in the PATH of
    /// `environment`.
    std::vector<std::string> command{};
    /// Working folder; where it is empty or cannot be entered, this program's own.
    std::string folder{};
    /// "NAME=value" each, complete.
    std::vector<std::string> environment{};
    /// How many files it may have open; this program's own limit when absent.
    std::optional<std::size_t> descriptorLimit{};
};

struct DetachedStart {
    /// 0 when the program did not start.
    pid_t id = 0;
    /// The system's error code when it did not start.
    int error = 0;
};

/// Starts a program in a session of its own, as the child of nobody here: it outlives this one, and
/// its end is no concern of it. The program has the null device as standard input, output and
/// error, none of this program's files, no signal blocked or ignored. Waits until the program runs
/// or cannot be started.
DetachedStart startDetached(const DetachedProgram& program);

/// The environment of another program: `own`, the one that this program was started with, without
/// what tells of that start alone, and with `changes` ("NAME=value") in place of its values.
std::vector<std::string> environmentForOthers(std::span<const std::string> own,
                                              std::span<const std::string> changes);

/// Value of a variable in an environment, or null.
const char* environmentValue(std::span<const std::string> environment, std::string_view name);

/// A copy of the environment as it is now. Nobody may change it meanwhile.
std::vector<std::string> currentEnvironment();

}  // namespace tarnwick::platform
