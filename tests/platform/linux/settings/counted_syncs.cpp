// SPDX-License-Identifier: MIT
#include "tests/platform/linux/settings/counted_syncs.h"

#include <cerrno>
#include <sys/syscall.h>
#include <unistd.h>

namespace tarnwick::platform::testing {

std::atomic<int> syncs{0};
std::function<int()> beforeSync;

}  // namespace tarnwick::platform::testing

extern "C" int fsync(int descriptor) {
    using namespace tarnwick::platform::testing;
    ++syncs;
    if (const int error = beforeSync ? beforeSync() : 0) {
        errno = error;
        return -1;
    }
    return static_cast<int>(::syscall(SYS_fsync, descriptor));
}
