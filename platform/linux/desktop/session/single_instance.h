// One Tarnwick a session: the second start asks the first to open its panel.
#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "platform/linux/desktop/session/instance_lock.h"

namespace tarnwick::platform {

/// Names the display of a session: the compositor's where there is one, else the X server's,
/// whichever of its screens. `environment` gives a variable's value or null.
std::string displayName(const std::function<const char*(const char*)>& environment);

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
        /// Another one runs and did not answer, and did not end either.
        unanswered,
    };

    /// By a name on `bus` where it is connected, and by a lock for `display` in `runtimeFolder`
    /// (private to the user; when empty there is no lock): an instance that saw another bus, or
    /// none, is found by the lock.
    SingleInstance(QDBusConnection bus, std::string runtimeFolder, std::string_view display = {});
    ~SingleInstance() override;

    /// Called once, at the start, before anything else is built: this is the one place that waits
    /// for the bus, and a second start for the first, at most `answerMilliseconds`. A first that is
    /// just ending is waited for and followed.
    Claim claim(int answerMilliseconds = 5000);

    /// From now on this process is not the one any more, and whoever starts is. For an end that
    /// takes its time; more often does no harm.
    void release();

    /// `openPanel` runs on the main thread whenever another start asks; one that asked before is
    /// made up for now.
    void setOpenPanel(std::function<void()> openPanel);

    QString introspect(const QString& path) const override;
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override;

 private:
    enum class Owner { thisProcess, onBus, ofLock };

    Owner take();
    bool ask(Owner owner, int answerMilliseconds);
    void asked();

    QDBusConnection bus_;
    InstanceLock lock_;
    std::function<void()> openPanel_;
    bool askedEarly_ = false;
    bool ownsName_ = false;
    bool isReleased_ = false;
};

}  // namespace tarnwick::platform
