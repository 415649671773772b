// Byte counters of the network interfaces of a Linux machine.
#pragma once

#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "platform/network_interfaces.h"

namespace tarnwick::platform {

/// The first of several sources that answers. Any thread; calls take turns.
class LinuxNetworkInterfaces final : public NetworkInterfaces {
 public:
    using Sources = std::vector<std::unique_ptr<NetworkInterfaces>>;

    /// For the machine's own root the 64-bit link statistics, else the 32-bit ones of the
    /// addresses; for any other root only what its files say.
    explicit LinuxNetworkInterfaces(const std::string& root = "/");
    explicit LinuxNetworkInterfaces(Sources sources);

    std::optional<InterfaceTable> interfaceCounters() override;

 private:
    std::mutex lock_;
    /// Guarded by lock_.
    Sources sources_;
};

}  // namespace tarnwick::platform
