// SPDX-License-Identifier: MIT
#include "platform/linux/events/process_limits.h"

#include <algorithm>
#include <csignal>
#include <malloc.h>
#include <sys/resource.h>

namespace tarnwick::platform {

void giveBackFreedMemory() {
    ::malloc_trim(0);
}

void shareOneHeap() {
    ::mallopt(M_ARENA_MAX, 1);
}

std::optional<std::size_t> raiseDescriptorLimit() {
    rlimit limit{};
    if (::getrlimit(RLIMIT_NOFILE, &limit) != 0 || limit.rlim_cur >= kWantedDescriptors) {
        return std::nullopt;
    }
    const rlim_t before = limit.rlim_cur;
    limit.rlim_cur = std::min<rlim_t>(limit.rlim_max, kWantedDescriptors);
    // The program also works with fewer if the system refuses.
    if (::setrlimit(RLIMIT_NOFILE, &limit) != 0) {
        return std::nullopt;
    }
    return before;
}

void surviveFileSizeLimit() {
    // A started program keeps a signal that is ignored, but not a handler.
    std::signal(SIGXFSZ, [](int) {});
}

}  // namespace tarnwick::platform
