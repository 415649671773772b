// SPDX-License-Identifier: MIT
// How many files a process has open and may have open.
#pragma once

#include <cstddef>
#include <filesystem>
#include <gtest/gtest.h>
#include <sys/resource.h>

namespace tarnwick::testing {

/// Counts one more than are open, because the listing itself needs one.
inline std::size_t openDescriptors() {
    std::size_t count = 0;
    for ([[maybe_unused]] const auto& entry :
         std::filesystem::directory_iterator("/proc/self/fd")) {
        ++count;
    }
    return count;
}

inline rlimit descriptorLimit() {
    rlimit limit{};
    EXPECT_EQ(::getrlimit(RLIMIT_NOFILE, &limit), 0);
    return limit;
}

/// Only for a child process: the limit cannot be raised again above the hard limit.
inline void limitDescriptors(rlim_t most) {
    rlimit limit = descriptorLimit();
    limit.rlim_cur = most;
    ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &limit), 0);
}

}  // namespace tarnwick::testing
