// SPDX-License-Identifier: MIT
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
/// takes milliseconds, so it is done after somebody has opened the card, every ten seconds at most,
/// and then new processes and those that have the card come first. Only if none of them opened it,
/// all others are looked at, so rarely that three descriptors a second are not exceeded for long.
/// Where the system does not tell who opens the card, the same happens as if somebody always did.
/// Between searches only the files of known clients are read, which stay open.
///
/// Programs whose descriptors this user may not see are left out. One thread at a time.
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
        int looks = 0;
        bool hasCard = false;
    };
    struct Client {
        std::uint64_t identifier;
        std::int32_t process;
        bool isOnPrimaryNode;
        KeptFile times;
    };

    /// Whether the card may have been opened since the last call.
    bool wasOpened();
    void takeList();
    /// Adds the clients that the process has. About the number of its descriptors.
    std::size_t look(Process& process);
    void add(std::int32_t process, const std::string& descriptor, bool isOnPrimaryNode);

    const std::string root_;
    const std::string folder_;
    const std::vector<std::string> nodes_;
    FileDescriptor watch_;
    bool isWatching_ = false;
    /// With rising identifiers.
    std::vector<Process> processes_;
    std::vector<Client> clients_;
    std::vector<std::int32_t> listed_;
    /// When a search was last possible.
    double searchedAt_ = -std::numeric_limits<double>::infinity();
    double nextSearch_ = -std::numeric_limits<double>::infinity();
    /// Searches to come: a second one finds what a program has opened for another one.
    int searchesDue_ = 1;
    /// Whether it is unknown who opened the card.
    bool isUnexplained_ = false;
    /// Descriptors of older processes that may be looked at.
    double allowance_ = 0;
};

}  // namespace tarnwick::platform
