// Memory that the program has freed.
#pragma once

namespace tarnwick::platform {

/// Gives back to the system what the heap keeps for later. Worth its milliseconds only after much
/// was freed that will not be needed soon. Any thread.
void giveBackFreedMemory();

}  // namespace tarnwick::platform
