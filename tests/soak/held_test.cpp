// SPDX-License-Identifier: MIT
#include "tests/soak/held.h"

#include <cstddef>
#include <cstdlib>
#include <fcntl.h>
#include <future>
#include <gtest/gtest.h>
#include <memory>
#include <unistd.h>

#include "platform/testing/joined_thread.h"

namespace tarnwick::testing {
namespace {

TEST(Held, IsTheSameWhenNothingHasHappened) {
    const Held before = Held::now();
    EXPECT_EQ(Held::now(), before);
}

TEST(Held, CountsOneByte) {
    const Held before = Held::now();
    const auto kept = std::make_unique<char>();
    const Held after = Held::now();
    EXPECT_EQ(after.allocated.bytes, before.allocated.bytes + 1);
    EXPECT_EQ(after.allocated.blocks, before.allocated.blocks + 1);
}

TEST(Held, SeesWhatCCodeKeeps) {
    if (heapInUse() == 0) {
        GTEST_SKIP() << "a sanitizer stands in for the C library's heap";
    }
    const std::size_t before = heapInUse();
    const std::unique_ptr<void, decltype(&std::free)> kept(std::malloc(2 * kHeapRounding),
                                                           std::free);
    EXPECT_GT(heapInUse(), before + kHeapRounding);
}

TEST(Held, CountsOneDescriptor) {
    const Held before = Held::now();
    const int kept = ::open("/dev/null", O_RDONLY | O_CLOEXEC);
    ASSERT_GE(kept, 0);
    EXPECT_EQ(Held::now().descriptors, before.descriptors + 1);
    ::close(kept);
    EXPECT_EQ(Held::now().descriptors, before.descriptors);
}

TEST(Held, CountsOneThread) {
    // A sanitizer starts a thread of its own with the first one.
    {
        const platform::testing::JoinedThread first([] {});
    }
    const Held before = Held::now();
    std::promise<void> over;
    const platform::testing::JoinedThread kept([&over] { over.get_future().wait(); });
    EXPECT_EQ(Held::now().threads, before.threads + 1);
    over.set_value();
}

}  // namespace
}  // namespace tarnwick::testing
