// SPDX-License-Identifier: MIT
#include "platform/macos/readers/routing_messages.h"

#include <cstdint>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>

#include "tests/platform/macos/readers/routing_message_bytes.h"

namespace tarnwick {
namespace {

using platform::Counters;
using platform::InterfaceTable;
using routing::Bytes;
using routing::interfaceMessage;
using routing::joined;
using routing::putNumber;
using routing::routingMessage;
using testing::Optional;

constexpr std::uint64_t kLargest = std::numeric_limits<std::uint64_t>::max();

InterfaceTable table(std::uint32_t index, std::uint64_t received, std::uint64_t sent) {
    return {{index, Counters{received, sent, false}}};
}

/// A copy of exactly this size, so that a read behind its end is noticed.
std::optional<InterfaceTable> decode(const Bytes& bytes) {
    return decodeInterfaceList(Bytes(bytes.begin(), bytes.end()));
}

TEST(RoutingMessages, TheListIsAskedForByItsName) {
    EXPECT_THAT(kInterfaceListName, testing::ElementsAre(4, 17, 0, 0, 6, 0));
}

TEST(RoutingMessages, NoBytesAreAnEmptyTable) {
    EXPECT_THAT(decode({}), Optional(InterfaceTable{}));
}

TEST(RoutingMessages, AnInterfaceHasItsCountersUnderItsIndex) {
    EXPECT_THAT(decode(interfaceMessage({.index = 7, .received = 123456789012, .sent = 345})),
                Optional(table(7, 123456789012, 345)));
}

TEST(RoutingMessages, FieldsLieAtTheirOffsetsAndNowhereElse) {
    Bytes message(160, std::byte{0});
    message[0] = std::byte{160};
    message[2] = std::byte{5};
    message[3] = std::byte{18};
    message[8] = std::byte{1};
    message[13] = std::byte{0x02};
    message[96] = std::byte{0x0A};
    message[103] = std::byte{0x01};
    message[104] = std::byte{0x0B};
    message[111] = std::byte{0x02};
    EXPECT_THAT(decode(message), Optional(table(0x200, 0x010000000000000A, 0x020000000000000B)));
}

TEST(RoutingMessages, CountersReachTheLargestNumber) {
    EXPECT_THAT(decode(interfaceMessage({.received = kLargest, .sent = kLargest - 1})),
                Optional(table(1, kLargest, kLargest - 1)));
}

TEST(RoutingMessages, IndexesReachTheLargestNumberAndZero) {
    EXPECT_THAT(decode(interfaceMessage({.index = 65535, .received = 1, .sent = 2})),
                Optional(table(65535, 1, 2)));
    EXPECT_THAT(decode(interfaceMessage({.index = 0, .received = 1, .sent = 2})),
                Optional(table(0, 1, 2)));
}

TEST(RoutingMessages, EveryInterfaceOfTheSequenceIsTaken) {
    const auto found = decode(joined({interfaceMessage({.index = 1, .received = 10, .sent = 11}),
                                      interfaceMessage({.index = 2, .received = 20, .sent = 21}),
                                      interfaceMessage({.index = 9, .received = 90, .sent = 91})}));
    EXPECT_THAT(found, Optional(InterfaceTable{
                           {1, {10, 11, false}}, {2, {20, 21, false}}, {9, {90, 91, false}}}));
}

TEST(RoutingMessages, TheLastMessageAboutAnInterfaceHolds) {
    EXPECT_THAT(decode(joined({interfaceMessage({.index = 3, .received = 500, .sent = 600}),
                               interfaceMessage({.index = 3, .received = 50, .sent = 60})})),
                Optional(table(3, 50, 60)));
}

TEST(RoutingMessages, OnlyInterfacesThatAreUpAndNoLoopbackAreTaken) {
    for (const std::uint32_t flags : {0x1U, 0x8863U, 0x8051U, 0xFFFFFFF7U}) {
        EXPECT_THAT(decode(interfaceMessage({.index = 4, .received = 1, .flags = flags})),
                    Optional(table(4, 1, 0)))
            << flags;
    }
    for (const std::uint32_t flags : {0x0U, 0x8U, 0x9U, 0x8049U, 0x8862U, 0xFFFFFFFFU}) {
        EXPECT_THAT(decode(interfaceMessage({.index = 4, .received = 1, .flags = flags})),
                    Optional(InterfaceTable{}))
            << flags;
    }
}

TEST(RoutingMessages, AnInterfaceThatIsSkippedDoesNotRemoveAnEarlierEntry) {
    EXPECT_THAT(decode(joined({interfaceMessage({.index = 3, .received = 5}),
                               interfaceMessage({.index = 3, .received = 6, .flags = 0})})),
                Optional(table(3, 5, 0)));
}

TEST(RoutingMessages, MessagesOfOtherTypesAreSkipped) {
    for (int type = 0; type < 256; ++type) {
        if (type == 18) {
            continue;
        }
        EXPECT_THAT(decode(joined({routingMessage(static_cast<std::uint8_t>(type), 20),
                                   interfaceMessage({.index = 2, .received = 8, .sent = 9})})),
                    Optional(table(2, 8, 9)))
            << type;
    }
}

TEST(RoutingMessages, AMessageOfAnotherTypeMayBeNothingButItsHeader) {
    EXPECT_THAT(decode(routingMessage(12, 4)), Optional(InterfaceTable{}));
    EXPECT_THAT(decode(joined({routingMessage(12, 4), routingMessage(19, 4)})),
                Optional(InterfaceTable{}));
}

TEST(RoutingMessages, AMessageOfAnotherTypeIsNotAnInterfaceHoweverLong) {
    Bytes message = interfaceMessage({});
    putNumber(message, 3, std::uint8_t{14});
    EXPECT_THAT(decode(message), Optional(InterfaceTable{}));
}

TEST(RoutingMessages, LongerInterfaceMessagesAreTaken) {
    EXPECT_THAT(decode(joined({interfaceMessage({.index = 1, .received = 1, .size = 163}),
                               interfaceMessage({.index = 2, .received = 2, .size = 161})})),
                Optional(InterfaceTable{{1, {1, 0, false}}, {2, {2, 0, false}}}));
    EXPECT_THAT(decode(interfaceMessage({.received = 3, .size = 65535})), Optional(table(1, 3, 0)));
}

TEST(RoutingMessages, AnInterfaceMessageBelowItsSizeIsMalformed) {
    for (std::size_t size = 4; size < 160; ++size) {
        const Bytes message = routingMessage(18, size);
        EXPECT_EQ(decode(message), std::nullopt) << size;
        EXPECT_EQ(decode(joined({message, interfaceMessage({})})), std::nullopt) << size;
    }
}

TEST(RoutingMessages, AnInterfaceMessageBelowItsSizeIsMalformedEvenWhereItWouldBeSkipped) {
    Bytes message = interfaceMessage({.flags = 0, .size = 160});
    message.resize(159);
    putNumber(message, 0, std::uint16_t{159});
    EXPECT_EQ(decode(message), std::nullopt);
}

TEST(RoutingMessages, OneToThreeBytesAtTheEndAreMalformed) {
    for (std::size_t size = 1; size < 4; ++size) {
        EXPECT_EQ(decode(Bytes(size, std::byte{0})), std::nullopt) << size;
        EXPECT_EQ(decode(joined({interfaceMessage({}), Bytes(size, std::byte{5})})), std::nullopt)
            << size;
    }
}

TEST(RoutingMessages, ALengthBelowTheHeaderIsMalformed) {
    for (std::uint16_t length = 0; length < 4; ++length) {
        Bytes message = interfaceMessage({});
        putNumber(message, 0, length);
        EXPECT_EQ(decode(message), std::nullopt) << length;
    }
}

TEST(RoutingMessages, ALengthBeyondTheBytesIsMalformed) {
    for (const int length : {161, 162, 320, 65535}) {
        Bytes message = interfaceMessage({});
        putNumber(message, 0, static_cast<std::uint16_t>(length));
        EXPECT_EQ(decode(message), std::nullopt) << length;
    }
    Bytes other = routingMessage(12, 8);
    putNumber(other, 0, std::uint16_t{9});
    EXPECT_EQ(decode(other), std::nullopt);
}

TEST(RoutingMessages, AnyOtherVersionIsMalformedWhateverTheType) {
    for (int version = 0; version < 256; ++version) {
        if (version == 5) {
            continue;
        }
        Bytes message = interfaceMessage({});
        putNumber(message, 2, static_cast<std::uint8_t>(version));
        EXPECT_EQ(decode(message), std::nullopt) << version;
        EXPECT_EQ(decode(joined({interfaceMessage({}),
                                 routingMessage(12, 16, static_cast<std::uint8_t>(version))})),
                  std::nullopt)
            << version;
    }
}

TEST(RoutingMessages, EveryTruncationIsMalformedUnlessItEndsWithAMessage) {
    const Bytes whole =
        joined({interfaceMessage({.index = 1, .received = 1}), routingMessage(12, 6),
                interfaceMessage({.index = 2, .received = 2, .size = 168})});
    for (std::size_t size = 0; size <= whole.size(); ++size) {
        const auto found = decode(Bytes(whole.begin(), whole.begin() + static_cast<long>(size)));
        if (size == 0) {
            EXPECT_THAT(found, Optional(InterfaceTable{}));
        } else if (size == 160 || size == 166) {
            EXPECT_THAT(found, Optional(table(1, 1, 0))) << size;
        } else if (size == whole.size()) {
            EXPECT_THAT(found, Optional(InterfaceTable{{1, {1, 0, false}}, {2, {2, 0, false}}}));
        } else {
            EXPECT_EQ(found, std::nullopt) << size;
        }
    }
}

TEST(RoutingMessages, MessagesNeedNoAlignment) {
    EXPECT_THAT(decode(joined({routingMessage(12, 5), interfaceMessage({.index = 6, .sent = 7})})),
                Optional(table(6, 0, 7)));
}

}  // namespace
}  // namespace tarnwick
