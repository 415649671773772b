// SPDX-License-Identifier: MIT
// What the program asks of the system for its own process.
#pragma once

#include <cstddef>
#include <optional>

namespace tarnwick::platform {

/// Returns freed memory from the heap to the system. It takes milliseconds, so call it only after
/// much memory was freed that will not be needed soon. Any thread.
void giveBackFreedMemory();

/// Lets all threads share one heap. With one for each thread, as is usual, the rests of many heaps
/// stay in memory, because no other thread can use them; the program's threads allocate too little
/// to wait for each other. Call it before the first thread starts.
void shareOneHeap();

/// Enough to keep one open for each of 8,000 processes. The kernel needs 4.5 kB for each.
inline constexpr std::size_t kWantedDescriptors = 16'384;

/// Raises the program's limit to kWantedDescriptors, as far as the system allows; a higher limit
/// stays. Returns the limit from before, or nothing if it was not raised.
///
/// Most systems start programs with 1,024, because some programs use select(). Programs that this
/// one starts should therefore get the returned limit.
std::optional<std::size_t> raiseDescriptorLimit();

/// Lets a write that passes the file size limit of the process fail as on a full disk. Without
/// this, a signal ends the program. Programs that this one starts are not affected.
void surviveFileSizeLimit();

}  // namespace tarnwick::platform
