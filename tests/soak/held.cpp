// SPDX-License-Identifier: MIT
#include "tests/soak/held.h"

#include <dirent.h>
#include <malloc.h>

namespace tarnwick::testing {
namespace {

/// Entries of a folder of this process, the one of the descriptor that reads it among them.
std::size_t entries(const char* path) {
    DIR* const folder = ::opendir(path);
    if (folder == nullptr) {
        return 0;
    }
    std::size_t count = 0;
    while (const dirent* entry = ::readdir(folder)) {
        count += entry->d_name[0] != '.' ? 1 : 0;
    }
    ::closedir(folder);
    return count;
}

}  // namespace

Held Held::now() {
    return {platform::testing::Alive::now(), entries("/proc/self/fd"), entries("/proc/self/task")};
}

std::size_t heapInUse() {
    const struct mallinfo2 heap = ::mallinfo2();
    return heap.uordblks + heap.hblkhd;
}

void PrintTo(const Held& held, std::ostream* out) {
    *out << held.allocated.bytes << " bytes in " << held.allocated.blocks << " blocks, "
         << held.descriptors << " descriptors, " << held.threads << " threads";
}

}  // namespace tarnwick::testing
