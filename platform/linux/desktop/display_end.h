// Ending when the display goes away under the program.
#pragma once

#include <functional>

namespace tarnwick::platform {

/// The toolkit ends the process by exit() when the display server closes its connection, as it
/// does when a session is over. While this lives, such an end is one like others: `last` is called
/// on the main thread for what must not be lost, and the status is that of success. Nothing is
/// destroyed then, because other threads may still work. One for the process. Main thread.
class DisplayEnd final {
 public:
    explicit DisplayEnd(std::function<void()> last);
    DisplayEnd(const DisplayEnd&) = delete;
    DisplayEnd& operator=(const DisplayEnd&) = delete;
    ~DisplayEnd();
};

}  // namespace tarnwick::platform
