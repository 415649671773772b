// The machine waking from sleep.
#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>
#include <functional>

namespace tarnwick::platform {

/// Hears of it from the login manager on the system bus; never where there is no system bus or no
/// login manager. Main thread; never waits for the bus.
class SleepSignals final : public QObject {
    Q_OBJECT

 public:
    /// `woke` is called on the main thread each time.
    SleepSignals(QDBusConnection systemBus, std::function<void()> woke);

 private slots:
    void prepareForSleep(bool begins, const QDBusMessage& signal);

 private:
    QDBusConnection bus_;
    std::function<void()> woke_;
};

}  // namespace tarnwick::platform
