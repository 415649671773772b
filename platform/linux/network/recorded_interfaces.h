// Byte counters of the network interfaces in a file tree that is not the running machine's.
#pragma once

#include <optional>
#include <string>

#include "platform/network_interfaces.h"

namespace tarnwick::platform {

/// Reads proc/net/dev and, below sys/class/net, the index and the flags of each interface. Any
/// thread.
class RecordedInterfaces final : public NetworkInterfaces {
 public:
    explicit RecordedInterfaces(std::string root);

    /// An interface without an index or flags is left out. Absent when the list of interfaces
    /// cannot be read or is damaged, or when the tree has no folder of interfaces.
    std::optional<InterfaceTable> interfaceCounters() override;

 private:
    const std::string root_;
};

}  // namespace tarnwick::platform
