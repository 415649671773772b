// SPDX-License-Identifier: MIT
// The masks and key codes that the tests of shortcuts press.
#pragma once

#include <cstdint>

namespace tarnwick {

inline constexpr std::int64_t kShift = 0x20000;
inline constexpr std::int64_t kControl = 0x40000;
inline constexpr std::int64_t kOption = 0x80000;
inline constexpr std::int64_t kCommand = 0x100000;

inline constexpr std::int64_t kL = 37;
inline constexpr std::int64_t kK = 40;

}  // namespace tarnwick
