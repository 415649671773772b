// SPDX-License-Identifier: MIT
#include "platform/linux/desktop/keyboard/key_codes.h"

#include <gtest/gtest.h>
#include <map>
#include <set>
#include <utility>
#include <vector>

namespace tarnwick::platform {
namespace {

// Numbers of a keyboard's keys as X11 has them since the kernel names the keys, written out here
// once more so that a slip in the table shows.
const std::map<std::uint32_t, std::uint8_t> kLetters = {
    {0, 38},  {11, 56}, {8, 54},  {2, 40},  {14, 26}, {3, 41},  {5, 42},  {4, 43},  {34, 31},
    {38, 44}, {40, 45}, {37, 46}, {46, 58}, {45, 57}, {31, 32}, {35, 33}, {12, 24}, {15, 27},
    {1, 39},  {17, 28}, {32, 30}, {9, 55},  {13, 25}, {7, 53},  {16, 29}, {6, 52}};
const std::map<std::uint32_t, std::uint8_t> kDigits = {{29, 19}, {18, 10}, {19, 11}, {20, 12},
                                                       {21, 13}, {23, 14}, {22, 15}, {26, 16},
                                                       {28, 17}, {25, 18}};
const std::map<std::uint32_t, std::uint8_t> kPunctuation = {{27, 20}, {24, 21}, {33, 34}, {30, 35},
                                                            {41, 47}, {39, 48}, {50, 49}, {42, 51},
                                                            {43, 59}, {47, 60}, {44, 61}, {10, 94}};
const std::map<std::uint32_t, std::uint8_t> kFunctionKeys = {
    {122, 67},  {120, 68},  {99, 69},  {118, 70}, {96, 71},  {97, 72},   {98, 73},
    {100, 74},  {101, 75},  {109, 76}, {103, 95}, {111, 96}, {105, 191}, {107, 192},
    {113, 193}, {106, 194}, {64, 195}, {79, 196}, {80, 197}, {90, 198}};
const std::map<std::uint32_t, std::uint8_t> kKeypad = {
    {82, 90}, {83, 87}, {84, 88}, {85, 89}, {86, 83}, {87, 84},  {88, 85},  {89, 79},  {91, 80},
    {92, 81}, {65, 91}, {67, 63}, {69, 86}, {78, 82}, {75, 106}, {76, 104}, {81, 125}, {71, 77}};
const std::map<std::uint32_t, std::uint8_t> kEditingKeys = {
    {36, 36},   {48, 23},   {49, 65},   {51, 22},   {53, 9},    {117, 119}, {114, 118}, {110, 135},
    {115, 110}, {119, 115}, {116, 112}, {121, 117}, {123, 113}, {124, 114}, {125, 116}, {126, 111}};
const std::map<std::uint32_t, std::uint8_t> kModifiers = {
    {55, 133}, {54, 134}, {56, 50}, {60, 62}, {57, 66}, {58, 64}, {61, 108}, {59, 37}, {62, 105}};
const std::map<std::uint32_t, std::uint8_t> kSound = {{72, 123}, {73, 122}, {74, 121}};
const std::map<std::uint32_t, std::uint8_t> kJapanese = {
    {93, 132}, {94, 97}, {95, 129}, {102, 131}, {104, 130}};

std::vector<std::map<std::uint32_t, std::uint8_t>> allKeys() {
    return {kLetters,     kDigits,    kPunctuation, kFunctionKeys, kKeypad,
            kEditingKeys, kModifiers, kSound,       kJapanese};
}

TEST(KeyCodes, EveryKeyHasItsPlaceBothWays) {
    for (const auto& keys : allKeys()) {
        for (const auto& [virtualKey, x11Key] : keys) {
            EXPECT_EQ(x11KeyCode(virtualKey), x11Key) << virtualKey;
            EXPECT_EQ(virtualKeyCode(x11Key), virtualKey) << int{x11Key};
        }
    }
}

// Such as Fn, and Print, Pause and Scroll Lock the other way round.
TEST(KeyCodes, NoOtherCodeHasAKey) {
    std::set<std::uint32_t> virtualKeys;
    std::set<std::uint32_t> x11Keys;
    for (const auto& keys : allKeys()) {
        for (const auto& [virtualKey, x11Key] : keys) {
            EXPECT_TRUE(virtualKeys.insert(virtualKey).second) << virtualKey;
            EXPECT_TRUE(x11Keys.insert(x11Key).second) << int{x11Key};
        }
    }
    for (std::uint32_t code = 0; code < 1000; ++code) {
        EXPECT_EQ(x11KeyCode(code).has_value(), virtualKeys.contains(code)) << code;
        EXPECT_EQ(virtualKeyCode(code).has_value(), x11Keys.contains(code)) << code;
    }
}

TEST(KeyCodes, AHugeCodeHasNoKey) {
    EXPECT_EQ(x11KeyCode(0xFFFF'FFFF), std::nullopt);
    EXPECT_EQ(x11KeyCode(0x100), std::nullopt);
    EXPECT_EQ(virtualKeyCode(0xFFFF'FFFF), std::nullopt);
    EXPECT_EQ(virtualKeyCode(0x126), std::nullopt);
}

}  // namespace
}  // namespace tarnwick::platform
