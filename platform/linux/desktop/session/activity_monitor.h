// Opens the desktop's own system monitor.
#pragma once

#include <QDBusConnection>
#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace tarnwick::platform {

/// What programs that the user starts from here begin with: what this one began with.
struct StartConditions {
    /// "NAME=value" each.
    std::vector<std::string> environment;
    /// How many files a program may have open, where this one has raised that for itself.
    std::optional<std::size_t> descriptorLimit{};
};

/// Main thread.
class ActivityMonitor {
 public:
    ActivityMonitor(QDBusConnection bus, StartConditions conditions);

    /// Starts the system monitor that findSystemMonitor() finds, on its own. False, with nothing
    /// done, when there is none.
    bool open();

 private:
    const QDBusConnection bus_;
    const StartConditions conditions_;
};

}  // namespace tarnwick::platform
