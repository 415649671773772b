// SPDX-License-Identifier: MIT
// Small text helpers that do not depend on the process's locale.
#pragma once

#include <string>
#include <string_view>

namespace tarnwick {

/// The UTF-8 text without white space and line breaks at both ends: those of Unicode and the
/// zero-width space.
std::string_view trimmed(std::string_view text);

/// A number with so many decimals, at most 20, rounded like "%.*f", with a point in every locale.
std::string fixedText(double value, int decimals);

/// A percentage with a fixed number of decimals and a percent sign, rounded like "%.*f%%", with a
/// point in every locale: 99.6 with 0 decimals is "100%".
std::string percentText(double value, int decimals);

}  // namespace tarnwick
