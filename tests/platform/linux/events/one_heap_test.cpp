// SPDX-License-Identifier: MIT
// A program of its own: heaps that other tests have left would be used again.
#include <barrier>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <gtest/gtest.h>
#include <malloc.h>
#include <string>
#include <thread>
#include <vector>

#include "platform/linux/events/process_limits.h"
#include "tests/platform/linux/child_process.h"

namespace tarnwick::platform {
namespace {

using tarnwick::testing::ChildProcess;

/// How many heaps the C library has.
int heaps() {
    char* text = nullptr;
    std::size_t size = 0;
    std::FILE* const stream = ::open_memstream(&text, &size);
    ::malloc_info(0, stream);
    std::fclose(stream);
    const std::string found(text, size);
    std::free(text);
    int count = 0;
    for (auto at = found.find("<heap "); at != std::string::npos;
         at = found.find("<heap ", at + 1)) {
        ++count;
    }
    return count;
}

/// How many heaps come with threads that allocate at the same time.
int heapsOfThreads() {
    const int before = heaps();
    constexpr int kThreads = 3;
    std::barrier together(kThreads);
    std::vector<std::thread> threads;
    for (int each = 0; each < kThreads; ++each) {
        threads.emplace_back([&together] {
            const std::string kept(10'000, 'x');
            together.arrive_and_wait();
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    return heaps() - before;
}

TEST(Heap, IsSharedByAllThreads) {
    if (::mallinfo2().uordblks == 0) {
        GTEST_SKIP() << "a sanitizer stands in for the C library's heap";
    }
    ChildProcess usual([] { EXPECT_GT(heapsOfThreads(), 0); });
    EXPECT_EQ(usual.wait(), 0);
    ChildProcess sharing([] {
        shareOneHeap();
        EXPECT_EQ(heapsOfThreads(), 0);
    });
    EXPECT_EQ(sharing.wait(), 0);
}

}  // namespace
}  // namespace tarnwick::platform
