// SPDX-License-Identifier: MIT
// Which links of the network count, so that each byte on the wire counts once.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tarnwick::platform {

/// What /sys/class/net tells of a link that is up and not loopback.
struct LinkNature {
    std::string name;
    std::uint32_t index = 0;
    /// Index of the link below it; its own where there is none. A link below may lie in another
    /// namespace, where the index means nothing here.
    std::uint32_t below = 0;
    /// Whether it belongs to a device: hardware, or what stands for it in a virtual machine.
    bool hasDevice = false;
    /// Whether a link with a device has taken it in and counts its bytes.
    bool isPartOfDevice = false;
    bool isPointToPoint = false;
    /// Whether it is a link of the point-to-point protocol without a device: over a serial line, or
    /// a tunnel through another link.
    bool isPPP = false;
};

/// Whether each of these links counts. Those count that end at hardware: they have a device, are
/// not part of another one's and not built on another link. A modem's serial line has no device to
/// show and counts, too. Where no link counts so, as inside a container, every one does.
///
/// `routes` is /proc/net/route and `pppoe` is /proc/net/pppoe; both matter only where there is a
/// link of PPP. It is taken for a serial line unless it may run over another link: where there is a
/// session over Ethernet, or a gateway that a link leads to which is no tunnel itself.
std::vector<bool> linksThatCount(const std::vector<LinkNature>& links, std::string_view routes,
                                 std::string_view pppoe);

/// Whether one of these links may be a serial line's, so that routes and sessions matter.
bool needsRoutes(const std::vector<LinkNature>& links);

}  // namespace tarnwick::platform
