// SPDX-License-Identifier: MIT
// Byte counters of the network interfaces of a Linux machine.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "platform/linux/files/kept_file.h"
#include "platform/linux/kernel/clocks.h"
#include "platform/linux/network/counted_links.h"
#include "platform/linux/network/proc_net_dev.h"
#include "platform/log.h"
#include "platform/network_interfaces.h"

namespace tarnwick::platform {

/// Reads the counters from proc/net/dev, and the index and flags of each interface below
/// sys/class/net. Files that are read at every call stay open, up to a quarter of the descriptors
/// that the program may have. Which interfaces count is looked up when one comes or goes, when its
/// flags change, and every half a minute. Any thread; calls take turns.
class LinuxNetworkInterfaces final : public NetworkInterfaces {
 public:
    /// `sinceBoot` returns the time in seconds.
    explicit LinuxNetworkInterfaces(const std::string& root = "/",
                                    std::function<double()> sinceBoot = sinceBootSeconds,
                                    Logger logger = Logger());

    /// The interfaces whose bytes went over the wire, each byte once; see linksThatCount(). The
    /// counters have 64 bits. An interface without an index or flags, as one that has just gone, is
    /// left out, and so is one whose counters cannot be true, which is logged once. Absent when the
    /// list of interfaces cannot be read or is damaged, or when there is no folder of interfaces.
    std::optional<InterfaceTable> interfaceCounters() override;
    /// False once a reading has found that no other program serves the list or the folder.
    bool mayHang() const override { return mayHang_; }

 private:
    struct Link {
        std::string name;
        std::uint32_t index = 0;
        /// Open only where the index is known.
        FileDescriptor flags{};
        /// As they were last read; absent when they could not be, or for another interface.
        std::optional<std::uint32_t> lastFlags{};
        bool counts = false;
        bool isReported = false;
    };

    /// Makes the links match the list. False if there is no folder of interfaces.
    bool follow(const std::vector<NetworkDevice>& devices);
    void open(Link& link) const;
    /// The flags of the link at this place of the list.
    std::optional<std::uint32_t> currentFlags(std::size_t place);
    /// Whether the counters can be those of a link, beside links that have moved `others` bytes.
    bool areTrue(const NetworkDevice& device, std::uint64_t others, Link& link) const;
    /// Reads the flags of all links. False if nothing has changed.
    bool readFlags();
    /// Requires: the link is up.
    LinkNature natureOf(const Link& link) const;
    /// Decides which links count.
    void choose();

    const std::string root_;
    const std::function<double()> sinceBoot_;
    const Logger logger_;
    std::mutex lock_;
    // All of these are guarded by lock_.
    KeptFile list_;
    FileDescriptor folder_;
    bool isFolderServed_ = false;
    /// In the order of the list.
    std::vector<Link> links_;
    /// Greatest number of links with flags that stay open.
    std::size_t mostKept_ = 0;
    double chosenAt_ = 0;

    std::atomic<bool> mayHang_ = true;
};

}  // namespace tarnwick::platform
