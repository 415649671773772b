// SPDX-License-Identifier: MIT
#include "platform/platform.h"

#include <cstdlib>
#include <optional>

namespace tarnwick::platform {
namespace {

std::optional<Platform>& installed() {
    static std::optional<Platform> value;
    return value;
}

}  // namespace

const Platform& current() {
    if (!installed()) {
        std::abort();
    }
    return *installed();
}

void install(const Platform& platform) {
    installed() = platform;
}

}  // namespace tarnwick::platform
