// A private network for a test: its own interfaces, seen by nobody else.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

#include "platform/network_interfaces.h"

namespace tarnwick::platform::testing {

/// Moves the calling thread into a new, empty network, which the kernel takes down when the last
/// of its threads has left it. Empty on success, else the reason why that cannot be done here.
std::string enterEmptyNetwork();

/// Makes an interface of a kind ("dummy", "ifb"); false where the kernel has no such kind.
bool addInterface(const std::string& name, const std::string& kind);
/// Makes two interfaces that are the ends of one cable.
void addCable(const std::string& name, const std::string& peer);
void removeInterface(const std::string& name);
void renameInterface(const std::string& name, const std::string& newName);
void setUp(const std::string& name, bool up = true);
std::uint32_t indexOf(const std::string& name);

/// Sends Ethernet frames of this size, heads included, from 14 to 1,514 bytes.
void sendFrames(const std::string& name, std::size_t size, int count = 1);
/// Sends a datagram to this machine over the loopback interface, which must be up.
void sendToItself(std::size_t size);

/// What the kernel's own table of interfaces says: every one in it, counted or not.
InterfaceTable kernelsTable();
/// What `ip -s link` says of an interface; absent when the tool is not there.
std::optional<Counters> toolsCounters(const std::string& name);

}  // namespace tarnwick::platform::testing
