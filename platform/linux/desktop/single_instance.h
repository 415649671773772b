// One Tarnwick a session: the second start asks the first to open its panel.
#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <functional>
#include <memory>
#include <string>

#include "platform/linux/desktop/instance_lock.h"

namespace tarnwick::platform {

/// Main thread.
class SingleInstance final : public QDBusVirtualObject {
    Q_OBJECT

 public:
    static constexpr auto kService = "org.tarnwick.Tarnwick";
    static constexpr auto kPath = "/org/tarnwick/Tarnwick";
    static constexpr auto kInterface = "org.tarnwick.Tarnwick";

    enum class Claim {
        /// This process is the one.
        first,
        /// Another one runs and was asked to open its panel: end with status 0.
        handedOver,
        /// Another one runs and did not answer.
        unanswered,
    };

    /// On `bus` where it is connected, else by a lock file in `runtimeFolder` (private to the
    /// user; when empty nothing tells two instances apart).
    SingleInstance(QDBusConnection bus, std::string runtimeFolder);
    ~SingleInstance() override;

    /// Called once, at the start, before anything else is built: this is the one place that waits
    /// for the bus, and a second start for the first, at most `answerMilliseconds`.
    Claim claim(int answerMilliseconds = 5000);

    /// `openPanel` runs on the main thread whenever another start asks; one that asked before is
    /// made up for now.
    void setOpenPanel(std::function<void()> openPanel);

    QString introspect(const QString& path) const override;
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override;

 private:
    Claim claimOnBus(int answerMilliseconds);
    void asked();

    QDBusConnection bus_;
    InstanceLock lock_;
    std::function<void()> openPanel_;
    bool askedEarly_ = false;
    bool ownsName_ = false;
};

}  // namespace tarnwick::platform
