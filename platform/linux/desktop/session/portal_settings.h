// SPDX-License-Identifier: MIT
// Settings of the desktop, as its portal tells them.
#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>
#include <QString>
#include <QVariant>
#include <functional>
#include <vector>

#include "platform/linux/desktop/session/service_signals.h"

namespace tarnwick::platform {

/// Follows settings through the settings portal; asks again whenever a portal comes. Main thread;
/// never waits for the bus.
class PortalSettings final : public QObject {
    Q_OBJECT

 public:
    struct Setting {
        QString space;
        QString key;
        /// Called on the main thread with each value from the portal, even if it did not change.
        /// Not called if there is no portal or the portal does not know the setting.
        std::function<void(const QVariant& value)> heard;
    };

    PortalSettings(QDBusConnection bus, const std::vector<Setting>& settings);

 private:
    struct Followed {
        Setting setting;
        /// Number of received changes: an answer that was requested before a change is ignored.
        int changes = 0;
    };

    void portalChanged(const QString& owner);
    void begin();
    void ask(Followed& followed);
    void settingChanged(const QDBusMessage& signal);

    QDBusConnection bus_;
    /// The size never changes after construction, because answers hold references to the elements.
    std::vector<Followed> followed_;
    /// Whether settings were requested; a request starts a missing portal.
    bool hasBegun_ = false;
    ServiceSignals portal_;
};

}  // namespace tarnwick::platform
