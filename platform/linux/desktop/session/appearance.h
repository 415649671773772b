// SPDX-License-Identifier: MIT
// How the desktop wants programs to look and move.
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

/// Follows the settings portal: the common setting of all desktops and GNOME's own switch. One of
/// them is enough. False if there is no portal or the portal does not tell. Main thread. Never
/// waits for the bus.
class HighContrast final {
 public:
    /// `changed` is called on the main thread at each change; the first answer is a change if it
    /// asks for more contrast.
    HighContrast(const QDBusConnection& bus, std::function<void(bool isHigh)> changed);

    bool isHigh() const { return isHigh_; }

 private:
    void update();

    std::function<void(bool isHigh)> changed_;
    bool isHigh_ = false;
    bool isAskedFor_ = false;
    bool isSwitchedOn_ = false;
    PortalSettings settings_;
};

/// Follows three settings through the settings portal: the common one of all desktops, GNOME's
/// switch for animations, and KDE Plasma's animation speed, which can be "instant". One of them is
/// enough. False if there is no portal or the portal does not tell. Main thread. Never waits for
/// the bus.
class ReducedMotion final {
 public:
    /// `changed` is called on the main thread at each change; the first answer is a change if it
    /// asks for less motion.
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
