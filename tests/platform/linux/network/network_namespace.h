// SPDX-License-Identifier: MIT
// A private network for a test, with interfaces of its own that no other process sees.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "platform/network_interfaces.h"

namespace tarnwick::platform::testing {

/// Moves the program into a new, empty network; then its /sys shows that network, too. The kernel
/// removes the network when the program ends. Returns an empty text on success, otherwise the
/// reason why this is not possible here. Requires: the program has no second thread yet.
std::string enterEmptyNetwork();

/// Runs commands of the tool `ip`, one a line, such as "link set left up".
void ip(const std::string& commands);
/// The commands that make two interfaces, the ends of one cable, and set them up.
std::string cable(const std::string& name, const std::string& peer);
std::uint32_t indexOf(const std::string& name);

/// Sends Ethernet frames of this size, heads included, from 14 to 1,514 bytes.
void sendFrames(const std::string& name, std::size_t size, int count = 1);
/// Sends a datagram to this machine over the loopback interface, which must be up.
void sendToItself(std::size_t size);

/// The counters of every interface that is up, including loopback, according to `ip -s link`, which
/// asks the kernel in another way.
InterfaceTable toolsTable();

}  // namespace tarnwick::platform::testing
