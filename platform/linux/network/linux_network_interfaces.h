// Byte counters of the network interfaces of a Linux machine.
#pragma once

#include <cstddef>
#include <cstdint>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "platform/linux/files/kept_file.h"
#include "platform/linux/network/proc_net_dev.h"
#include "platform/network_interfaces.h"

namespace tarnwick::platform {

/// Reads the counters from proc/net/dev, and the index and flags of each interface below
/// sys/class/net. Files that are read at every call stay open, up to a quarter of the descriptors
/// that the program may have. Any thread; calls take turns.
class LinuxNetworkInterfaces final : public NetworkInterfaces {
 public:
    explicit LinuxNetworkInterfaces(const std::string& root = "/");

    /// The counters have 64 bits. An interface without an index or flags, as one that has just
    /// gone, is left out. Absent when the list of interfaces cannot be read or is damaged, or when
    /// there is no folder of interfaces.
    std::optional<InterfaceTable> interfaceCounters() override;

 private:
    struct Link {
        std::string name;
        std::uint32_t index = 0;
        /// Open only where the index is known.
        FileDescriptor flags{};
    };

    /// Makes the links match the list. False if there is no folder of interfaces.
    bool follow(const std::vector<NetworkDevice>& devices);
    void open(Link& link) const;
    /// The flags of the link at this place of the list.
    std::optional<std::uint32_t> currentFlags(std::size_t place);

    const std::string folderPath_;
    std::mutex lock_;
    // All of these are guarded by lock_.
    KeptFile list_;
    FileDescriptor folder_;
    /// In the order of the list.
    std::vector<Link> links_;
    /// Greatest number of links with flags that stay open.
    std::size_t mostKept_ = 0;
};

}  // namespace tarnwick::platform
