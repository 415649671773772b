#include "platform/linux/network/link_statistics.h"

#include <array>
#include <cerrno>
#include <libmnl/libmnl.h>
#include <linux/rtnetlink.h>
#include <sys/socket.h>
#include <sys/time.h>

#include "platform/linux/network/link_dump.h"

namespace tarnwick::platform {

namespace {

constexpr int attempts = 3;
// The kernel fills the buffer it is given, up to this size; it gives more only for a single link
// that needs it.
constexpr std::size_t usualBufferSize = std::size_t{32} << 10;
constexpr std::size_t largestBufferSize = std::size_t{1} << 20;

}  // namespace

void LinkStatistics::Close::operator()(mnl_socket* socket) const {
    mnl_socket_close(socket);
}

std::optional<InterfaceTable> LinkStatistics::interfaceCounters() {
    bool worthAnother = true;
    for (int attempt = 0; attempt < attempts && worthAnother; ++attempt) {
        if (!socket_ && !open()) {
            return std::nullopt;
        }
        if (auto interfaces = ask() ? answer(worthAnother) : std::nullopt) {
            expected_ = interfaces->size();
            return interfaces;
        }
        // With it goes the rest of an answer that nobody wants any more.
        socket_.reset();
    }
    return std::nullopt;
}

bool LinkStatistics::open() {
    socket_.reset(mnl_socket_open2(NETLINK_ROUTE, SOCK_CLOEXEC));
    // The kernel answers while it is asked; where it does not, nobody is to wait for ever.
    timeval patience{.tv_sec = 1, .tv_usec = 0};
    if (!socket_ || mnl_socket_bind(socket_.get(), 0, MNL_SOCKET_AUTOPID) != 0 ||
        ::setsockopt(mnl_socket_get_fd(socket_.get()), SOL_SOCKET, SO_RCVTIMEO, &patience,
                     sizeof patience) != 0) {
        socket_.reset();
        return false;
    }
    return true;
}

bool LinkStatistics::ask() {
    alignas(nlmsghdr) std::array<char, sizeof(nlmsghdr) + sizeof(ifinfomsg)> space;
    nlmsghdr* const question = mnl_nlmsg_put_header(space.data());
    question->nlmsg_type = RTM_GETLINK;
    question->nlmsg_flags = NLM_F_REQUEST | NLM_F_DUMP;
    question->nlmsg_seq = ++sequence_;
    // All zero: every family, every link.
    mnl_nlmsg_put_extra_header(question, sizeof(ifinfomsg));
    return mnl_socket_sendto(socket_.get(), question, question->nlmsg_len) ==
           static_cast<ssize_t>(question->nlmsg_len);
}

std::optional<std::span<const std::byte>> LinkStatistics::receive() {
    if (!buffer_) {
        bufferSize_ = usualBufferSize;
        // Left as it is: what small answers never reach costs no memory.
        buffer_ = std::make_unique_for_overwrite<std::byte[]>(bufferSize_);
    }
    ssize_t size = 0;
    do {
        size = mnl_socket_recvfrom(socket_.get(), buffer_.get(), bufferSize_);
    } while (size < 0 && errno == EINTR);
    if (size >= 0) {
        return std::span(buffer_.get(), static_cast<std::size_t>(size));
    }
    if (errno == ENOSPC && bufferSize_ < largestBufferSize) {
        bufferSize_ *= 2;
        buffer_ = std::make_unique_for_overwrite<std::byte[]>(bufferSize_);
    }
    return std::nullopt;
}

std::optional<InterfaceTable> LinkStatistics::answer(bool& worthAnother) {
    InterfaceTable interfaces;
    interfaces.reserve(expected_);
    const LinkQuestion question{.sequence = sequence_,
                                .port = mnl_socket_get_portid(socket_.get())};
    while (const auto datagram = receive()) {
        switch (addLinks(*datagram, question, interfaces)) {
            case LinkDump::more:
                break;
            case LinkDump::complete:
                return interfaces;
            case LinkDump::interrupted:
                return std::nullopt;
            case LinkDump::unusable:
                worthAnother = false;
                return std::nullopt;
        }
    }
    return std::nullopt;
}

}  // namespace tarnwick::platform
