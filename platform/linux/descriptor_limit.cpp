#include "platform/linux/descriptor_limit.h"

#include <algorithm>
#include <sys/resource.h>

namespace tarnwick::platform {

void raiseDescriptorLimit() {
    rlimit limit{};
    if (::getrlimit(RLIMIT_NOFILE, &limit) != 0 || limit.rlim_cur >= kWantedDescriptors) {
        return;
    }
    limit.rlim_cur = std::min<rlim_t>(limit.rlim_max, kWantedDescriptors);
    // Fewer will do where the system says no.
    ::setrlimit(RLIMIT_NOFILE, &limit);
}

}  // namespace tarnwick::platform
