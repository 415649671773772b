// SPDX-License-Identifier: MIT
// How often a test program forces a file onto the disk, and what comes of it.
#pragma once

#include <atomic>
#include <functional>

namespace tarnwick::platform::testing {

/// Calls of fsync() so far, by any thread. A program that links this overrides the C library's
/// function with one that counts the call and passes it on.
extern std::atomic<int> syncs;

/// Where it is set, it is called before each of them; what it gives other than 0 is the error that
/// the call fails with.
extern std::function<int()> beforeSync;

}  // namespace tarnwick::platform::testing
