#include "benchmarks/bare_link_dump.h"

#include <linux/rtnetlink.h>
#include <sys/socket.h>
#include <unistd.h>

namespace tarnwick::benchmarks {

BareLinkDump::BareLinkDump()
    : socket_(::socket(AF_NETLINK, SOCK_RAW | SOCK_CLOEXEC, NETLINK_ROUTE)) {}

BareLinkDump::~BareLinkDump() {
    ::close(socket_);
}

std::size_t BareLinkDump::read() {
    struct {
        nlmsghdr header;
        ifinfomsg link;
    } question{};
    question.header.nlmsg_len = sizeof question;
    question.header.nlmsg_type = RTM_GETLINK;
    question.header.nlmsg_flags = NLM_F_REQUEST | NLM_F_DUMP;
    if (::send(socket_, &question, sizeof question, 0) < 0) {
        return 0;
    }
    std::size_t all = 0;
    while (true) {
        const ssize_t size = ::recv(socket_, buffer_.data(), buffer_.size(), 0);
        if (size <= 0) {
            return 0;
        }
        all += static_cast<std::size_t>(size);
        for (ssize_t offset = 0; offset < size;) {
            const auto* const message = reinterpret_cast<const nlmsghdr*>(buffer_.data() + offset);
            if (message->nlmsg_type == NLMSG_DONE || message->nlmsg_type == NLMSG_ERROR) {
                return all;
            }
            offset += static_cast<ssize_t>(NLMSG_ALIGN(message->nlmsg_len));
        }
    }
}

}  // namespace tarnwick::benchmarks
