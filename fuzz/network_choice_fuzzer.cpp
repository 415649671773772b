// SPDX-License-Identifier: MIT
// Any links, with any text as the routes and the sessions over Ethernet: which of them count.
//
// Each two bytes of an input are one link, up to a zero; the routes follow, and the sessions behind
// the next zero.
#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "fuzz/fuzzer.h"
#include "platform/linux/network/counted_links.h"

using tarnwick::fuzz::require;
using tarnwick::platform::LinkNature;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::string_view text(reinterpret_cast<const char*>(data), size);
    std::vector<LinkNature> links;
    while (text.size() >= 2 && text.front() != '\0') {
        const auto kind = static_cast<unsigned char>(text[0]);
        const std::uint32_t numbers = static_cast<unsigned char>(text[1]);
        links.push_back({.name = "ppp" + std::to_string(links.size()),
                         .index = numbers & 0xFU,
                         .below = numbers >> 4U,
                         .hasDevice = (kind & 1) != 0,
                         .isPartOfDevice = (kind & 2) != 0,
                         .isPointToPoint = (kind & 4) != 0,
                         .isPPP = (kind & 8) != 0});
        text.remove_prefix(2);
    }
    text.remove_prefix(std::min<std::size_t>(text.size(), 1));
    const std::size_t end = std::min(text.find('\0'), text.size());
    const std::string_view routes = text.substr(0, end);
    const std::string_view sessions = text.substr(end);

    const std::vector<bool> counts = tarnwick::platform::linksThatCount(links, routes, sessions);
    require(counts.size() == links.size());
    // Some link counts wherever there is one.
    require(links.empty() || std::ranges::count(counts, true) > 0);
    if (!tarnwick::platform::needsRoutes(links)) {
        require(counts == tarnwick::platform::linksThatCount(links, "", ""));
    }
    return 0;
}
