// rtnetlink datagrams as a test writes them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <initializer_list>
#include <linux/if_link.h>
#include <linux/rtnetlink.h>
#include <sys/socket.h>
#include <vector>

namespace tarnwick::platform::testing {

using Datagram = std::vector<std::byte>;

/// The question that the messages answer.
inline constexpr std::uint32_t kSequence = 77;
inline constexpr std::uint32_t kPort = 4242;

template <class T>
void append(Datagram& bytes, const T& value) {
    const auto* const first = reinterpret_cast<const std::byte*>(&value);
    bytes.insert(bytes.end(), first, first + sizeof value);
}

inline void pad(Datagram& bytes) {
    bytes.resize((bytes.size() + 3) / 4 * 4);
}

inline nlmsghdr& headerOf(Datagram& message) {
    return *reinterpret_cast<nlmsghdr*>(message.data());
}

inline Datagram message(std::uint16_t type, const Datagram& payload,
                        std::uint16_t flags = NLM_F_MULTI) {
    Datagram bytes;
    append(bytes,
           nlmsghdr{.nlmsg_len = static_cast<std::uint32_t>(sizeof(nlmsghdr) + payload.size()),
                    .nlmsg_type = type,
                    .nlmsg_flags = flags,
                    .nlmsg_seq = kSequence,
                    .nlmsg_pid = kPort});
    bytes.insert(bytes.end(), payload.begin(), payload.end());
    pad(bytes);
    return bytes;
}

inline Datagram attribute(std::uint16_t type, const Datagram& payload) {
    Datagram bytes;
    append(bytes, nlattr{.nla_len = static_cast<std::uint16_t>(sizeof(nlattr) + payload.size()),
                         .nla_type = type});
    bytes.insert(bytes.end(), payload.begin(), payload.end());
    pad(bytes);
    return bytes;
}

inline Datagram statistics64(std::uint64_t received, std::uint64_t sent) {
    rtnl_link_stats64 figures;
    std::memset(&figures, 0xEE, sizeof figures);
    figures.rx_bytes = received;
    figures.tx_bytes = sent;
    Datagram bytes;
    append(bytes, figures);
    return bytes;
}

inline Datagram joined(std::initializer_list<Datagram> parts) {
    Datagram all;
    for (const Datagram& part : parts) {
        all.insert(all.end(), part.begin(), part.end());
    }
    return all;
}

struct Link {
    int index = 1;
    std::uint64_t received = 0;
    std::uint64_t sent = 0;
    /// Up, broadcast, running, multicast.
    unsigned flags = 0x1043;
};

inline Datagram linkPayload(const Link& link, const Datagram& attributes) {
    Datagram payload;
    append(payload, ifinfomsg{.ifi_family = AF_UNSPEC,
                              .__ifi_pad = 0,
                              .ifi_type = 1,
                              .ifi_index = link.index,
                              .ifi_flags = link.flags,
                              .ifi_change = 0});
    payload.insert(payload.end(), attributes.begin(), attributes.end());
    return payload;
}

/// As the kernel describes a link: a name with padding, the 32-bit and the 64-bit statistics.
inline Datagram linkMessage(const Link& link) {
    Datagram name(6, std::byte{'x'});
    rtnl_link_stats narrow;
    std::memset(&narrow, 0xDD, sizeof narrow);
    Datagram narrowBytes;
    append(narrowBytes, narrow);
    return message(
        RTM_NEWLINK,
        linkPayload(link,
                    joined({attribute(IFLA_IFNAME, name), attribute(IFLA_STATS, narrowBytes),
                            attribute(IFLA_STATS64, statistics64(link.received, link.sent))})));
}

inline Datagram doneMessage(std::int32_t code = 0) {
    Datagram payload;
    append(payload, code);
    return message(NLMSG_DONE, payload);
}

}  // namespace tarnwick::platform::testing
