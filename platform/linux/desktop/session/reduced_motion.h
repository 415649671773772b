// Whether the desktop asks programs to move less.
#pragma once

#include <QDBusConnection>
#include <functional>

#include "platform/linux/desktop/session/portal_settings.h"

namespace tarnwick::platform {

/// Follows the desktop through the settings portal: what all desktops have agreed on, GNOME's
/// switch for animations, and the speed of them that KDE Plasma lets its user choose, whose end is
/// "instant". Any of them is enough. False where there is no portal or it does not say. Main
/// thread; never waits for the bus.
class ReducedMotion final {
 public:
    /// `changed` is called on the main thread, also for a first answer that asks for less.
    ReducedMotion(const QDBusConnection& bus, std::function<void(bool isReduced)> changed);

    bool isReduced() const { return isReduced_; }

 private:
    void update();

    std::function<void(bool isReduced)> changed_;
    bool isReduced_ = false;
    bool isAskedFor_ = false;
    bool animationsAreOff_ = false;
    bool animationsAreInstant_ = false;
    PortalSettings settings_;
};

}  // namespace tarnwick::platform
