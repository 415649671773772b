// Replies, errors and events of the X server, which the library allocates.
#pragma once

#include <cstdlib>
#include <memory>

namespace tarnwick::platform {

struct X11Free {
    void operator()(void* pointer) const { std::free(pointer); }
};
template <class T>
using X11Reply = std::unique_ptr<T, X11Free>;

}  // namespace tarnwick::platform
