// How often a test program forces a file onto the disk.
#pragma once

#include <atomic>

namespace tarnwick::platform::testing {

/// Calls of fdatasync() so far, by any thread. A program that has this stands before the C library
/// with a function of that name, which counts and passes on.
extern std::atomic<int> syncs;

}  // namespace tarnwick::platform::testing
