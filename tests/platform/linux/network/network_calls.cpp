#include "tests/platform/linux/network/network_calls.h"

#include <dlfcn.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace tarnwick::platform::testing {

NetworkCalls& NetworkCalls::current() {
    static NetworkCalls calls;
    return calls;
}

void NetworkCalls::reset() {
    current() = NetworkCalls{};
}

ssize_t systemReceive(int descriptor, msghdr* message, int flags) {
    return ::syscall(SYS_recvmsg, descriptor, message, flags);
}

}  // namespace tarnwick::platform::testing

using tarnwick::platform::testing::NetworkCalls;

extern "C" {

int socket(int domain, int type, int protocol) noexcept {
    ++NetworkCalls::current().socket;
    return static_cast<int>(::syscall(SYS_socket, domain, type, protocol));
}

ssize_t sendto(int descriptor, const void* bytes, size_t size, int flags, const sockaddr* address,
               socklen_t length) {
    ++NetworkCalls::current().sendto;
    return ::syscall(SYS_sendto, descriptor, bytes, size, flags, address, length);
}

ssize_t recvmsg(int descriptor, msghdr* message, int flags) {
    NetworkCalls& calls = NetworkCalls::current();
    ++calls.recvmsg;
    calls.bufferSize = message->msg_iovlen > 0 ? message->msg_iov[0].iov_len : 0;
    return calls.receive ? calls.receive(descriptor, message, flags)
                         : tarnwick::platform::testing::systemReceive(descriptor, message, flags);
}

int getifaddrs(ifaddrs** list) noexcept {
    static const auto system =
        reinterpret_cast<int (*)(ifaddrs**)>(::dlsym(RTLD_NEXT, "getifaddrs"));
    const NetworkCalls& calls = NetworkCalls::current();
    return calls.addresses ? calls.addresses(list) : system(list);
}
}
