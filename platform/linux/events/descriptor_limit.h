// How many files the program may have open at a time.
#pragma once

#include <cstddef>
#include <optional>

namespace tarnwick::platform {

/// Enough to keep one open for each of 8,000 processes. The kernel needs 4.5 kB for each.
inline constexpr std::size_t kWantedDescriptors = 16'384;

/// Raises the program's limit to what is wanted, as far as the system lets it; a higher one stays.
/// Most systems start programs with 1,024, for the sake of those that use select(): other programs
/// that this one starts are to have the limit that is returned, the one before. Absent when it was
/// not raised.
std::optional<std::size_t> raiseDescriptorLimit();

}  // namespace tarnwick::platform
