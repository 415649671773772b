// How often a test program forces a file onto the disk.
#pragma once

#include <atomic>

namespace tarnwick::platform::testing {

/// Calls of fdatasync() so far, by any thread. A program that links this overrides the C library's
/// function with one that counts the call and passes it on.
extern std::atomic<int> syncs;

}  // namespace tarnwick::platform::testing
