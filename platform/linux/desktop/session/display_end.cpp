// SPDX-License-Identifier: MIT
#include "platform/linux/desktop/session/display_end.h"

#include <cstdio>
#include <cstdlib>
#include <unistd.h>
#include <utility>

namespace tarnwick::platform {
namespace {

/// Empty while no DisplayEnd exists.
std::function<void()>& lastAction() {
    // Never destroyed, because exit() may be called at any time.
    static auto& action = *new std::function<void()>();
    return action;
}

void takeOver() {
    if (const auto last = std::exchange(lastAction(), nullptr)) {
        last();
        std::fflush(nullptr);
        ::_exit(EXIT_SUCCESS);
    }
}

}  // namespace

DisplayEnd::DisplayEnd(std::function<void()> last) {
    lastAction() = std::move(last);
    // Registered once. If the registration fails, the toolkit's own exit is unchanged.
    [[maybe_unused]] static const int registered = std::atexit(takeOver);
}

DisplayEnd::~DisplayEnd() {
    lastAction() = nullptr;
}

}  // namespace tarnwick::platform
