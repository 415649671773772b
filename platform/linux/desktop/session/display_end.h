// SPDX-License-Identifier: MIT
// Ends the program properly when the display disappears.
#pragma once

#include <functional>

namespace tarnwick::platform {

/// An X server closes its connection when a session is over; the toolkit then ends the process with
/// exit(). While this object lives, such an end is a normal one: `last` is called on the main
/// thread to save what must not be lost, and the exit status is success. Only static objects
/// created after the first DisplayEnd are destroyed; the others stay, because other threads may
/// still use them.
///
/// This does not help when a Wayland compositor ends: the toolkit then calls _exit(), without any
/// callback. Important data must therefore be safe at any moment, as for a crash.
///
/// At most one per process. Main thread.
class DisplayEnd final {
 public:
    explicit DisplayEnd(std::function<void()> last);
    DisplayEnd(const DisplayEnd&) = delete;
    DisplayEnd& operator=(const DisplayEnd&) = delete;
    ~DisplayEnd();
};

}  // namespace tarnwick::platform
