// SPDX-License-Identifier: MIT
#include "platform/linux/network/counted_links.h"

#include <algorithm>
#include <charconv>
#include <system_error>

namespace tarnwick::platform {

namespace {

constexpr std::uint32_t kRouteHasGateway = 2;

// Removes the text before the next tab, and that tab, from the front and returns the text.
std::string_view takeField(std::string_view& line) {
    const std::string_view field = line.substr(0, line.find('\t'));
    line.remove_prefix(std::min(field.size() + 1, line.size()));
    return field;
}

// A line such as "eth0\t00000000\t0102A8C0\t0003\t0\t0\t100\t00000000\t0\t0\t0".
bool leadsToGateway(std::string_view route, const std::vector<LinkNature>& links) {
    const std::string_view name = takeField(route);
    takeField(route);
    takeField(route);
    const std::string_view text = takeField(route);
    std::uint32_t flags = 0;
    const auto [rest, error] = std::from_chars(text.data(), text.data() + text.size(), flags, 16);
    return error == std::errc() && (flags & kRouteHasGateway) != 0 &&
           std::ranges::any_of(links, [name](const LinkNature& link) {
               return link.name == name && (link.hasDevice || !link.isPointToPoint);
           });
}

bool anyGateway(std::string_view routes, const std::vector<LinkNature>& links) {
    std::size_t end = 0;
    while ((end = routes.find('\n')) != std::string_view::npos) {
        if (leadsToGateway(routes.substr(0, end), links)) {
            return true;
        }
        routes.remove_prefix(end + 1);
    }
    return false;
}

}  // namespace

std::vector<bool> linksThatCount(const std::vector<LinkNature>& links, std::string_view routes,
                                 std::string_view pppoe) {
    // The list of sessions has a line of headings.
    const bool isSerial =
        std::ranges::count(pppoe, '\n') <= 1 && needsRoutes(links) && !anyGateway(routes, links);
    std::vector<bool> counts;
    for (const LinkNature& link : links) {
        const bool isBuiltOnAnother =
            link.below != link.index &&
            std::ranges::find(links, link.below, &LinkNature::index) != links.end();
        const bool isHardware = link.hasDevice && !link.isPartOfDevice && !isBuiltOnAnother;
        counts.push_back(isHardware || (isSerial && link.isPPP));
    }
    if (std::ranges::find(counts, true) == counts.end()) {
        counts.assign(links.size(), true);
    }
    return counts;
}

bool needsRoutes(const std::vector<LinkNature>& links) {
    return std::ranges::any_of(links, &LinkNature::isPPP);
}

}  // namespace tarnwick::platform
