#include "platform/linux/desktop/session/display_end.h"

#include <cstdio>
#include <cstdlib>
#include <unistd.h>
#include <utility>

namespace tarnwick::platform {
namespace {

/// Empty while no end is to be taken over.
std::function<void()>& lastAction() {
    // Never destroyed: exit() may come from anywhere.
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
    // Once is enough; without it the end is the toolkit's own.
    [[maybe_unused]] static const int registered = std::atexit(takeOver);
}

DisplayEnd::~DisplayEnd() {
    lastAction() = nullptr;
}

}  // namespace tarnwick::platform
