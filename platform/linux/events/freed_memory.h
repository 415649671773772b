// Memory that the program has freed.
#pragma once

namespace tarnwick::platform {

/// Returns freed memory from the heap to the system. It takes milliseconds, so call it only after
/// much memory was freed that will not be needed soon. Any thread.
void giveBackFreedMemory();

}  // namespace tarnwick::platform
