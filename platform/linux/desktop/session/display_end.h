// Ending when the display goes away under the program.
#pragma once

#include <functional>

namespace tarnwick::platform {

/// The toolkit ends the process by exit() when an X server closes its connection, as it does when a
/// session is over. While this lives, such an end is one like others: `last` is called on the main
/// thread for what must not be lost, and the status is that of success. Of what lives as long as
/// the process, only that is destroyed which was made after the first of these; the rest stays,
/// because other threads may still work.
///
/// The end of a Wayland compositor is none of this: there the toolkit fails by _exit(), asks
/// nobody and calls nothing. What must not be lost has to be safe at any moment anyway, as with a
/// crash. One for the process. Main thread.
class DisplayEnd final {
 public:
    explicit DisplayEnd(std::function<void()> last);
    DisplayEnd(const DisplayEnd&) = delete;
    DisplayEnd& operator=(const DisplayEnd&) = delete;
    ~DisplayEnd();
};

}  // namespace tarnwick::platform
