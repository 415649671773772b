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
        /// Called on the main thread with each value that the portal says, whether it is another
        /// one or not. Not called where there is no portal or the portal knows no such setting.
        std::function<void(const QVariant& value)> heard;
    };

    PortalSettings(QDBusConnection bus, const std::vector<Setting>& settings);

 private:
    struct Followed {
        Setting setting;
        /// Counts the changes that were heard of, so that an answer does not undo a later one.
        int changes = 0;
    };

    void portalChanged(const QString& owner);
    void begin();
    void ask(Followed& followed);
    void settingChanged(const QDBusMessage& signal);

    QDBusConnection bus_;
    /// As many as at first.
    std::vector<Followed> followed_;
    /// Settings were asked for, which starts a portal that is not there.
    bool hasBegun_ = false;
    ServiceSignals portal_;
};

}  // namespace tarnwick::platform
