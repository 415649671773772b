// The C library's calls as this program makes them, the ones inside libraries too: counted, and
// answered by a test where it wants to.
#pragma once

#include <cstddef>
#include <functional>
#include <ifaddrs.h>
#include <sys/socket.h>
#include <sys/types.h>

namespace tarnwick::platform::testing {

/// From one thread at a time.
struct NetworkCalls {
    int socket = 0;
    int sendto = 0;
    int recvmsg = 0;
    /// Of the buffer that `recvmsg` was given last.
    std::size_t bufferSize = 0;
    /// Answers `recvmsg`; absent: the system does.
    std::function<ssize_t(int descriptor, msghdr* message, int flags)> receive;
    /// Answers `getifaddrs`; absent: the system does.
    std::function<int(ifaddrs** list)> addresses;

    /// Those since the last reset().
    static NetworkCalls& current();
    static void reset();
};

/// `recvmsg` of the system itself.
ssize_t systemReceive(int descriptor, msghdr* message, int flags);

}  // namespace tarnwick::platform::testing
