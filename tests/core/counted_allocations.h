// SPDX-License-Identifier: MIT
// What the program has allocated with `new` and not freed. A test program that links this counts
// every allocation.
#pragma once

#include <cstdint>

namespace tarnwick::platform::testing {

struct Alive {
    std::int64_t blocks = 0;
    std::int64_t bytes = 0;

    bool operator==(const Alive&) const = default;
    /// Any thread.
    static Alive now();
};

}  // namespace tarnwick::platform::testing
