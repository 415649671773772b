// The kernel's answer to the question for all network links, as rtnetlink gives it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "platform/network_interfaces.h"

namespace tarnwick::platform {

/// What a datagram left of an answer.
enum class LinkDump {
    /// Further datagrams follow.
    more,
    /// It was the last one; the table is whole.
    complete,
    /// Links came or went meanwhile, so that the table may lack some. Asking again helps.
    interrupted,
    /// An error, an answer to another question, damaged, or without 64-bit counters.
    unusable,
};

/// Which answer is expected.
struct LinkQuestion {
    std::uint32_t sequence = 0;
    /// Address of the socket that asked.
    std::uint32_t port = 0;
};

/// Adds the links of one datagram that are counted. Unless it says more or complete the table is
/// of no use.
LinkDump addLinks(std::span<const std::byte> datagram, const LinkQuestion& question,
                  InterfaceTable& interfaces);

}  // namespace tarnwick::platform
