// SPDX-License-Identifier: MIT
// What the program holds at a moment: memory, descriptors, threads.
#pragma once

#include <cstddef>
#include <cstdint>
#include <ostream>

#include "tests/core/counted_allocations.h"

namespace tarnwick::testing {

struct Held {
    platform::testing::Alive allocated;
    std::size_t descriptors = 0;
    std::size_t threads = 0;

    bool operator==(const Held&) const = default;
    static Held now();
};

/// Bytes that the C library has handed out, also those that no `new` has asked for; 0 where a
/// sanitizer stands in for it. It rounds in ways that depend on what was freed before, so the
/// figure is right to kHeapRounding only.
std::size_t heapInUse();
inline constexpr std::size_t kHeapRounding = 32 * 1024;

void PrintTo(const Held& held, std::ostream* out);

/// After so many cycles every history and every table of the program has its final size.
inline constexpr int kWarmUpCycles = 3;

/// How many fast refreshes each test here runs at least: `--refreshes=` of the command line.
std::int64_t wantedRefreshes();

}  // namespace tarnwick::testing
