// Small text helpers that do not depend on the process's locale.
#pragma once

#include <string>
#include <string_view>

namespace tarnwick {

/// The text, which is UTF-8, without white space and line breaks at both ends: those of Unicode
/// and the zero-width space.
std::string_view trimmed(std::string_view text);

/// A percentage with a fixed number of decimals and a percent sign, rounded as "%.*f%%" rounds,
/// always with a point: 99.6 with 0 decimals is "100%".
std::string percentText(double value, int decimals);

}  // namespace tarnwick
