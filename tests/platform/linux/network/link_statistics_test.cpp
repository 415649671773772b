// One reading of the links: how often the kernel is asked, and what becomes of a bad answer. The
// kernel is the running machine's, its answers are spoilt on their way.
#include "platform/linux/network/link_statistics.h"

#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <functional>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <iterator>
#include <linux/netlink.h>
#include <sys/time.h>

#include "platform/linux/network/interface_addresses.h"
#include "tests/platform/linux/network/network_calls.h"

namespace tarnwick::platform {
namespace {

using testing::NetworkCalls;
using testing::systemReceive;

class LinkStatisticsTest : public ::testing::Test {
 protected:
    LinkStatisticsTest() {
        NetworkCalls::reset();
        usable = LinkStatistics().interfaceCounters().has_value();
        NetworkCalls::reset();
    }
    ~LinkStatisticsTest() override { NetworkCalls::reset(); }

    void SetUp() override {
        if (!usable) {
            GTEST_SKIP() << "the kernel gives no 64-bit link statistics here";
        }
    }

    /// Spoils datagrams of the kernel, each with its number from 1.
    static void spoil(const std::function<void(nlmsghdr&, int)>& change) {
        NetworkCalls::current().receive = [change, number = 0](int descriptor, msghdr* message,
                                                               int flags) mutable {
            const ssize_t size = systemReceive(descriptor, message, flags);
            if (size > 0) {
                change(*static_cast<nlmsghdr*>(message->msg_iov[0].iov_base), ++number);
            }
            return size;
        };
    }

