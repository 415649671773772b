// SPDX-License-Identifier: MIT
// The function that every fuzz program defines, and the check that it uses.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>

/// Feeds one input to the code under test. Returns 0.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace tarnwick::fuzz {

/// Ends the program when a promise does not hold for the input; unlike assert, in every build.
inline void require(bool holds) {
    if (!holds) {
        std::abort();
    }
}

}  // namespace tarnwick::fuzz
