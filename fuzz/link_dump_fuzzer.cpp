// Any bytes as a datagram of the kernel's answer about network links: what is made of it is what a
// second reading, without the library, makes of it.
#include <cstdint>
#include <cstring>
#include <linux/rtnetlink.h>
#include <utility>
#include <vector>

#include "fuzz/fuzzer.h"
#include "platform/linux/network/link_dump.h"

namespace {

using tarnwick::fuzz::require;
using tarnwick::platform::Counters;
using tarnwick::platform::InterfaceTable;
using tarnwick::platform::LinkDump;

constexpr tarnwick::platform::LinkQuestion kQuestion{.sequence = 77, .port = 4242};

template <class T>
T at(const std::uint8_t* bytes) {
    T number{};
    std::memcpy(&number, bytes, sizeof number);
    return number;
}

std::size_t padded(std::size_t size) {
    return (size + 3) / 4 * 4;
}

// The payload of the first attribute of this type; of no length when there is none that is whole.
std::pair<const std::uint8_t*, std::size_t> attribute(const std::uint8_t* bytes, std::size_t size,
                                                      unsigned type) {
    std::size_t offset = 0;
    while (offset + 4 <= size) {
        const std::size_t length = at<std::uint16_t>(bytes + offset);
        if (length < 4 || length > size - offset) {
            break;
        }
        if ((at<std::uint16_t>(bytes + offset + 2) & 0x3FFFU) == type) {
            return {bytes + offset + 4, length - 4};
        }
        offset += padded(length);
    }
    return {bytes, 0};
}

LinkDump readAgain(const std::uint8_t* data, std::size_t size, InterfaceTable& table) {
    if (size == 0) {
        return LinkDump::unusable;
    }
    std::size_t offset = 0;
    while (offset < size) {
        const std::uint8_t* const message = data + offset;
        const std::size_t left = size - offset;
        const std::size_t length = left < 16 ? 0 : at<std::uint32_t>(message);
        if (length < 16 || length > left) {
            return LinkDump::unusable;
        }
        const auto type = at<std::uint16_t>(message + 4);
        const auto sequence = at<std::uint32_t>(message + 8);
        const auto port = at<std::uint32_t>(message + 12);
        // Zero stands for any.
        if ((port != 0 && port != kQuestion.port) ||
            (sequence != 0 && sequence != kQuestion.sequence)) {
            return LinkDump::unusable;
        }
        if ((at<std::uint16_t>(message + 6) & NLM_F_DUMP_INTR) != 0) {
            return LinkDump::interrupted;
        }
        if (type == NLMSG_DONE) {
            return length >= 20 && at<std::int32_t>(message + 16) != 0 ? LinkDump::unusable
                                                                       : LinkDump::complete;
        }
        if (type != RTM_NEWLINK || length < 32 || at<std::int32_t>(message + 20) <= 0) {
            return LinkDump::unusable;
        }
        if ((at<std::uint32_t>(message + 24) & 9) == 1) {
            const auto [figures, bytes] = attribute(message + 32, length - 32, IFLA_STATS64);
            if (bytes < 32) {
                return LinkDump::unusable;
            }
            table[at<std::uint32_t>(message + 20)] =
                Counters{at<std::uint64_t>(figures + 16), at<std::uint64_t>(figures + 24), false};
        }
        offset += padded(length);
    }
    return LinkDump::more;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    // A copy of exactly this size, aligned as the buffer of the program is.
    std::vector<std::byte> datagram(size);
    if (size > 0) {
        std::memcpy(datagram.data(), data, size);
    }
    InterfaceTable interfaces;
    InterfaceTable expected;
    const LinkDump state = addLinks(datagram, kQuestion, interfaces);
    require(state == readAgain(data, size, expected));
    require(interfaces == expected);
    return 0;
}
