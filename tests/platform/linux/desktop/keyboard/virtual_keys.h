// SPDX-License-Identifier: MIT
// Virtual key codes, named after what a US keyboard prints on the keys.
#pragma once

#include <cstdint>

namespace tarnwick::platform {

inline constexpr std::uint16_t kQ = 12;
inline constexpr std::uint16_t kY = 16;
inline constexpr std::uint16_t kL = 37;
inline constexpr std::uint16_t kF13 = 105;

}  // namespace tarnwick::platform
