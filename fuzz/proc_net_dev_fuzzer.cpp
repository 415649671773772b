// SPDX-License-Identifier: MIT
// Any text as the kernel's table of network interfaces, as an interface's index and flags, and as
// its routes.
#include <cstdint>
#include <string_view>
#include <vector>

#include "fuzz/fuzzer.h"
#include "platform/linux/network/counted_links.h"
#include "platform/linux/network/proc_net_dev.h"

using tarnwick::fuzz::require;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    if (const auto devices = tarnwick::platform::parseNetworkDevices(text)) {
        require(text.ends_with('\n'));
        std::size_t lines = 0;
        for (const char character : text) {
            lines += character == '\n' ? 1U : 0U;
        }
        require(lines == devices->size() + 2);
        for (const auto& device : *devices) {
            require(!device.name.empty() && device.name != "." && device.name != "..");
            require(device.name.find('/') == std::string_view::npos);
            require(device.name.data() > text.data() &&
                    device.name.data() + device.name.size() < text.data() + text.size());
        }
        // A table without its last byte has an unfinished line, so it is refused.
        require(!tarnwick::platform::parseNetworkDevices(text.substr(0, size - 1)));
    }
    require(tarnwick::platform::parseInterfaceNumber(text) != 0U);
    require(!tarnwick::platform::parseInterfaceFlags(text) || text.starts_with("0x"));

    using tarnwick::platform::LinkNature;
    const std::vector<LinkNature> links = {
        {.name = "eth0", .index = 2, .below = 2, .hasDevice = true},
        {.name = "ppp0", .index = 3, .below = 3, .isPointToPoint = true, .isPPP = true}};
    const std::vector<bool> counts = tarnwick::platform::linksThatCount(links, text, text);
    require(counts.size() == 2 && counts[0]);
    return 0;
}
