#include "tests/platform/linux/settings/counted_syncs.h"

#include <sys/syscall.h>
#include <unistd.h>

namespace tarnwick::platform::testing {

std::atomic<int> syncs{0};

}  // namespace tarnwick::platform::testing

extern "C" int fdatasync(int descriptor) {
    ++tarnwick::platform::testing::syncs;
    return static_cast<int>(::syscall(SYS_fdatasync, descriptor));
}
