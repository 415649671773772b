// A private network for a test: its own interfaces, seen by nobody else.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "platform/network_interfaces.h"

namespace tarnwick::platform::testing {

/// Moves the program, which must not have a second thread yet, into a new, empty network, which is
/// then also what its /sys shows; the kernel takes it down when the program ends. Empty on success,
/// else the reason why that cannot be done here.
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

/// What `ip -s link` has learned from the kernel in its own way: every interface that is up, the
/// loopback interface among them.
InterfaceTable toolsTable();

}  // namespace tarnwick::platform::testing
