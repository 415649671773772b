#include "platform/linux/network/link_dump.h"

#include <cstddef>
#include <cstring>
#include <libmnl/libmnl.h>
#include <linux/if_link.h>
#include <linux/rtnetlink.h>
#include <optional>

namespace tarnwick::platform {

namespace {

// The 64-bit statistics of a link. Attributes are aligned to four bytes only, and later kernels
// have longer statistics.
std::optional<Counters> countersIn(const nlattr& statistics) {
    rtnl_link_stats64 figures{};
    constexpr std::size_t needed = offsetof(rtnl_link_stats64, tx_bytes) + sizeof figures.tx_bytes;
    if (mnl_attr_get_payload_len(&statistics) < needed) {
        return std::nullopt;
    }
    std::memcpy(&figures, mnl_attr_get_payload(&statistics), needed);
    return Counters{
        .received = figures.rx_bytes, .sent = figures.tx_bytes, .uses32BitCounters = false};
}

std::optional<Counters> countersOf(const nlmsghdr& link) {
    const auto* attribute =
        static_cast<const nlattr*>(mnl_nlmsg_get_payload_offset(&link, sizeof(ifinfomsg)));
    // Not the library's idea of the end, which counts padding that may not be there.
    const auto* const end = reinterpret_cast<const char*>(&link) + link.nlmsg_len;
    while (
        mnl_attr_ok(attribute, static_cast<int>(end - reinterpret_cast<const char*>(attribute)))) {
        if (mnl_attr_get_type(attribute) == IFLA_STATS64) {
            return countersIn(*attribute);
        }
        attribute = mnl_attr_next(attribute);
    }
    return std::nullopt;
}

// Whether the message is a link as it should be; one that is counted is added.
bool addLink(const nlmsghdr& message, InterfaceTable& interfaces) {
    if (message.nlmsg_type != RTM_NEWLINK ||
        mnl_nlmsg_get_payload_len(&message) < sizeof(ifinfomsg)) {
        return false;
    }
    const auto* const link = static_cast<const ifinfomsg*>(mnl_nlmsg_get_payload(&message));
    if (link->ifi_index <= 0) {
        return false;
    }
    if (isCounted(link->ifi_flags)) {
        const std::optional<Counters> counters = countersOf(message);
        if (!counters) {
            return false;
        }
        interfaces[static_cast<std::uint32_t>(link->ifi_index)] = *counters;
    }
    return true;
}

// Whether a whole message stands at the front of the bytes. The library's own check takes a length
// beyond 2^31 for a negative one.
bool isWhole(const nlmsghdr* message, int bytes) {
    return mnl_nlmsg_ok(message, bytes) && message->nlmsg_len <= static_cast<unsigned>(bytes);
}

// The end of an answer carries the kernel's error code where it has one.
bool endedWell(const nlmsghdr& done) {
    std::int32_t code = 0;
    if (mnl_nlmsg_get_payload_len(&done) >= sizeof code) {
        std::memcpy(&code, mnl_nlmsg_get_payload(&done), sizeof code);
    }
    return code == 0;
}

}  // namespace

LinkDump addLinks(std::span<const std::byte> datagram, const LinkQuestion& question,
                  InterfaceTable& interfaces) {
    // Messages follow each other at multiples of four bytes, and so do those in a buffer of ours.
    const auto* message = reinterpret_cast<const nlmsghdr*>(datagram.data());
    int left = static_cast<int>(datagram.size());
    while (isWhole(message, left)) {
        if (!mnl_nlmsg_portid_ok(message, question.port) ||
            !mnl_nlmsg_seq_ok(message, question.sequence)) {
            return LinkDump::unusable;
        }
        if ((message->nlmsg_flags & NLM_F_DUMP_INTR) != 0) {
            return LinkDump::interrupted;
        }
        if (message->nlmsg_type == NLMSG_DONE) {
            return endedWell(*message) ? LinkDump::complete : LinkDump::unusable;
        }
        if (!addLink(*message, interfaces)) {
            return LinkDump::unusable;
        }
        message = mnl_nlmsg_next(message, &left);
    }
    // A message that does not fit has lost its end. The padding of the last one may be missing.
    return left <= 0 && !datagram.empty() ? LinkDump::more : LinkDump::unusable;
}

}  // namespace tarnwick::platform
