// Any text as the memory figures of the kernel and of a compressed device: the parts of the memory
// never exceed the whole.
#include <cstdint>
#include <limits>
#include <string_view>

#include "fuzz/fuzzer.h"
#include "platform/linux/kernel/proc_meminfo.h"
#include "platform/linux/kernel/zram_devices.h"

using tarnwick::fuzz::require;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    constexpr std::uint64_t pageSize = 4096;
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    const tarnwick::platform::MemInfo info = tarnwick::platform::parseMemInfo(text);
    const std::uint64_t zram = tarnwick::platform::parseZramMemoryUsed(text).value_or(
        std::numeric_limits<std::uint64_t>::max());
    for (const std::uint64_t zramBytes : {std::uint64_t{0}, zram}) {
        const auto statistics = tarnwick::platform::vmStatistics(info, zramBytes, pageSize);
        require(!statistics || (info.memTotal && info.memFree));
        if (statistics) {
            const std::uint64_t pages = *info.memTotal / pageSize + 1;
            require(statistics->free_count <= pages && statistics->wire_count <= pages);
            require(statistics->compressor_page_count <= pages * 2);
            require(statistics->internal_page_count <= pages * 2);
            require(statistics->external_page_count <= pages * 3);
        }
    }
    if (const auto swap = tarnwick::platform::swapUsageOf(info)) {
        require(swap->used <= swap->total && swap->available == swap->total - swap->used);
    }
    return 0;
}
