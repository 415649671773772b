// Whether the desktop prefers light or dark.
#pragma once

#include <QDBusConnection>
#include <QDBusServiceWatcher>
#include <QDBusVariant>
#include <QObject>
#include <QString>
#include <functional>

namespace tarnwick::platform {

/// Follows the desktop's preference through the settings portal; light where there is no portal
/// or it does not say. Main thread; never waits for the bus.
class ColorScheme final : public QObject {
    Q_OBJECT

 public:
    /// `changed` is called on the main thread, also for a first answer that says dark.
    ColorScheme(QDBusConnection bus, std::function<void(bool dark)> changed);

    bool dark() const { return dark_; }

 private slots:
    void settingChanged(const QString& space, const QString& key, const QDBusVariant& value);

 private:
    void begin();
    void ask();
    void set(bool dark);

    QDBusConnection bus_;
    std::function<void(bool dark)> changed_;
    QDBusServiceWatcher portalWatcher_;
    bool dark_ = false;
    /// Counts what was heard, so that an answer does not undo a later change.
    int heard_ = 0;
};

}  // namespace tarnwick::platform
