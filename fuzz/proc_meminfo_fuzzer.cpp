// SPDX-License-Identifier: MIT
// Any text as the memory figures of the kernel, of the cache of ZFS and of compressed devices: the
// parts of the memory never exceed the whole.
#include <cstdint>
#include <limits>
#include <string_view>

#include "fuzz/fuzzer.h"
#include "platform/linux/kernel/page_counts.h"
#include "platform/linux/kernel/proc_meminfo.h"
#include "platform/linux/kernel/zfs_cache.h"
#include "platform/linux/kernel/zram_devices.h"

using tarnwick::fuzz::require;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    constexpr std::uint64_t pageSize = 4096;
    constexpr std::uint64_t all = std::numeric_limits<std::uint64_t>::max();
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    const tarnwick::platform::MemInfo info = tarnwick::platform::parseMemInfo(text);
    const std::uint64_t zram = tarnwick::platform::parseZramMemoryUsed(text).value_or(all);
    const std::uint64_t cache = tarnwick::platform::parseZfsCache(text, all).value_or(size);
    for (const tarnwick::platform::UnnamedMemory unnamed :
         {tarnwick::platform::UnnamedMemory{}, {.zram = zram, .zfsCache = cache}}) {
        const auto counts = tarnwick::platform::vmStatistics(info, unnamed, pageSize);
        require(!counts || (info.memTotal && info.memFree));
        require(!counts || std::uint64_t{counts->free_count} + counts->wire_count +
                                   counts->compressor_page_count + counts->internal_page_count +
                                   counts->external_page_count <=
                               *info.memTotal / pageSize);
    }
    for (const std::string_view name : tarnwick::platform::parseZramSwaps(text)) {
        require(name.starts_with("zram") && name.find('/') == std::string_view::npos);
    }
    if (const auto swap = tarnwick::platform::swapUsageOf(info)) {
        require(swap->used <= swap->total && swap->available == swap->total - swap->used);
    }
    return 0;
}
