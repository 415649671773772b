// SPDX-License-Identifier: MIT
// Why the last call of the system failed.
#pragma once

#include <cerrno>
#include <system_error>

namespace tarnwick::platform {

/// errno as an error code. Requires: the call before it has failed.
inline std::error_code lastError() {
    return {errno, std::generic_category()};
}

}  // namespace tarnwick::platform
