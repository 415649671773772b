// Any bytes as a datagram of the kernel's answer about network links: whatever it says, the table
// holds links that can be, and a datagram that was cut off is not taken for the end.
#include <cstdint>
#include <cstring>
#include <span>
#include <vector>

#include "fuzz/fuzzer.h"
#include "platform/linux/link_dump.h"

using tarnwick::fuzz::require;
using tarnwick::platform::InterfaceTable;
using tarnwick::platform::LinkDump;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    // A copy of exactly this size, aligned as the buffer of the program is.
    std::vector<std::byte> datagram(size);
    if (size > 0) {
        std::memcpy(datagram.data(), data, size);
    }
    InterfaceTable interfaces;
    const tarnwick::platform::LinkQuestion question{.sequence = 77, .port = 4242};
    const LinkDump state = addLinks(datagram, question, interfaces);
    // A link has at least its message's head, its own and its statistics up to the bytes sent.
    require(interfaces.size() <= size / (16 + 16 + 4 + 32));
    for (const auto& [index, counters] : interfaces) {
        require(index > 0 && index <= 0x7FFFFFFF && !counters.uses32BitCounters);
    }
    if (state == LinkDump::complete || state == LinkDump::more) {
        require(size >= 16);
        InterfaceTable fewer;
        const auto cut = std::span(datagram).first(15);
        require(addLinks(cut, question, fewer) == LinkDump::unusable && fewer.empty());
    }
    return 0;
}
