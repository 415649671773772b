// SPDX-License-Identifier: MIT
// Counter arithmetic that ends the program instead of wrapping around: a wrong figure must never
// be shown, and an overflow here can only come from a fault of ours.
#pragma once

#include <concepts>
#include <cstdlib>
#include <limits>

namespace tarnwick {

/// a + b; a fatal error when the sum does not fit.
template <std::unsigned_integral T>
constexpr T checkedAdd(T a, T b) {
    if (b > std::numeric_limits<T>::max() - a) {
        std::abort();
    }
    return static_cast<T>(a + b);
}

/// a - b; a fatal error when b is larger.
template <std::unsigned_integral T>
constexpr T checkedSubtract(T a, T b) {
    if (b > a) {
        std::abort();
    }
    return static_cast<T>(a - b);
}

/// a × b; a fatal error when the product does not fit.
template <std::unsigned_integral T>
constexpr T checkedMultiply(T a, T b) {
    if (a != 0 && b > std::numeric_limits<T>::max() / a) {
        std::abort();
    }
    return static_cast<T>(a * b);
}

/// a + 1; a fatal error at the largest value.
template <std::signed_integral T>
constexpr T checkedIncrement(T a) {
    if (a == std::numeric_limits<T>::max()) {
        std::abort();
    }
    return static_cast<T>(a + 1);
}

/// How far a cumulative counter moved; 0 when it went backwards.
template <std::unsigned_integral T>
constexpr T counterDelta(T current, T previous) {
    return current >= previous ? static_cast<T>(current - previous) : T{0};
}

}  // namespace tarnwick
