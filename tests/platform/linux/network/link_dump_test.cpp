#include "platform/linux/network/link_dump.h"

#include <cerrno>
#include <cstdint>
#include <gtest/gtest.h>
#include <limits>
#include <utility>

#include "tests/platform/linux/network/link_messages.h"

namespace tarnwick::platform {
namespace {

using testing::attribute;
using testing::Datagram;
using testing::doneMessage;
using testing::headerOf;
using testing::joined;
using testing::linkMessage;
using testing::linkPayload;
using testing::message;
using testing::statistics64;

constexpr LinkQuestion question{.sequence = testing::kSequence, .port = testing::kPort};

std::pair<LinkDump, InterfaceTable> decode(const Datagram& datagram) {
    InterfaceTable interfaces;
    // A copy of exactly this size, so that a read behind its end is noticed.
    const LinkDump state =
        addLinks(Datagram(datagram.begin(), datagram.end()), question, interfaces);
    return {state, interfaces};
}

LinkDump stateOf(const Datagram& datagram) {
    return decode(datagram).first;
}

InterfaceTable one(std::uint32_t index, std::uint64_t received, std::uint64_t sent) {
    return {{index, Counters{received, sent, false}}};
}

TEST(LinkDumpTest, ALinkHasItsSixtyFourBitCountersUnderItsIndex) {
    const auto [state, interfaces] =
        decode(linkMessage({.index = 7, .received = 5'000'000'000, .sent = 6'000'000'000}));
    EXPECT_EQ(state, LinkDump::more);
    EXPECT_EQ(interfaces, one(7, 5'000'000'000, 6'000'000'000));
}

TEST(LinkDumpTest, CountersAndIndexesReachTheLargestNumber) {
    constexpr auto largest = std::numeric_limits<std::uint64_t>::max();
    EXPECT_EQ(decode(linkMessage({.index = std::numeric_limits<int>::max(),
                                  .received = largest,
                                  .sent = largest - 1}))
                  .second,
              one(0x7FFFFFFF, largest, largest - 1));
}

TEST(LinkDumpTest, EveryLinkOfEveryDatagramIsAdded) {
    InterfaceTable interfaces;
    EXPECT_EQ(addLinks(joined({linkMessage({.index = 1, .received = 10, .sent = 11}),
                               linkMessage({.index = 2, .received = 20, .sent = 21})}),
                       question, interfaces),
              LinkDump::more);
    EXPECT_EQ(
        addLinks(joined({linkMessage({.index = 3, .received = 30, .sent = 31}), doneMessage()}),
                 question, interfaces),
        LinkDump::complete);
    EXPECT_EQ(interfaces,
              (InterfaceTable{{1, {10, 11, false}}, {2, {20, 21, false}}, {3, {30, 31, false}}}));
}

TEST(LinkDumpTest, TheEndMayStandAlone) {
    EXPECT_EQ(decode(doneMessage()), std::pair(LinkDump::complete, InterfaceTable{}));
    EXPECT_EQ(stateOf(message(NLMSG_DONE, {})), LinkDump::complete);
}

TEST(LinkDumpTest, NothingIsReadBehindTheEnd) {
    EXPECT_EQ(decode(joined({doneMessage(), linkMessage({.received = 5})})),
              std::pair(LinkDump::complete, InterfaceTable{}));
}

TEST(LinkDumpTest, OnlyLinksThatAreUpAndNoLoopbackAreAdded) {
    for (const unsigned flags : {0x1U, 0x1043U, 0x11043U, 0xFFFFFFF7U}) {
        EXPECT_EQ(decode(linkMessage({.received = 1, .sent = 2, .flags = flags})).second,
                  one(1, 1, 2))
            << flags;
    }
    for (const unsigned flags : {0x0U, 0x8U, 0x9U, 0x10049U, 0x1002U, 0xFFFFFFFFU}) {
        EXPECT_EQ(decode(linkMessage({.received = 1, .sent = 2, .flags = flags})),
                  std::pair(LinkDump::more, InterfaceTable{}))
            << flags;
    }
}

TEST(LinkDumpTest, ALinkThatIsNotCountedNeedsNoStatistics) {
    EXPECT_EQ(stateOf(message(RTM_NEWLINK, linkPayload({.flags = 0x9}, {}))), LinkDump::more);
}

TEST(LinkDumpTest, ALinkThatCountsWithoutSixtyFourBitStatisticsIsUnusable) {
    EXPECT_EQ(stateOf(message(RTM_NEWLINK, linkPayload({}, {}))), LinkDump::unusable);
    EXPECT_EQ(stateOf(message(RTM_NEWLINK,
                              linkPayload({}, attribute(IFLA_STATS, Datagram(96, std::byte{1}))))),
              LinkDump::unusable);
}

TEST(LinkDumpTest, StatisticsOfOlderAndLaterKernelsAreReadAsFarAsTheSentBytes) {
    Datagram figures = statistics64(3, 4);
    figures.resize(32);
    EXPECT_EQ(
        decode(message(RTM_NEWLINK, linkPayload({}, attribute(IFLA_STATS64, figures)))).second,
        one(1, 3, 4));
    figures.resize(400, std::byte{9});
    EXPECT_EQ(
        decode(message(RTM_NEWLINK, linkPayload({}, attribute(IFLA_STATS64, figures)))).second,
        one(1, 3, 4));
    for (std::size_t size = 0; size < 32; ++size) {
        figures.resize(size);
        EXPECT_EQ(stateOf(message(RTM_NEWLINK, linkPayload({}, attribute(IFLA_STATS64, figures)))),
                  LinkDump::unusable)
            << size;
    }
}

TEST(LinkDumpTest, StatisticsBehindADamagedAttributeAreNotFound) {
    Datagram damaged = attribute(IFLA_IFNAME, Datagram(8, std::byte{'x'}));
    for (const int length : {0, 1, 2, 3, 0xFFFF}) {
        reinterpret_cast<nlattr*>(damaged.data())->nla_len = static_cast<std::uint16_t>(length);
        EXPECT_EQ(
            stateOf(message(
                RTM_NEWLINK,
                linkPayload({}, joined({damaged, attribute(IFLA_STATS64, statistics64(1, 2))})))),
            LinkDump::unusable)
            << length;
    }
}

TEST(LinkDumpTest, AnInterruptedAnswerSaysSoWhereverItsMarkStands) {
    Datagram link = linkMessage({.index = 2, .received = 1});
    headerOf(link).nlmsg_flags |= NLM_F_DUMP_INTR;
    EXPECT_EQ(stateOf(link), LinkDump::interrupted);
    EXPECT_EQ(stateOf(joined({linkMessage({}), link, doneMessage()})), LinkDump::interrupted);
    Datagram done = doneMessage();
    headerOf(done).nlmsg_flags |= NLM_F_DUMP_INTR;
    EXPECT_EQ(stateOf(joined({linkMessage({}), done})), LinkDump::interrupted);
}

TEST(LinkDumpTest, AnErrorIsUnusable) {
    Datagram payload;
    testing::append(payload, nlmsgerr{.error = -EPERM, .msg = {}});
    EXPECT_EQ(stateOf(message(NLMSG_ERROR, payload)), LinkDump::unusable);
    EXPECT_EQ(stateOf(joined({linkMessage({}), message(NLMSG_ERROR, payload)})),
              LinkDump::unusable);
}

TEST(LinkDumpTest, AnEndWithAnErrorIsUnusable) {
    EXPECT_EQ(stateOf(joined({linkMessage({}), doneMessage(-EMSGSIZE)})), LinkDump::unusable);
}

TEST(LinkDumpTest, AMessageOfAnotherKindIsUnusable) {
    EXPECT_EQ(stateOf(message(RTM_DELLINK, linkPayload({}, {}))), LinkDump::unusable);
    EXPECT_EQ(stateOf(message(RTM_NEWADDR, linkPayload({}, {}))), LinkDump::unusable);
    EXPECT_EQ(stateOf(message(NLMSG_OVERRUN, {})), LinkDump::unusable);
}

TEST(LinkDumpTest, AnAnswerToAnotherQuestionIsUnusable) {
    Datagram late = linkMessage({});
    headerOf(late).nlmsg_seq -= 1;
    EXPECT_EQ(stateOf(late), LinkDump::unusable);
    Datagram lateEnd = doneMessage();
    headerOf(lateEnd).nlmsg_seq += 1;
    EXPECT_EQ(stateOf(lateEnd), LinkDump::unusable);
    Datagram strange = linkMessage({});
    headerOf(strange).nlmsg_pid += 1;
    EXPECT_EQ(stateOf(strange), LinkDump::unusable);
}

TEST(LinkDumpTest, AnIndexBelowOneIsUnusable) {
    EXPECT_EQ(stateOf(linkMessage({.index = 0})), LinkDump::unusable);
    EXPECT_EQ(stateOf(linkMessage({.index = -1})), LinkDump::unusable);
}

TEST(LinkDumpTest, ALinkTooShortForItsHeadIsUnusable) {
    for (std::size_t size = 0; size < sizeof(ifinfomsg); ++size) {
        Datagram payload = linkPayload({.flags = 0}, {});
        payload.resize(size);
        EXPECT_EQ(stateOf(message(RTM_NEWLINK, payload)), LinkDump::unusable) << size;
    }
    EXPECT_EQ(stateOf(message(RTM_NEWLINK, linkPayload({.flags = 0}, {}))), LinkDump::more);
}

TEST(LinkDumpTest, NoBytesAreUnusable) {
    EXPECT_EQ(stateOf({}), LinkDump::unusable);
}

TEST(LinkDumpTest, EveryTruncationIsUnusableUnlessItEndsWithAMessage) {
    const Datagram first = linkMessage({.index = 1, .received = 1, .sent = 1});
    const Datagram whole =
        joined({first, linkMessage({.index = 2, .received = 2, .sent = 2}), doneMessage()});
    for (std::size_t size = 1; size < whole.size(); ++size) {
        const LinkDump state =
            stateOf(Datagram(whole.begin(), whole.begin() + static_cast<long>(size)));
        const bool atAMessage = size == first.size() || size == 2 * first.size();
        EXPECT_EQ(state, atAMessage ? LinkDump::more : LinkDump::unusable) << size;
    }
    EXPECT_EQ(stateOf(whole), LinkDump::complete);
}

TEST(LinkDumpTest, AMessageLengthThatCannotBeIsUnusable) {
    for (const std::uint32_t length :
         {0U, 1U, 15U, 0x10000U, 0x7FFFFFFFU, 0x80000000U, 0xFFFFFFFFU}) {
        Datagram link = linkMessage({});
        headerOf(link).nlmsg_len = length;
        EXPECT_EQ(stateOf(joined({link, doneMessage()})), LinkDump::unusable) << length;
    }
}

TEST(LinkDumpTest, ThePaddingOfTheLastMessageMayBeMissing) {
    Datagram odd =
        message(RTM_NEWLINK, joined({linkPayload({.flags = 0}, {}), Datagram(6, std::byte{0})}));
    ASSERT_EQ(odd.size() % 4, 0U);
    odd.resize(odd.size() - 2);
    EXPECT_EQ(stateOf(odd), LinkDump::more);
}

}  // namespace
}  // namespace tarnwick::platform
