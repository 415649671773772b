// The programs that have a graphics card open.
#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include "platform/linux/files/kept_file.h"
#include "platform/linux/graphics/graphics_files.h"

namespace tarnwick::platform {

/// Follows the clients of one card in `/proc`. Looking through the descriptors of all processes
/// costs milliseconds, so it is done rarely: a process without the card is looked at again after
/// pauses that grow to ten minutes, and over time at most twenty names are read a second. Between
/// searches only the files of known clients are read, which stay open.
///
/// Programs whose descriptors this user may not see are left out, and so is any client that opened
/// the card after the last search. One thread at a time.
class DrmClients {
 public:
    /// `nodes` are the card's files in `/dev/dri`, such as "card0" and "renderD128".
    DrmClients(const std::string& root, std::vector<std::string> nodes);

    /// Looks for new clients if it is time to. `now` is in seconds.
    void search(double now);

    /// The times of all known clients, each client once. A client that has gone is forgotten.
    std::vector<ClientTimes> read();

    /// Whether a known client has the node open through which screens are driven.
    bool hasScreenOwner() const;

 private:
    struct Process {
        std::int32_t identifier;
        /// Seconds; when to look at it again.
        double due;
        double pause;
    };
    struct Client {
        std::uint64_t identifier;
        std::int32_t process;
        bool isOnPrimaryNode;
        KeptFile times;
    };

    /// Adds the clients that the process has; the number of its descriptors.
    std::size_t look(std::int32_t process);
    void add(std::int32_t process, const std::string& descriptor, bool isOnPrimaryNode);

    const std::string folder_;
    const std::vector<std::string> nodes_;
    /// With rising identifiers.
    std::vector<Process> processes_;
    std::vector<Client> clients_;
    std::vector<std::int32_t> listed_;
    double searchedAt_ = -std::numeric_limits<double>::infinity();
    double nextSearch_ = -std::numeric_limits<double>::infinity();
};

}  // namespace tarnwick::platform
