// SPDX-License-Identifier: MIT
// Virtual key codes of the platform keyboard that the program knows by name.
#pragma once

#include <cstdint>

namespace tarnwick::key_code {

inline constexpr std::int64_t kReturn = 36;
inline constexpr std::int64_t kL = 37;
inline constexpr std::int64_t kTab = 48;
inline constexpr std::int64_t kSpace = 49;
inline constexpr std::int64_t kDelete = 51;
inline constexpr std::int64_t kEscape = 53;
inline constexpr std::int64_t kRightCommand = 54;
inline constexpr std::int64_t kCommand = 55;
inline constexpr std::int64_t kShift = 56;
inline constexpr std::int64_t kCapsLock = 57;
inline constexpr std::int64_t kOption = 58;
inline constexpr std::int64_t kControl = 59;
inline constexpr std::int64_t kRightShift = 60;
inline constexpr std::int64_t kRightOption = 61;
inline constexpr std::int64_t kRightControl = 62;
inline constexpr std::int64_t kFunction = 63;
inline constexpr std::int64_t kF5 = 96;
inline constexpr std::int64_t kF6 = 97;
inline constexpr std::int64_t kF7 = 98;
inline constexpr std::int64_t kF3 = 99;
inline constexpr std::int64_t kF8 = 100;
inline constexpr std::int64_t kF9 = 101;
inline constexpr std::int64_t kF11 = 103;
inline constexpr std::int64_t kF10 = 109;
inline constexpr std::int64_t kF12 = 111;
inline constexpr std::int64_t kHome = 115;
inline constexpr std::int64_t kPageUp = 116;
inline constexpr std::int64_t kForwardDelete = 117;
inline constexpr std::int64_t kF4 = 118;
inline constexpr std::int64_t kEnd = 119;
inline constexpr std::int64_t kF2 = 120;
inline constexpr std::int64_t kPageDown = 121;
inline constexpr std::int64_t kF1 = 122;
inline constexpr std::int64_t kLeftArrow = 123;
inline constexpr std::int64_t kRightArrow = 124;
inline constexpr std::int64_t kDownArrow = 125;
inline constexpr std::int64_t kUpArrow = 126;

}  // namespace tarnwick::key_code
