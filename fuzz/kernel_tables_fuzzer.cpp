// SPDX-License-Identifier: MIT
// Any text as the kernel's tables of swaps, compressed memory and the cache of ZFS, and as names
// with escapes.
#include <cstdint>
#include <string_view>

#include "fuzz/fuzzer.h"
#include "platform/linux/kernel/zfs_cache.h"
#include "platform/linux/kernel/zram_devices.h"
#include "platform/linux/volumes/file_system_calls.h"
#include "platform/linux/volumes/mountinfo.h"
#include "platform/linux/volumes/volume_label.h"

using tarnwick::fuzz::require;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace tarnwick::platform;
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    const auto cache = parseZfsCache(text, std::uint64_t{8} << 30);
    require(!cache || (text.find("size ") != std::string_view::npos &&
                       text.find("c_min ") != std::string_view::npos));

    static_cast<void>(parseZramMemoryUsed(text));
    for (const std::string_view device : parseZramSwaps(text)) {
        require(device.starts_with("zram") && text.find(device) != std::string_view::npos);
    }

    require(decodedHexEscapes(text).size() <= size);
    require(decodedOctalEscapes(text).size() <= size);
    if (const auto label = labelIn(text)) {
        require(!label->empty() && label->size() <= size);
        require(label->find('\0') == std::string::npos);
    }
    return 0;
}
