// Whether the desktop prefers light or dark.
#pragma once

#include <QDBusConnection>
#include <functional>

#include "platform/linux/desktop/session/portal_settings.h"

namespace tarnwick::platform {

/// Follows the desktop's preference through the settings portal. Light if there is no portal or the
/// portal does not tell. Main thread. Never waits for the bus.
class ColorScheme final {
 public:
    /// `changed` is called on the main thread at each change; the first answer is a change if it is
    /// dark.
    ColorScheme(const QDBusConnection& bus, std::function<void(bool dark)> changed);

    bool dark() const { return dark_; }

 private:
    void set(bool dark);

    std::function<void(bool dark)> changed_;
    bool dark_ = false;
    PortalSettings settings_;
};

}  // namespace tarnwick::platform