    bool usable = false;
    LinkStatistics links;
};

TEST_F(LinkStatisticsTest, AReadingIsOneQuestionOnASocketThatIsKept) {
    ASSERT_TRUE(links.interfaceCounters());
    EXPECT_EQ(NetworkCalls::current().socket, 1);
    EXPECT_EQ(NetworkCalls::current().sendto, 1);
    for (int turn = 2; turn <= 5; ++turn) {
        ASSERT_TRUE(links.interfaceCounters());
        EXPECT_EQ(NetworkCalls::current().socket, 1);
        EXPECT_EQ(NetworkCalls::current().sendto, turn);
    }
}

TEST_F(LinkStatisticsTest, NothingIsOpenedBeforeTheFirstReading) {
    const LinkStatistics unused;
    EXPECT_EQ(NetworkCalls::current().socket, 0);
}

TEST_F(LinkStatisticsTest, TheSocketIsNotInheritedAndNotWaitedForLongerThanASecond) {
    bool isInherited = true;
    timeval patience{};
    NetworkCalls::current().receive = [&](int descriptor, msghdr* message, int flags) {
        isInherited = (::fcntl(descriptor, F_GETFD) & FD_CLOEXEC) == 0;
        socklen_t size = sizeof patience;
        EXPECT_EQ(::getsockopt(descriptor, SOL_SOCKET, SO_RCVTIMEO, &patience, &size), 0);
        return systemReceive(descriptor, message, flags);
    };
    ASSERT_TRUE(links.interfaceCounters());
    EXPECT_FALSE(isInherited);
    EXPECT_EQ(patience.tv_sec, 1);
    EXPECT_EQ(patience.tv_usec, 0);
}

TEST_F(LinkStatisticsTest, NoSocketIsLeftOpen) {
    const auto openDescriptors = [] {
        return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
    };
    const auto before = openDescriptors();
    {
        LinkStatistics own;
        ASSERT_TRUE(own.interfaceCounters());
        EXPECT_EQ(openDescriptors(), before + 1);
        spoil([](nlmsghdr& first, int) { first.nlmsg_flags |= NLM_F_DUMP_INTR; });
        EXPECT_EQ(own.interfaceCounters(), std::nullopt);
        EXPECT_EQ(openDescriptors(), before);
        NetworkCalls::reset();
        ASSERT_TRUE(own.interfaceCounters());
    }
    EXPECT_EQ(openDescriptors(), before);
}

TEST_F(LinkStatisticsTest, AnInterruptedAnswerIsAskedForAgain) {
    spoil([](nlmsghdr& first, int number) {
        if (number == 1) {
            first.nlmsg_flags |= NLM_F_DUMP_INTR;
        }
    });
    EXPECT_TRUE(links.interfaceCounters());
    EXPECT_EQ(NetworkCalls::current().sendto, 2);
    EXPECT_EQ(NetworkCalls::current().socket, 2);
}

TEST_F(LinkStatisticsTest, AnAnswerThatIsInterruptedThreeTimesGivesNoTable) {
    spoil([](nlmsghdr& first, int) { first.nlmsg_flags |= NLM_F_DUMP_INTR; });
    EXPECT_EQ(links.interfaceCounters(), std::nullopt);
    EXPECT_EQ(NetworkCalls::current().sendto, 3);
}

TEST_F(LinkStatisticsTest, ADamagedAnswerGivesNoTableAndIsNotAskedForAgain) {
    spoil([](nlmsghdr& first, int) { first.nlmsg_len = 3; });
    EXPECT_EQ(links.interfaceCounters(), std::nullopt);
    EXPECT_EQ(NetworkCalls::current().sendto, 1);
}

TEST_F(LinkStatisticsTest, AnAnswerToAnotherQuestionGivesNoTable) {
    spoil([](nlmsghdr& first, int) { ++first.nlmsg_seq; });
    EXPECT_EQ(links.interfaceCounters(), std::nullopt);
}

TEST_F(LinkStatisticsTest, ARefusalGivesNoTable) {
    spoil([](nlmsghdr& first, int) {
        first.nlmsg_type = NLMSG_ERROR;
        first.nlmsg_len = sizeof(nlmsghdr) + sizeof(nlmsgerr);
    });
    EXPECT_EQ(links.interfaceCounters(), std::nullopt);
    EXPECT_EQ(NetworkCalls::current().sendto, 1);
}

TEST_F(LinkStatisticsTest, AfterAFailureTheNextReadingBeginsAfresh) {
    spoil([](nlmsghdr& first, int) { first.nlmsg_len = 3; });
    ASSERT_EQ(links.interfaceCounters(), std::nullopt);
    NetworkCalls::reset();
    EXPECT_TRUE(links.interfaceCounters());
    EXPECT_EQ(NetworkCalls::current().socket, 1);
    EXPECT_EQ(NetworkCalls::current().sendto, 1);
}

TEST_F(LinkStatisticsTest, ABufferThatIsTooSmallIsReplacedByALargerOne) {
    std::size_t first = 0;
    NetworkCalls::current().receive = [&first](int descriptor, msghdr* message, int flags) {
        if (first == 0) {
            first = message->msg_iov[0].iov_len;
            message->msg_iov[0].iov_len = 64;
        }
        return systemReceive(descriptor, message, flags);
    };
    EXPECT_TRUE(links.interfaceCounters());
    EXPECT_EQ(NetworkCalls::current().sendto, 2);
    EXPECT_EQ(NetworkCalls::current().bufferSize, 2 * first);
}

TEST_F(LinkStatisticsTest, ABufferThatNeverSufficesDoesNotGrowForEver) {
    NetworkCalls::current().receive = [](int descriptor, msghdr* message, int flags) {
        message->msg_iov[0].iov_len = 64;
        return systemReceive(descriptor, message, flags);
    };
    for (int turn = 0; turn < 10; ++turn) {
        EXPECT_EQ(links.interfaceCounters(), std::nullopt);
    }
    EXPECT_EQ(NetworkCalls::current().sendto, 30);
    EXPECT_EQ(NetworkCalls::current().bufferSize, std::size_t{1} << 20);
}

TEST_F(LinkStatisticsTest, ASignalDoesNotDisturbAReading) {
    int calls = 0;
    NetworkCalls::current().receive = [&calls](int descriptor, msghdr* message, int flags) {
        if (++calls % 2 == 1) {
            errno = EINTR;
            return ssize_t{-1};
        }
        return systemReceive(descriptor, message, flags);
    };
    EXPECT_TRUE(links.interfaceCounters());
    EXPECT_EQ(NetworkCalls::current().sendto, 1);
}

TEST_F(LinkStatisticsTest, AKernelThatDoesNotAnswerIsGivenUp) {
    NetworkCalls::current().receive = [](int, msghdr*, int) {
        errno = EAGAIN;
        return ssize_t{-1};
    };
    EXPECT_EQ(links.interfaceCounters(), std::nullopt);
    EXPECT_EQ(NetworkCalls::current().sendto, 3);
}

TEST_F(LinkStatisticsTest, AnAnswerThatBreaksOffGivesNoTable) {
    NetworkCalls::current().receive = [number = 0](int descriptor, msghdr* message,
                                                   int flags) mutable {
        // The first datagram of each answer arrives, nothing behind it.
        if (++number % 2 == 0) {
            errno = ENOBUFS;
            return ssize_t{-1};
        }
        const ssize_t size = systemReceive(descriptor, message, flags);
        const auto* const bytes = static_cast<const char*>(message->msg_iov[0].iov_base);
        for (ssize_t offset = 0; offset < size;) {
            const auto* const next = reinterpret_cast<const nlmsghdr*>(bytes + offset);
            if (next->nlmsg_type == NLMSG_DONE) {
                return offset;
            }
            offset += static_cast<ssize_t>(NLMSG_ALIGN(next->nlmsg_len));
        }
        return size;
    };
    EXPECT_EQ(links.interfaceCounters(), std::nullopt);
    EXPECT_EQ(NetworkCalls::current().sendto, 3);
}

}  // namespace
}  // namespace tarnwick::platform
