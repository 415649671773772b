#include "platform/linux/events/freed_memory.h"

#include <malloc.h>

namespace tarnwick::platform {

void giveBackFreedMemory() {
    ::malloc_trim(0);
}

}  // namespace tarnwick::platform
