// SPDX-License-Identifier: MIT
// Machines in interesting states, as inputs of the home page.
#pragma once

#include <cstdint>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "platform/byte_count_formatter.h"
#include "ui/panel/home_page.h"

namespace tarnwick::testing {

inline constexpr std::uint64_t kGiB = std::uint64_t{1} << 30;
inline constexpr std::int64_t kGB = 1'000'000'000;

/// Bytes as the panel shows them, near enough for a picture, with at most two decimals.
class PlainByteCountFormatter final : public platform::ByteCountFormatter {
 public:
    std::string stringFromByteCount(std::int64_t byteCount,
                                    platform::CountStyle style) const override;
};

/// Writes the count and the style, so that a test sees which style was used: "12 B memory".
class SpellingByteCountFormatter final : public platform::ByteCountFormatter {
 public:
    std::string stringFromByteCount(std::int64_t byteCount,
                                    platform::CountStyle style) const override;
};

/// A machine where all is calm: everything measured, a GPU, a healthy battery, no warning.
HomePageInputs calmMachine();

struct HomeState {
    /// As in the names of the golden files.
    std::string_view name;
    HomePageInputs inputs;

    friend std::ostream& operator<<(std::ostream& out, const HomeState& state) {
        return out << state.name;
    }
};

/// calmMachine() and other states of a machine.
std::vector<HomeState> homeStates();

}  // namespace tarnwick::testing
